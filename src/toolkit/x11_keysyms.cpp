#include "toolkit/x11_keysyms.h"

#include <array>

// Only the XK_ names; no header of Xlib, whose macros clash with Qt.
#include <X11/keysym.h>

namespace {

/// Runs of keys that have the same order in both worlds.
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

}  // namespace

std::optional<Qt::Key> keyFromKeysym(std::uint32_t keysym) {
    for (const Range &range : ranges)
        if (keysym >= range.first && keysym <= range.last)
            return static_cast<Qt::Key>(range.key + static_cast<int>(keysym - range.first));
    for (const Pair &pair : pairs)
        if (pair.keysym == keysym)
            return pair.key;
    return std::nullopt;
}
