#pragma once

#include <QByteArray>
#include <string_view>

/// Functions for protocol text. They work on views, so that parsing copies only the text that it stores.
namespace byte_text {

[[nodiscard]] inline std::string_view view(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

/// `text` must be shorter than 2 GiB.
[[nodiscard]] inline QByteArray copy(std::string_view text) {
    return {text.data(), static_cast<int>(text.size())};
}

/// Returns at most the first 200 bytes, for a log line.
[[nodiscard]] inline QByteArray shortened(std::string_view text) {
    constexpr std::size_t maxLoggedBytes = 200;
    return copy(text.substr(0, maxLoggedBytes));
}

[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view whiteSpace = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) + 1 - first);
}

[[nodiscard]] inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

[[nodiscard]] inline bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// Compares ASCII letters without regard to case.
[[nodiscard]] inline bool equalsIgnoringCase(const QByteArray &text, const char *word) {
    return qstricmp(text.constData(), word) == 0;
}

[[nodiscard]] inline bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// Returns whether a line, without its CR LF, contains a character that other programs may take for its end.
[[nodiscard]] inline bool hasLineBreakOrNul(std::string_view line) {
    return line.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

}  // namespace byte_text
