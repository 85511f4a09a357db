#pragma once

#include "toolkit/connection_helper.h"
#include "trackers/eyetech/frame_data.h"

#include <QWidget>

class EyetechGrabber;

/// The camera view of an EyeTech tracker: its image, with a marker on each pupil whose colour tells whether the user
/// sits at a good distance. Paints nothing before the first frame, and for a frame without an image.
///
/// Owned by whoever asked the tracker for it, and gone before the tracker. The frames come queued; the image is the
/// copy that travels with its frame. GUI thread.
class EyetechVideoDisplayWidget : public QWidget {
    Q_OBJECT

public:
    /// Without a tracker it stays empty.
    explicit EyetechVideoDisplayWidget(EyetechGrabber *grabber, QWidget *parent = nullptr);
    ~EyetechVideoDisplayWidget() override;

    [[nodiscard]] QSize sizeHint() const override;

public Q_SLOTS:
    void showFrame(const QLFrameData &frame);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void drawImage(QPainter &painter, QSize size) const;
    void drawPupils(QPainter &painter, double scale) const;

    EyetechGrabber *grabber_;
    bool enabled_ = true;
    bool hasFrame_ = false;
    ConnectionHelper connections_;
    QLFrameData frame_;
    bool plainBackground_ = false;  ///< a plain box in the image's place
};
