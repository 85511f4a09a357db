#pragma once

namespace sim::asee_pro {

/// The results of the entry points.
enum Result : int {
    Ok = 0,
    NotConnected = 101,
    NotStarted = 102,
    NoConfigFolder = 103,
    BadCoefficients = 104,
    NotCalibrating = 105,
    BadArgument = 106,
    PointRunning = 107,
    ComputeFailed = 108,
};

}  // namespace sim::asee_pro
