#pragma once

#include "core/eye_tracking_sample.h"

#include <string>
#include <vector>

/// Minimal writers of record files, as baselines. They abort the process on any error.
namespace bench {

/// Formats rows with std::to_chars and writes them in pieces of 256 KiB. The file is neither synced nor renamed.
void formatAndWrite(const std::string &path, const std::string &headerLine,
                    const std::vector<EyeTrackingSample> &samples);

/// Writes formatted bytes to a temporary file in pieces of 256 KiB, syncs it and renames it to `path`, as
/// EyeTrackingCSV::saveFile() does.
void writeFormattedBytes(const std::string &path, const std::string &bytes);

}  // namespace bench
