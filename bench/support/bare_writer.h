#pragma once

#include "core/eye_tracking_sample.h"

#include <string>
#include <vector>

/// Writers of record files with nothing around the writing; they abort on any error.
namespace bench {

/// Formats the rows of a record with std::to_chars and hands them to write() in large pieces. The file is
/// neither synced nor renamed.
void writeFormatted(const std::string &path, const std::string &headerLine,
                    const std::vector<EyeTrackingSample> &samples);

/// Writes finished bytes to a temporary file in pieces of 256 KiB, syncs it and renames it to `path`: the same
/// dealings with the disk as a saved record has.
void writeReadyBytes(const std::string &path, const std::string &bytes);

}  // namespace bench
