#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace gazepoint {

/// Splits the message at each space, and calls `take(key, value)` for every part with exactly one equals sign. All
/// double quotes are removed from the value.
template <typename Take>
void forEachAttribute(std::string_view message, Take take) {
    std::string unquoted;
    while (!message.empty()) {
        const std::size_t space = std::min(message.find(' '), message.size());
        const std::string_view part = message.substr(0, space);
        message.remove_prefix(std::min(space + 1, message.size()));

        const std::size_t equals = part.find('=');
        if (equals == std::string_view::npos || part.find('=', equals + 1) != std::string_view::npos)
            continue;
        unquoted.assign(part.substr(equals + 1));
        unquoted.erase(std::remove(unquoted.begin(), unquoted.end(), '"'), unquoted.end());
        take(part.substr(0, equals), std::string_view(unquoted));
    }
}

}  // namespace gazepoint
