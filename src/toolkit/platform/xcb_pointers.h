#pragma once

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

/// Owns a reply, an event or an error of XCB, which allocates them with malloc().
struct XcbFree {
    void operator()(void *block) const { std::free(block); }
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;

/// Owns a connection to the X server.
struct XcbDisconnect {
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, XcbDisconnect>;
