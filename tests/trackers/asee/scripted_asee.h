#pragma once

#include "trackers/asee/sdk/asee_sdk.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/// A fake of the vendor's library. It records its calls, and its behaviour is set by each test.
struct ScriptedAsee {
    static ScriptedAsee &instance();

    void reset();
    /// Records a call with its arguments, and returns the result that the test has set.
    int note(const std::string &function, const std::string &arguments);
    /// Returns the calls since the last takeCalls(), in order.
    [[nodiscard]] std::vector<std::string> takeCalls();
    [[nodiscard]] bool wasCalled(const std::string &call);

    std::map<std::string, int> results;    ///< by function; the default is 0
    std::atomic<bool> pointsFinish{true};  ///< whether a point is finished during its call
    std::function<void()> whileComputing;

    // The callbacks that the program has set.
    asee_sdk::GazeCallback gaze = nullptr;
    asee_sdk::ImageCallback image = nullptr;
    asee_sdk::PointCallback progress = nullptr;
    asee_sdk::PointCallback finish = nullptr;
    void *context = nullptr;  ///< for gaze and image
    void *pointContext = nullptr;

private:
    std::mutex mutex_;
    std::vector<std::string> calls_;
};
