#pragma once

#include "core/eye_tracking_sample.h"

#include <QByteArray>
#include <QSize>

namespace bench {

/// The sample of a GazePoint record by the obvious way of QString::split(): what the back-end's parser is
/// compared with.
[[nodiscard]] EyeTrackingSample parseBySplitting(const QByteArray &record, QSize screen, qint64 timestampMs);

}  // namespace bench
