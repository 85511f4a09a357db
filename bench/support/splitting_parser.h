#pragma once

#include "core/eye_tracking_sample.h"

#include <QByteArray>
#include <QSize>

namespace bench {

/// Parses a GazePoint record with QString::split(). It is the baseline for the back-end's parser.
[[nodiscard]] EyeTrackingSample parseBySplitting(const QByteArray &record, QSize screen, qint64 timestampMs);

}  // namespace bench
