#pragma once

#include "api/v1/reply.h"

namespace api_v1 {

/// The commands that clients can send. Called on connection threads. A call blocks until the command is executed or
/// refused. selectTracker(), calibrate() and stopCalibration() return as soon as the command is accepted.
class Commands {
public:
    Commands() = default;
    virtual ~Commands() = default;
    Commands(const Commands &) = delete;
    Commands &operator=(const Commands &) = delete;

    /// Selects a tracker, after the call has returned.
    [[nodiscard]] virtual Reply selectTracker(const QString &name) = 0;
    /// Starts a recording of the selected tracker. With an empty `path`, the program chooses the file name.
    [[nodiscard]] virtual Reply startRecording(const QString &path) = 0;
    /// Stops the recording of the selected tracker and saves it.
    [[nodiscard]] virtual Reply stopRecording() = 0;
    /// Starts a calibration, after the call has returned. Screens are numbered from 1.
    [[nodiscard]] virtual Reply calibrate(int screen) = 0;
    /// Cancels the running calibration, after the call has returned.
    [[nodiscard]] virtual Reply stopCalibration() = 0;
};

}  // namespace api_v1
