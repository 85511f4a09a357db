#pragma once

#include "trackers/eyetech/quicklink2.h"

#include <QByteArray>
#include <QList>
#include <functional>
#include <mutex>

/// What the scripted library does: a hook for each entry point, which tests set. It does nothing and returns 0 where
/// none is set.
struct Script {
#define OCELA_HOOK(name, parameters, arguments) std::function<int parameters> name;
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_HOOK)
#undef OCELA_HOOK

    void note(const char *name) {
        const std::lock_guard<std::mutex> lock(mutex_);
        calls_ << name;
    }
    /// The calls since the last time this was asked, in order, without those that the poll makes all the time.
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

/// Of the library that the program under test loads; a fresh one for each test.
Script &freshScript();
