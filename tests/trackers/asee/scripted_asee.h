#pragma once

#include "trackers/asee/asee_sdk.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/// The vendor's library, doing what a test tells it to and noting what is asked of it. Any thread.
class ScriptedAsee {
public:
    static ScriptedAsee &instance();

    void reset();
    /// What was called since the last time, in order; points with their number and place.
    [[nodiscard]] std::vector<std::string> takeCalls();
    [[nodiscard]] bool wasCalled(const std::string &call);
    void setResult(const std::string &function, int result);

    // What the library's threads do.
    void sendGaze(const void *record) { gaze_(record, gazeContext_); }
    void sendImage(const unsigned char *image, int size, int width, int height) {
        image_(image, size, width, height, 0, imageContext_);
    }
    void sendProgress(int percent) { progress_(1, percent, pointContext_); }
    void sendFinish() { finish_(1, 0, pointContext_); }

    std::atomic<bool> pointsFinish{true};  ///< at once, before the call returns
    std::function<void()> whileComputing;

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
    OCELA_ASEE_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

private:
    int note(const std::string &function, const std::string &arguments = {});

    std::mutex mutex_;  // guards the calls and the results
    std::vector<std::string> calls_;
    std::map<std::string, int> results_;
    asee::GazeCallback gaze_ = nullptr;
    void *gazeContext_ = nullptr;
    asee::ImageCallback image_ = nullptr;
    void *imageContext_ = nullptr;
    asee::PointCallback progress_ = nullptr;
    asee::PointCallback finish_ = nullptr;
    void *pointContext_ = nullptr;
};
