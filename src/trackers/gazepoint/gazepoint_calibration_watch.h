#pragma once

#include "core/eyetracker_interface.h"

#include <optional>
#include <string>
#include <string_view>

namespace gazepoint {

/// Determines from the data of the server how a calibration ends. Not thread-safe.
///
/// Unlike records, the messages are split at line ends, because a result may arrive in one chunk with records or in
/// several chunks.
class CalibrationWatch {
public:
    using Result = EyetrackerInterface::CalibrationResult;

    /// Must be called when a command to start the calibration is sent. Restarts a running calibration.
    void start();
    void stop();
    [[nodiscard]] bool isRunning() const { return running_; }

    struct News {
        bool isAlive = false;          ///< whether there was a message about the calibration
        std::optional<Result> result;  ///< has a value if the calibration has ended
    };
    /// Reads the next bytes from the server. Ignores them if no calibration is running.
    [[nodiscard]] News take(std::string_view bytes);

private:
    void takeLine(std::string_view line, News &news);
    [[nodiscard]] std::optional<Result> takeAnswer(bool started);

    bool running_ = false;
    int unansweredCount_ = 0;  ///< number of start commands that the server has not acknowledged
    std::string line_;         ///< the start of an incomplete line
    bool lineIsTooLong_ = false;
};

}  // namespace gazepoint
