#pragma once

#include "gazepoint/record.h"
#include "subject/eye_state.h"

#include <QByteArray>
#include <optional>
#include <vector>

namespace sim::gazepoint {

/// The calibration of the server: the list of points, the sequence of messages and the result.
///
/// Has no clock or timer. The owner calls advance() with every sample and sends the messages that it returns. Times are
/// seconds of the owner's monotonic clock.
class Calibration {
public:
    static constexpr int maxPointCount = 100;

    Calibration();

    [[nodiscard]] const std::vector<Point> &points() const { return points_; }
    void clearPoints();
    void resetPoints();
    /// Ignores points beyond maxPointCount.
    void addPoint(Point point);

    /// Sets the time that a point is shown before it is measured.
    void setDelay(double seconds) { delay_s_ = seconds; }
    /// Sets the time that a point is measured.
    void setTimeout(double seconds) { timeout_s_ = seconds; }

    /// Starts or restarts at the first point. Does nothing without points.
    void start();
    void stop();
    [[nodiscard]] bool running() const { return running_; }

    /// Takes one sample and returns the messages that are due, in order.
    [[nodiscard]] std::vector<QByteArray> advance(double now_s, const EyeState &eyes);

    /// Returns the point that is shown.
    [[nodiscard]] std::optional<Point> target() const;

    struct Summary {
        double averageError_px = 0;
        int validPointCount = 0;
    };
    /// Returns the result of the last completed calibration for a screen of the given size.
    [[nodiscard]] Summary summary(double width_px, double height_px) const;

private:
    /// The mean gaze of one eye while a point was measured.
    struct EyeMean {
        Point sum;
        int seenCount = 0;
        int sampleCount = 0;

        void add(const Eye &eye);
        [[nodiscard]] Gaze gaze() const;
    };
    struct Measurement {
        Point target;
        EyeMean left;
        EyeMean right;
    };

    void showPoint(double now_s);
    void measure(double now_s, const EyeState &eyes);
    [[nodiscard]] QByteArray finish();
    [[nodiscard]] double pointEnd_s() const;
    [[nodiscard]] QByteArray pointMessage(const char *id) const;
    [[nodiscard]] QByteArray resultMessage() const;

    std::vector<Point> points_;
    double delay_s_;
    double timeout_s_;

    bool running_ = false;
    bool pointShown_ = false;
    double pointStart_s_ = 0;
    std::vector<Measurement> measured_;  // of the running sequence; the last one belongs to the current point
    std::vector<Measurement> result_;    // of the last completed sequence
};

}  // namespace sim::gazepoint
