#pragma once

#include "views/base_eyetracker_widget.h"
#include "views/gaze_trail.h"

#include <QTimer>

/// Shows the combined gaze of the last second on a picture of the screen, for trackers without a camera view. GUI
/// thread.
///
/// The picture is a drawn frame with the proportions of the tracked screen. It is not a copy of the screen, because a
/// copy could show private content to other people in the room, and in screenshots of the window.
///
/// The view reads the tracker's samples 30 times a second while it is visible. It is not repainted for each sample.
class GazeTrailView : public BaseEyetrackerWidget {
    Q_OBJECT

public:
    explicit GazeTrailView(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void eyetrackerChanged() override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void refresh();
    void readSamples();
    [[nodiscard]] QSize screenSize() const;
    void drawScreen(QPainter &painter, const QRectF &screen) const;
    void drawTrail(QPainter &painter, const QRectF &screen) const;

    GazeTrail trail_;
    quint64 lastNumber_ = 0;  ///< of the last sample that was read
    QTimer timer_;
};
