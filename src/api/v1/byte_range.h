#pragma once

#include <QByteArray>
#include <optional>

namespace api_v1 {

/// A part of a file.
struct ByteRange {
    qint64 first = 0;
    qint64 sizeBytes = 0;

    [[nodiscard]] bool isSatisfiable() const { return sizeBytes > 0; }
};

/// Reads a header "Range: bytes=..." with one range, for a file of `fileBytes` bytes. Returns nothing if the header
/// must be ignored: it is empty, not valid or has several ranges. The range is empty if it is outside of the file.
[[nodiscard]] std::optional<ByteRange> parseByteRange(const QByteArray &header, qint64 fileBytes);

}  // namespace api_v1
