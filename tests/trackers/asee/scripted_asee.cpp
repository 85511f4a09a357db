#include "scripted_asee.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

ScriptedAsee &library() {
    return ScriptedAsee::instance();
}

// Return the text of an argument for the list of calls.

std::string textOf(long number) {
    return ' ' + std::to_string(number);
}
std::string textOf(const char *text) {
    return std::string(" ") + text;
}
std::string textOf(const void *coefficients) {
    return textOf(static_cast<const char *>(coefficients));
}
std::string textOf(const float *xy) {
    return textOf(std::lround(100 * xy[0])) + textOf(std::lround(100 * xy[1]));
}

/// Runs the fake function `name`. The types of the arguments select the overload.
struct Call {
    const char *name;

    int operator()(asee_sdk::GazeCallback callback, void *context) const {
        library().gaze = callback;
        library().context = context;
        return library().note(name, {});
    }

    int operator()(asee_sdk::ImageCallback callback, void *) const {
        library().image = callback;
        return library().note(name, {});
    }

    int operator()(int number, const float *xy, asee_sdk::PointCallback progress, void *context,
                   asee_sdk::PointCallback finish, void *) const {
        library().progress = progress;
        library().finish = finish;
        library().pointContext = context;
        if (library().pointsFinish)
            finish(number, 0, context);
        return library().note(name, textOf(number) + textOf(xy));
    }

    int operator()(void *coefficients) const {
        const int result = library().note(name, {});
        if (library().whileComputing)
            library().whileComputing();
        std::memcpy(coefficients, "measured", sizeof "measured");
        return result;
    }

    int operator()(float *left, float *right) const {
        *left = 0.25F;
        *right = 0.75F;
        return library().note(name, {});
    }

    template <typename... Arguments>
    int operator()(Arguments... arguments) const {
        return library().note(name, (std::string() + ... + textOf(arguments)));
    }
};

}  // namespace

ScriptedAsee &ScriptedAsee::instance() {
    static ScriptedAsee library;
    return library;
}

void ScriptedAsee::reset() {
    (void)takeCalls();
    results.clear();
    pointsFinish = true;
    whileComputing = nullptr;
}

int ScriptedAsee::note(const std::string &function, const std::string &arguments) {
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(function.substr(std::strlen("_7i_")) + arguments);
    return results[function];
}

std::vector<std::string> ScriptedAsee::takeCalls() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(calls_, {});
}

bool ScriptedAsee::wasCalled(const std::string &call) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::find(calls_.begin(), calls_.end(), call) != calls_.end();
}

#define OCELA_EXPORT(name, parameters, arguments) \
    extern "C" int name parameters;               \
    extern "C" int name parameters {              \
        return Call{#name} arguments;             \
    }
OCELA_ASEE_FUNCTIONS(OCELA_EXPORT)
