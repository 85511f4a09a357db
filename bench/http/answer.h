#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bench {

/// One HTTP answer as it arrives: knows by "Content-Length" where it ends. No socket in it.
class Answer {
public:
    enum class State { Incomplete, Complete, Broken };

    /// Broken: any status but 200, no length, an endless header, or more bytes than announced.
    State feed(std::string_view bytes);

private:
    State readHead();

    std::string head_;  ///< until the empty line has come, what there is of the header
    std::size_t missing_ = 0;
    bool inBody_ = false;
};

}  // namespace bench
