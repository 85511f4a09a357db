#pragma once

#include <Qt>
#include <cstdint>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

/// Translates X11 keycodes to Qt keys with the X server's keyboard mapping. GUI thread.
///
/// Known keys are F1 to F35, Latin letters, digits, and the keys for editing and navigation, including the keypad.
class X11Keymap {
public:
    /// Reads the mapping from the server. Call it again when the server reports a change.
    void load(xcb_connection_t *connection);

    /// Returns std::nullopt for an unknown key.
    std::optional<Qt::Key> key(xcb_keycode_t code, bool numLock) const;

private:
    xcb_keycode_t firstCode_ = 0;
    std::size_t columns_ = 0;
    std::vector<xcb_keysym_t> keysyms_;  // `columns_` per keycode, starting with `firstCode_`
};
