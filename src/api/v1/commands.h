#pragma once

#include "api/v1/reply.h"

namespace api_v1 {

/// What clients can tell the program to do. Called on connection threads. The calls block until the program has done
/// it or has refused it.
class Commands {
public:
    Commands() = default;
    virtual ~Commands() = default;
    Commands(const Commands &) = delete;
    Commands &operator=(const Commands &) = delete;

    /// Selects a tracker after the return.
    [[nodiscard]] virtual Reply selectTracker(const QString &name) = 0;
    /// Starts a recording of the selected tracker. With an empty `path`, the program chooses the file name.
    [[nodiscard]] virtual Reply startRecording(const QString &path) = 0;
    /// Stops the recording of the selected tracker and saves it.
    [[nodiscard]] virtual Reply stopRecording() = 0;
    /// Starts a calibration after the return. Screens count from 1.
    [[nodiscard]] virtual Reply calibrate(int screen) = 0;
    /// Cancels the running calibration after the return.
    [[nodiscard]] virtual Reply stopCalibration() = 0;
};

}  // namespace api_v1
