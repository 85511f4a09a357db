#pragma once

#include "toolkit/connection_helper.h"

#include <QPointer>
#include <QWidget>

class aSeePro;
class QLabel;

/// The camera image of an aSee Pro tracker, as large as the widget allows, in its middle; black before the first image.
///
/// The tracker is not owned and may be null: then the widget stays empty. Its images are copied only while the widget
/// can be seen. Each is shown as it arrives, queued from the vendor library's thread. GUI thread.
class aSeeProPreviewWidget : public QWidget {
    Q_OBJECT

public:
    explicit aSeeProPreviewWidget(aSeePro *tracker, QWidget *parent = nullptr);
    ~aSeeProPreviewWidget() override;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void setPreviewEnabled(bool on);
    void refresh();

    QPointer<aSeePro> eyetracker_;
    QLabel *imageLabel_ = nullptr;
    ConnectionHelper connections_;
};
