#pragma once

#include "core/eye_tracking_sample.h"

#include <cstddef>

/// The JSON text of samples, byte for byte what QJsonDocument makes of EyeTrackingSample::toJson() in its compact form,
/// at a twentieth of the cost. Reentrant; any thread may call these.

/// Room that the text of any sample fits in, in bytes.
constexpr std::size_t sampleJsonRoom = 1024;

/// Writes the sample as an object to `to`, without a NUL, and returns the end of what was written.
[[nodiscard]] char *writeSampleJson(char *to, const EyeTrackingSample &sample);

/// Whether everything that goes into the text is the same, bit for bit.
[[nodiscard]] bool haveSameJson(const EyeTrackingSample &a, const EyeTrackingSample &b);
