#pragma once

#include "core/eye_tracking_sample.h"
#include "streams/lsl_outlet.h"

#include <QRect>
#include <QString>
#include <array>
#include <optional>
#include <vector>

struct NumberedSample;

/// The stream "Ocela Gaze": its description, and the values of its samples.
namespace gaze_stream {

constexpr int channelCount = 14;
using Values = std::array<double, channelCount>;

/// The screen that the tracker tracks.
struct Screen {
    int number = 0;  ///< of the system's screens, from 1
    QSize pixels;

    [[nodiscard]] bool operator==(const Screen &other) const {
        return number == other.number && pixels == other.pixels;
    }
};

/// The tracker whose samples are sent.
struct Source {
    QString tracker;       ///< EyetrackerInterface::name()
    QString manufacturer;  ///< empty if it is not known
    QString model;         ///< empty if it is not known
    /// Whether the samples have the axes of the right eye exchanged. The stream exchanges them back.
    bool rightEyeExchanged = false;
    QRect area;  ///< EyetrackerInterface::pixelArea(); empty if it is not known
    std::optional<Screen> screen;

    /// Compares the parts that can change while a tracker is selected. The others follow from the tracker.
    [[nodiscard]] bool operator==(const Source &other) const {
        return tracker == other.tracker && area == other.area && screen == other.screen;
    }
};

[[nodiscard]] lsl::StreamDescription description(const Source &source);

/// Returns the values of the channels. Values that were not measured, for example those of a lost eye, are NaN. The
/// diameter of both pupils is their mean, so it is NaN if one is lost.
[[nodiscard]] Values valuesOf(const NumberedSample &sample, bool rightEyeExchanged);

}  // namespace gaze_stream

/// Returns an id that is the same in each run on this computer. It is derived from the system's machine id, which it
/// does not reveal.
[[nodiscard]] QByteArray lslSourceId(const QString &name);
