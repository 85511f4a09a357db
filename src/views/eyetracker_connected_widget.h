#pragma once

#include "views/base_eyetracker_widget.h"

/// A dot of 16 x 16 pixels that tells whether the tracker is connected: green, red, or grey without a
/// tracker.
class EyetrackerConnectedWidget : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit EyetrackerConnectedWidget(QWidget *parent = nullptr);

protected:
    void eyetrackerChanged() override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void setState(qint32 state);
    void updateToolTip();

    qint32 state_ = -1;  ///< -1 no tracker, 0 disconnected, 1 connected
};
