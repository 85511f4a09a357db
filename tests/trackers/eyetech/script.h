#pragma once

#include "trackers/eyetech/sdk/quicklink2.h"

#include <QByteArray>
#include <QList>
#include <functional>
#include <mutex>

/// The behaviour of the fake library. A test can set a hook for each entry point. Without a hook, it returns 0.
struct Script {
#define OCELA_HOOK(name, parameters, arguments) std::function<int parameters> name;
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_HOOK)
#undef OCELA_HOOK

    void note(const char *name) {
        const std::lock_guard<std::mutex> lock(mutex_);
        calls_ << name;
    }
    /// Returns the calls since the last takeCalls(), in order, without the calls for status and frames, which are
    /// polled.
    [[nodiscard]] QList<QByteArray> takeCalls() {
        const std::lock_guard<std::mutex> lock(mutex_);
        QList<QByteArray> calls;
        calls.swap(calls_);
        for (const char *polled : {"QLDevice_GetStatus", "QLDevice_GetFrame", "QLCalibration_GetStatus"})
            calls.removeAll(polled);
        return calls;
    }

private:
    std::mutex mutex_;
    QList<QByteArray> calls_;
};

/// Resets and returns the script of the library that the program loads.
Script &freshScript();
