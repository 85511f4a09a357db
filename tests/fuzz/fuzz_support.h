#pragma once

#include <QLoggingCategory>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Called by the fuzzer with each input, and by the replay program with each file of the corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace fuzz {

/// Reads one input from its start. Disables the log, because logging would take most of the time.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : bytes_(reinterpret_cast<const char *>(data), size) {
        static const bool quiet = (QLoggingCategory::setFilterRules("*=false"), true);
        Q_UNUSED(quiet)
    }

    /// Consumes the next byte. Returns 0 at the end.
    unsigned byte() {
        const std::string_view taken = text(1);
        return taken.empty() ? 0 : static_cast<unsigned char>(taken.front());
    }
    /// Consumes the next `size` bytes, or fewer at the end.
    std::string_view text(std::size_t size) {
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(taken.size());
        return taken;
    }
    [[nodiscard]] std::string_view rest() const { return bytes_; }

private:
    std::string_view bytes_;
};

/// Aborts the program with the message `what` unless `holds` is true. The fuzzer reports this as a finding.
inline void require(bool holds, const char *what) {
    if (!holds)
        qFatal("%s", what);
}

}  // namespace fuzz
