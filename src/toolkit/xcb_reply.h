#pragma once

#include <cstdlib>
#include <memory>

/// XCB hands out its replies, events and errors as blocks of malloc().
struct XcbFree {
    void operator()(void *block) const { std::free(block); }
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;
