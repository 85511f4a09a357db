#pragma once

#include <cstddef>
#include <string>
#include <string_view>

class QFileDevice;

/// Writes text to an open file in large pieces. All text is in the file only after flush(). One thread.
///
/// After a failure, a function returns false, and the file's errorString() returns the reason.
class BufferedWriter {
public:
    explicit BufferedWriter(QFileDevice &file);

    [[nodiscard]] bool append(std::string_view text);
    [[nodiscard]] bool flush();

private:
    static constexpr std::size_t pieceBytes = 1 << 18;

    QFileDevice &file_;
    std::string text_;
};
