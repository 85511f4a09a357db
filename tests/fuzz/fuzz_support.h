#pragma once

#include <QLoggingCategory>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// What a fuzzer calls with each input, and the replay with each file of the corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace fuzz {

/// One input, read from its start. Turns the log off, as it would be most of the work.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : bytes_(reinterpret_cast<const char *>(data), size) {
        static const bool quiet = (QLoggingCategory::setFilterRules("*=false"), true);
        Q_UNUSED(quiet)
    }

    /// The next byte, 0 behind the end.
    unsigned byte() {
        const std::string_view taken = text(1);
        return taken.empty() ? 0 : static_cast<unsigned char>(taken.front());
    }
    /// The next bytes, fewer at the end.
    std::string_view text(std::size_t size) {
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(taken.size());
        return taken;
    }
    [[nodiscard]] std::string_view rest() const { return bytes_; }

private:
    std::string_view bytes_;
};

/// Ends the program, which is what a fuzzer takes for a finding.
inline void require(bool holds, const char *what) {
    if (!holds)
        qFatal("%s", what);
}

}  // namespace fuzz
