#pragma once

#include "gazepoint/record.h"
#include "subject/eye_state.h"

#include <QByteArray>
#include <optional>
#include <vector>

namespace sim::gazepoint {

/// The server's calibration: its list of points, the sequence in time, and the result.
///
/// Free of clocks and timers: the owner calls advance() with every sample, and what that brings about are the
/// messages to send. Times are seconds of the owner's monotonic clock.
class Calibration {
public:
    static constexpr int kMostPoints = 100;

    Calibration();

    [[nodiscard]] const std::vector<Point> &points() const { return points_; }
    void clearPoints();
    void resetPoints();
    /// A point beyond kMostPoints is not taken.
    void addPoint(Point point);

    /// Seconds that a point is shown before it is measured, and seconds of measuring.
    void setDelay(double seconds) { delay_ = seconds; }
    void setTimeout(double seconds) { timeout_ = seconds; }

    /// Starts at the first point, also when it runs already. Nothing happens without points.
    void start();
    void stop();
    [[nodiscard]] bool running() const { return running_; }

    /// Takes one sample and gives the messages that are due, in their order.
    std::vector<QByteArray> advance(double now, const EyeState &eyes);

    /// The point that is being shown.
    [[nodiscard]] std::optional<Point> target() const;

    struct Summary {
        double averageError_px = 0;
        int validPoints = 0;
    };
    /// Of the last calibration that was completed, for a screen of the given size.
    [[nodiscard]] Summary summary(double width_px, double height_px) const;

private:
    /// The mean of what one eye did while a point was measured.
    struct EyeMean {
        Point sum;
        int seen = 0;
        int samples = 0;

        void add(const Eye &eye);
        [[nodiscard]] Gaze gaze() const;
    };
    struct Measurement {
        Point target;
        EyeMean left;
        EyeMean right;
    };

    void showPoint(double now);
    void measure(double now, const EyeState &eyes);
    void finish(std::vector<QByteArray> *messages);
    [[nodiscard]] double pointEnd() const;
    [[nodiscard]] QByteArray pointMessage(const char *id) const;
    [[nodiscard]] QByteArray resultMessage() const;

    std::vector<Point> points_;
    double delay_;
    double timeout_;

    bool running_ = false;
    bool pointShown_ = false;
    double pointStart_ = 0;
    std::vector<Measurement> measured_;  // of the running sequence; the last one is the current point's
    std::vector<Measurement> result_;    // of the last completed sequence
};

}  // namespace sim::gazepoint
