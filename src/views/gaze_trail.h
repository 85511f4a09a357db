#pragma once

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <chrono>
#include <deque>
#include <vector>

struct NumberedSample;

/// The valid gaze of the last second, which fades with its age. Not thread-safe.
class GazeTrail {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::milliseconds length{1000};
    /// A longer loss of the gaze interrupts the trail. Saccades are shorter than this limit, blinks are longer.
    static constexpr std::chrono::milliseconds maxGap{150};

    struct Point {
        QPointF percent;        ///< of the screen
        double freshness = 0;   ///< 1 on arrival, 0 at the age `length`
        bool isJoined = false;  ///< whether a line leads from the previous point to this one
    };

    /// Adds the gaze of a sample. It must not be older than the previous one. Ignores invalid samples.
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

/// The geometry of the picture of a screen in a widget. Reentrant.
namespace gaze_trail {

/// Returns the largest rectangle with the proportions of `screen` in the middle of `available`.
[[nodiscard]] QRectF screenIn(const QRectF &available, QSize screen);

/// Returns the position of a gaze in the picture. A gaze outside the screen is moved to its edge.
[[nodiscard]] QPointF placeOf(QPointF percent, const QRectF &screen);

}  // namespace gaze_trail
