#pragma once

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <chrono>
#include <deque>
#include <vector>

struct NumberedSample;

/// The valid gaze of the last second, which fades with its age. Plain data without a widget.
class GazeTrail {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::milliseconds length{1000};
    /// Longer losses of the gaze interrupt the trail. Saccades are shorter, blinks are not.
    static constexpr std::chrono::milliseconds maxGap{150};

    struct Point {
        QPointF percent;        ///< of the screen
        double freshness = 0;   ///< 1 now, 0 at the end of the trail
        bool isJoined = false;  ///< with the point before it
    };

    /// Adds the gaze of a sample that is not older than the last one. Ignores invalid samples.
    void add(const NumberedSample &entry);
    /// Removes the gaze that has faded.
    void removeOld(Clock::time_point now);
    void clear() { gazes_.clear(); }

    [[nodiscard]] bool isEmpty() const { return gazes_.empty(); }
    /// Returns the trail, oldest point first.
    [[nodiscard]] std::vector<Point> points(Clock::time_point now) const;

private:
    struct Gaze {
        QPointF percent;
        Clock::time_point arrival;
    };

    std::deque<Gaze> gazes_;
};

/// The place of the picture of a screen in a widget.
namespace gaze_picture {

/// Returns the largest rectangle with the proportions of `screen` in the middle of `available`.
[[nodiscard]] QRectF screenIn(const QRectF &available, QSize screen);

/// Returns the place of a gaze in the picture. A gaze beside the screen is moved to its edge.
[[nodiscard]] QPointF placeOf(QPointF percent, const QRectF &screen);

}  // namespace gaze_picture
