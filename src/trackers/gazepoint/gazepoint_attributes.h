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
        const std::size_t space = message.find(' ');
        const std::string_view part = message.substr(0, space);
        message = space == std::string_view::npos ? std::string_view() : message.substr(space + 1);

        const std::size_t equals = part.find('=');
        if (equals == std::string_view::npos || part.find('=', equals + 1) != std::string_view::npos)
            continue;
        unquoted.assign(part.substr(equals + 1));
        unquoted.erase(std::remove(unquoted.begin(), unquoted.end(), '"'), unquoted.end());
        take(part.substr(0, equals), std::string_view(unquoted));
    }
}

}  // namespace gazepoint
