#pragma once

#include <Qt>
#include <cstdint>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

/// The X server's table of what each key (by its keycode) means. GUI thread.
class X11Keymap {
public:
    /// Asks the server for the current table; to be called again when the server says that it has changed.
    void load(xcb_connection_t *connection);

    /// Nothing for a key that is not one of those we name.
    std::optional<Qt::Key> key(xcb_keycode_t code, bool numLock) const;

private:
    xcb_keycode_t firstCode_ = 0;
    std::size_t columns_ = 0;
    std::vector<xcb_keysym_t> keysyms_;  // `columns_` a keycode, from `firstCode_` on
};
