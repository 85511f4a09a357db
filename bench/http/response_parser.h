#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bench {

/// Parses one HTTP response as it arrives, and finds its end by "Content-Length".
class ResponseParser {
public:
    enum class State { Incomplete, Complete, Broken };

    /// Returns Broken for a status other than 200, a missing length, an overlong header, or more bytes than announced.
    State feed(std::string_view bytes);

private:
    State readHeader();

    std::string header_;  ///< received so far, until the empty line
    std::size_t missingBytes_ = 0;
    bool inBody_ = false;
};

}  // namespace bench
