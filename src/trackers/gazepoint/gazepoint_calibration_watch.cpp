#include "trackers/gazepoint/gazepoint_calibration_watch.h"

#include "trackers/gazepoint/gazepoint_attributes.h"

#include <algorithm>

using gazepoint::CalibrationWatch;
using Result = CalibrationWatch::Result;

namespace {

constexpr std::string_view answerPrefix = "<ACK ID=\"CALIBRATE_START\"";
constexpr std::string_view calibrationPrefix = "<CAL ";
constexpr std::string_view resultPrefix = "<CAL ID=\"CALIB_RESULT\"";

/// A result of 100 points, the maximum of the server, has 15 KB.
constexpr std::size_t maxLineBytes = std::size_t{64} * 1024;

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Removes the end of the element, which may follow the last value without a space.
std::string_view withoutEnd(std::string_view line) {
    return line.substr(0, line.rfind("/>"));
}

bool isStarted(std::string_view answer) {
    bool started = false;
    gazepoint::forEachAttribute(withoutEnd(answer), [&](std::string_view key, std::string_view value) {
        if (key == "STATE")
            started = value == "1";
    });
    return started;
}

/// Returns whether the key is a flag of a point: LV1, RV1, LV2, ...
bool isFlag(std::string_view key) {
    return key.size() > 2 && (startsWith(key, "LV") || startsWith(key, "RV"));
}

Result resultOf(std::string_view line) {
    auto result = Result::Unknown;
    gazepoint::forEachAttribute(withoutEnd(line), [&](std::string_view key, std::string_view value) {
        if (!isFlag(key) || result == Result::Done)
            return;
        result = value == "1" ? Result::Done : Result::Failed;
    });
    return result;
}

}  // namespace

void CalibrationWatch::start() {
    if (!running_)
        stop();
    running_ = true;
    ++unansweredCount_;
}

void CalibrationWatch::stop() {
    running_ = false;
    unansweredCount_ = 0;
    line_.clear();
    lineIsTooLong_ = false;
}

CalibrationWatch::News CalibrationWatch::take(std::string_view bytes) {
    News news;
    while (running_ && !bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view part = bytes.substr(0, end);
        bytes.remove_prefix(std::min(part.size() + 1, bytes.size()));

        lineIsTooLong_ = lineIsTooLong_ || line_.size() + part.size() > maxLineBytes;
        if (!lineIsTooLong_)
            line_ += part;
        if (end == std::string_view::npos)
            break;
        if (!lineIsTooLong_)
            takeLine(line_, news);
        line_.clear();
        lineIsTooLong_ = false;
        if (news.result)
            stop();
    }
    return news;
}

void CalibrationWatch::takeLine(std::string_view line, News &news) {
    if (startsWith(line, answerPrefix)) {
        news.isAlive = true;
        news.result = takeAnswer(isStarted(line));
    } else if (startsWith(line, calibrationPrefix)) {
        news.isAlive = true;
        // An earlier result belongs to a calibration that was restarted.
        if (unansweredCount_ == 0 && startsWith(line, resultPrefix))
            news.result = resultOf(line);
    }
}

/// Takes the answer to a start command, or the message that another client or the server's window stopped the
/// calibration.
std::optional<Result> CalibrationWatch::takeAnswer(bool started) {
    if (unansweredCount_ == 0)
        return started ? std::nullopt : std::optional(Result::Cancelled);
    --unansweredCount_;
    return started || unansweredCount_ > 0 ? std::nullopt : std::optional(Result::Failed);
}
