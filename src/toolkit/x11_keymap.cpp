#include "toolkit/x11_keymap.h"

#include "toolkit/x11_keysyms.h"
#include "toolkit/xcb_reply.h"

#include <X11/keysym.h>

void X11Keymap::load(xcb_connection_t *connection) {
    const xcb_setup_t *setup = xcb_get_setup(connection);
    firstCode_ = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const XcbReply<xcb_get_keyboard_mapping_reply_t> reply(
        xcb_get_keyboard_mapping_reply(connection, xcb_get_keyboard_mapping(connection, firstCode_, count), nullptr));
    if (!reply)
        return;
    const xcb_keysym_t *first = xcb_get_keyboard_mapping_keysyms(reply.get());
    columns_ = reply->keysyms_per_keycode;
    keysyms_.assign(first, first + xcb_get_keyboard_mapping_keysyms_length(reply.get()));
}

std::optional<Qt::Key> X11Keymap::key(xcb_keycode_t code, bool numLock) const {
    if (code < firstCode_)
        return std::nullopt;
    const std::size_t begin = static_cast<std::size_t>(code - firstCode_) * columns_;
    if (begin + columns_ > keysyms_.size())
        return std::nullopt;
    // Num Lock turns the keypad's first column (Home, Left, ...) into its second (digits).
    if (numLock && columns_ > 1 && keysyms_[begin + 1] >= XK_KP_0 && keysyms_[begin + 1] <= XK_KP_9)
        return keyFromKeysym(keysyms_[begin + 1]);
    // The columns hold the layouts and their shifted levels. The first that names one of our keys counts, so
    // that a key means the same whichever of the user's layouts is active, Russian or Latin.
    for (std::size_t column = 0; column < columns_; ++column)
        if (const std::optional<Qt::Key> key = keyFromKeysym(keysyms_[begin + column]))
            return key;
    return std::nullopt;
}
