#pragma once

#include "scripted_asee.h"
#include "support/file_content.h"
#include "trackers/asee/asee_calibration_screen.h"

#include <QApplication>
#include <QSignalSpy>
#include <QStringList>
#include <array>
#include <cstring>

using CalibrationResult = EyetrackerInterface::CalibrationResult;

namespace at = asee_sdk::gaze_record;

/// Long enough for a computer under heavy load.
constexpr int maxWaitMs = 60000;

/// Builds a gaze record. Fields are 0 unless a test sets them.
class TestRecord {
public:
    template <typename T>
    TestRecord &set(std::size_t offset, T value) {
        std::memcpy(bytes_.data() + offset, &value, sizeof value);
        return *this;
    }
    TestRecord &setPoint(std::size_t offset, float x, float y) { return set(offset, x).set(offset + sizeof x, y); }
    [[nodiscard]] const void *data() const { return bytes_.data(); }

private:
    std::array<char, at::sizeBytes> bytes_{};
};

inline ScriptedAsee &library() {
    return ScriptedAsee::instance();
}

inline QStringList takeCalls() {
    QStringList calls;
    for (const std::string &call : library().takeCalls())
        calls << QString::fromStdString(call);
    return calls;
}

/// QSignalSpy records the argument only if its type is registered under this name.
inline const int resultType = qRegisterMetaType<CalibrationResult>("EyetrackerInterface::CalibrationResult");

inline QList<CalibrationResult> resultsIn(const QSignalSpy &spy) {
    QList<CalibrationResult> results;
    for (const QList<QVariant> &arguments : spy)
        results << arguments.first().value<CalibrationResult>();
    return results;
}

/// Returns the existing calibration screen, or null.
inline CalibrationWidget *calibrationScreen() {
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *screen = qobject_cast<CalibrationWidget *>(window))
            return screen;
    }
    return nullptr;
}
