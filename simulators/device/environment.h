#pragma once

#include "subject/gaze_angles.h"

#include <QString>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/// Reads the options of a simulated vendor library from environment variables, because a library has no command line.
///
/// An invalid value is logged, once for each value, and treated as not set. Any thread may call these functions.
namespace sim::environment {

/// Returns the number, clamped to `min`..`max`. If it is not set, returns nullopt or `fallback`.
std::optional<double> number(const char *name, double min, double max);
double number(const char *name, double fallback, double min, double max);
int integer(const char *name, int fallback, int min, int max);
/// Returns any integer; 0 if it is not set.
int anyInteger(const char *name);

QString text(const char *name);

/// Returns the angles, both clamped to `-max_deg`..`max_deg`.
std::optional<GazeAngles> gazeAngles(const char *name, double max_deg);

/// Returns the words of a comma-separated list. Words that are not in `known` are invalid.
std::set<std::string> words(const char *name, std::initializer_list<std::string_view> known);

struct Size {
    int width = 0;
    int height = 0;
};
/// Parses "WxH", where both numbers may be negative or 0.
std::optional<Size> size(const char *name);
/// Returns the size of a camera image with each side clamped to 16..8192, or `fallback` if it is not set.
Size imageSize(const char *name, Size fallback);

}  // namespace sim::environment
