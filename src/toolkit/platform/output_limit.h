#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Limits the output of the program to a pipe or socket, because it may print 100 lines per second for days. A text may
/// be repeated 1000 times in succession; a different text is still printed after that. All texts together have at most
/// 10 MB. Not thread-safe.
class OutputLimit {
public:
    static constexpr std::size_t maxBytes = 10 << 20;
    static constexpr int maxRepetitionCount = 1000;

    /// Returns whether `text` may be printed, and counts it.
    [[nodiscard]] bool admits(std::string_view text);

private:
    std::string lastText_;
    int repetitionCount_ = 0;
    std::size_t byteCount_ = 0;
};
