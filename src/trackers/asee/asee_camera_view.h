#pragma once

#include "toolkit/base/connection_helper.h"

#include <QPointer>
#include <QWidget>

class aSeePro;
class QLabel;

/// The camera image of an aSee Pro tracker, scaled to the widget and centred. It is black before the first image.
///
/// The tracker is not owned. If it is null, the widget is empty. The tracker copies images only while the widget is
/// visible. A thread of the vendor's library queues a call for each image. GUI thread.
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
