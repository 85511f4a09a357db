#include "scripted_asee.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

ScriptedAsee &ScriptedAsee::instance() {
    static ScriptedAsee library;
    return library;
}

void ScriptedAsee::reset() {
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.clear();
    results_.clear();
    pointsFinish = true;
    whileComputing = nullptr;
}

std::vector<std::string> ScriptedAsee::takeCalls() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(calls_, {});
}

bool ScriptedAsee::wasCalled(const std::string &call) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::find(calls_.begin(), calls_.end(), call) != calls_.end();
}

void ScriptedAsee::setResult(const std::string &function, int result) {
    const std::lock_guard<std::mutex> lock(mutex_);
    results_[function] = result;
}

int ScriptedAsee::note(const std::string &function, const std::string &arguments) {
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(function + arguments);
    return results_[function];
}

int ScriptedAsee::_7i_device_connect() {
    return note("connect");
}

int ScriptedAsee::_7i_set_image_callback(asee::ImageCallback callback, void *context) {
    image_ = callback;
    imageContext_ = context;
    return note("image callback");
}

int ScriptedAsee::_7i_set_gaze_callback(asee::GazeCallback callback, void *context) {
    gaze_ = callback;
    gazeContext_ = context;
    return note("gaze callback");
}

int ScriptedAsee::_7i_start(const char *configFolder) {
    return note("start", std::string(" ") + configFolder);
}

int ScriptedAsee::_7i_start_tracking(const void *coefficients) {
    return note("start tracking", std::string(" ") + static_cast<const char *>(coefficients));
}

int ScriptedAsee::_7i_stop() {
    return note("stop");
}

int ScriptedAsee::_7i_set_calibration_mode(int mode) {
    return note("mode", " " + std::to_string(mode));
}

int ScriptedAsee::_7i_start_calibration(int points) {
    return note("start calibration", " " + std::to_string(points));
}

int ScriptedAsee::_7i_start_calibration_point(int number, const float *xy, asee::PointCallback progress,
                                              void *progressContext, asee::PointCallback finish, void *finishContext) {
    char place[40];
    std::snprintf(place, sizeof place, " %d (%.2f, %.2f)", number, static_cast<double>(xy[0]),
                  static_cast<double>(xy[1]));
    progress_ = progress;
    finish_ = finish;
    pointContext_ = progressContext;
    if (pointsFinish)
        finish(number, 0, finishContext);
    return note("point", place);
}

int ScriptedAsee::_7i_cancel_calibration() {
    return note("cancel");
}

int ScriptedAsee::_7i_compute_calibration(void *coefficients) {
    const int result = note("compute");
    if (whileComputing)
        whileComputing();
    std::memset(coefficients, 0, asee::coefficientBytes);
    std::memcpy(coefficients, "measured", sizeof "measured");
    return result;
}

int ScriptedAsee::_7i_complete_calibration() {
    return note("complete");
}

int ScriptedAsee::_7i_get_calibration_score(float *left, float *right) {
    *left = *right = 0.5F;
    return note("score");
}

#define OCELA_EXPORT(name, parameters, arguments)       \
    extern "C" int name parameters;                     \
    extern "C" int name parameters {                    \
        return ScriptedAsee::instance().name arguments; \
    }
OCELA_ASEE_FUNCTIONS(OCELA_EXPORT)
