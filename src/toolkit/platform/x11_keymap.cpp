#include "toolkit/platform/x11_keymap.h"

#include "toolkit/platform/xcb_pointers.h"

#include <array>

// Only the XK_ names. The macros of other Xlib headers clash with Qt.
#include <X11/keysym.h>

namespace {

/// Keys whose codes are consecutive in X11 and in Qt.
struct Range {
    std::uint32_t first;
    std::uint32_t last;
    Qt::Key key;
};

constexpr std::array<Range, 6> ranges = {{
    {XK_a, XK_z, Qt::Key_A},
    {XK_A, XK_Z, Qt::Key_A},
    {XK_0, XK_9, Qt::Key_0},
    {XK_KP_0, XK_KP_9, Qt::Key_0},
    {XK_F1, XK_F35, Qt::Key_F1},
    {XK_KP_F1, XK_KP_F4, Qt::Key_F1},
}};

struct Pair {
    std::uint32_t keysym;
    Qt::Key key;
};

constexpr std::array<Pair, 29> pairs = {{
    {XK_Escape, Qt::Key_Escape},
    {XK_space, Qt::Key_Space},
    {XK_KP_Space, Qt::Key_Space},
    {XK_Return, Qt::Key_Return},
    {XK_KP_Enter, Qt::Key_Enter},
    {XK_Tab, Qt::Key_Tab},
    {XK_KP_Tab, Qt::Key_Tab},
    {XK_BackSpace, Qt::Key_Backspace},
    {XK_Delete, Qt::Key_Delete},
    {XK_KP_Delete, Qt::Key_Delete},
    {XK_Insert, Qt::Key_Insert},
    {XK_KP_Insert, Qt::Key_Insert},
    {XK_Home, Qt::Key_Home},
    {XK_KP_Home, Qt::Key_Home},
    {XK_End, Qt::Key_End},
    {XK_KP_End, Qt::Key_End},
    {XK_Page_Up, Qt::Key_PageUp},
    {XK_KP_Page_Up, Qt::Key_PageUp},
    {XK_Page_Down, Qt::Key_PageDown},
    {XK_KP_Page_Down, Qt::Key_PageDown},
    {XK_Left, Qt::Key_Left},
    {XK_KP_Left, Qt::Key_Left},
    {XK_Up, Qt::Key_Up},
    {XK_KP_Up, Qt::Key_Up},
    {XK_Right, Qt::Key_Right},
    {XK_KP_Right, Qt::Key_Right},
    {XK_Down, Qt::Key_Down},
    {XK_KP_Down, Qt::Key_Down},
    {XK_Pause, Qt::Key_Pause},
}};

std::optional<Qt::Key> keyFromKeysym(std::uint32_t keysym) {
    for (const Range &range : ranges)
        if (keysym >= range.first && keysym <= range.last)
            return static_cast<Qt::Key>(range.key + static_cast<int>(keysym - range.first));
    for (const Pair &pair : pairs)
        if (pair.keysym == keysym)
            return pair.key;
    return std::nullopt;
}

}  // namespace

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
    // Num Lock selects the second column of the keypad, the digits, instead of the first (Home, Left, ...).
    if (numLock && columns_ > 1 && keysyms_[begin + 1] >= XK_KP_0 && keysyms_[begin + 1] <= XK_KP_9)
        return keyFromKeysym(keysyms_[begin + 1]);
    // The columns are the layouts with their shift levels. The first known keysym is used, so that a key has the same
    // meaning in every active layout, Russian or Latin.
    for (std::size_t column = 0; column < columns_; ++column)
        if (const std::optional<Qt::Key> key = keyFromKeysym(keysyms_[begin + column]))
            return key;
    return std::nullopt;
}
