#include "views/gaze_trail.h"

#include "core/numbered_sample.h"

#include <algorithm>

void GazeTrail::add(const NumberedSample &entry) {
    if (entry.sample.valid)
        gazes_.push_back({QPointF(entry.sample.x, entry.sample.y), entry.arrival});
}

void GazeTrail::removeOld(Clock::time_point now) {
    while (!gazes_.empty() && now - gazes_.front().arrival >= length)
        gazes_.pop_front();
}

std::vector<GazeTrail::Point> GazeTrail::points(Clock::time_point now) const {
    std::vector<Point> points;
    points.reserve(gazes_.size());
    const Gaze *previous = nullptr;
    for (const Gaze &gaze : gazes_) {
        const std::chrono::duration<double> age = now - gaze.arrival;
        const double freshness = 1 - age / std::chrono::duration<double>(length);
        const bool isJoined = previous && gaze.arrival - previous->arrival <= maxGap;
        points.push_back({gaze.percent, std::clamp(freshness, 0.0, 1.0), isJoined});
        previous = &gaze;
    }
    return points;
}

QRectF gaze_trail::screenIn(const QRectF &available, QSize screen) {
    QRectF picture(QPointF(), QSizeF(screen).scaled(available.size(), Qt::KeepAspectRatio));
    picture.moveCenter(available.center());
    return picture;
}

QPointF gaze_trail::placeOf(QPointF percent, const QRectF &screen) {
    const auto at = [](double start, double length, double share) {
        return start + length * std::clamp(share, 0.0, 100.0) / 100;
    };
    return {at(screen.left(), screen.width(), percent.x()), at(screen.top(), screen.height(), percent.y())};
}
