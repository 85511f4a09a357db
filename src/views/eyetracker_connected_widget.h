#pragma once

#include "views/base_eyetracker_widget.h"

/// Shows the state of the connection as a dot of 16 x 16 pixels: green if connected, red if disconnected, and grey
/// without a tracker. GUI thread.
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
