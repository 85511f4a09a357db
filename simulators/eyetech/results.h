#pragma once

namespace sim::eyetech {

/// What the entry points return; 0 is success. 10 is left to programs that have no library.
enum Result : int {
    Ok = 0,
    BadArgument = 1,  ///< also a device that there is not
    NotRunning = 2,
    UnknownCalibration = 3,
    Timeout = 4,
    UnknownSettings = 5,
    NotFound = 6,
    WrongType = 7,
    FileError = 8,
    NotCalibrated = 9,
    BufferTooSmall = 11,
    Busy = 12,
    Unplugged = 13,
};

/// How far a calibration is with a target.
enum TargetStatus : int { Done = 0, Running = 1, NotYet = 2, Failed = 3 };

/// A device that is not attached; the other values stand in quicklink2.h.
constexpr int kUnavailable = 1;

}  // namespace sim::eyetech
