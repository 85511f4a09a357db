#pragma once

#include "toolkit/base/connection_helper.h"
#include "trackers/eyetech/eyetech_record_reader.h"

#include <QWidget>

class EyetechGrabber;

/// The camera image of an EyeTech tracker, with a marker on each pupil. The colour of the markers rates the user's
/// distance. The markers cover the pupils; a click switches between filled markers and their outlines. Paints nothing
/// before the first frame, and for a frame without an image.
///
/// Owned by the caller of EyetechGrabber::createViewWidget(), and destroyed before the tracker. Frames arrive by queued
/// calls. GUI thread.
class EyetechVideoDisplayWidget : public QWidget {
    Q_OBJECT

public:
    /// If `grabber` is null, the widget is empty.
    explicit EyetechVideoDisplayWidget(EyetechGrabber *grabber, QWidget *parent = nullptr);
    ~EyetechVideoDisplayWidget() override;

    [[nodiscard]] QSize sizeHint() const override;

public Q_SLOTS:
    void showFrame(const QLFrameData &frame);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void retranslate();
    void drawImage(QPainter &painter, QSize size) const;
    void drawPupils(QPainter &painter, double scale) const;

    EyetechGrabber *grabber_;
    bool enabled_ = true;
    bool hasFrame_ = false;
    bool showsPupils_ = false;  ///< the markers are only outlines
    ConnectionHelper connections_;
    QLFrameData frame_;
    bool plainBackground_ = false;  ///< whether a plain box is drawn instead of the image
};
