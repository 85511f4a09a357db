#pragma once

#include "trackers/asee/asee_sdk.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/// The vendor's library, doing what a test tells it to and noting what is asked of it.
struct ScriptedAsee {
    static ScriptedAsee &instance();

    void reset();
    /// Notes a call, its numbers and texts included, and returns what the test wants it to.
    int note(const std::string &function, const std::string &arguments);
    /// What was called since the last time, in order.
    [[nodiscard]] std::vector<std::string> takeCalls();
    [[nodiscard]] bool wasCalled(const std::string &call);

    std::map<std::string, int> results;    ///< of the functions; 0 where nothing is said
    std::atomic<bool> pointsFinish{true};  ///< at once, before the call returns
    std::function<void()> whileComputing;

    // What the product has handed over.
    asee::GazeCallback gaze = nullptr;
    asee::ImageCallback image = nullptr;
    asee::PointCallback progress = nullptr;
    asee::PointCallback finish = nullptr;
    void *context = nullptr;  ///< of gaze and image
    void *pointContext = nullptr;

private:
    std::mutex mutex_;
    std::vector<std::string> calls_;
};
