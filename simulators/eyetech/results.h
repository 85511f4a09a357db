#pragma once

#include "trackers/eyetech/sdk/quicklink2.h"

namespace sim::eyetech {

/// The results of the entry points. 10 is not used, because programs use it when the library is missing.
enum Result : int {
    Ok = 0,
    BadArgument = quicklink2::badArgument,  ///< also an unknown device
    NotRunning = 2,
    UnknownCalibration = quicklink2::unknownCalibration,
    Timeout = 4,
    UnknownSettings = 5,
    NotFound = 6,
    WrongType = 7,
    FileError = 8,
    NotCalibrated = 9,
    BufferTooSmall = quicklink2::bufferTooSmall,
    Busy = 12,
    Unplugged = 13,
};

/// The status of a calibration target.
enum TargetStatus : int {
    Done = quicklink2::targetDone,
    Running = quicklink2::targetRunning,
    NotYet = 2,
    Failed = 3,
};

/// The status of a device that is not attached. quicklink2.h has the other values.
constexpr int deviceUnavailable = 1;

/// A result, with a value if the result is Ok.
template <typename T>
struct Answer {
    int result = Ok;
    T value{};
};

}  // namespace sim::eyetech
