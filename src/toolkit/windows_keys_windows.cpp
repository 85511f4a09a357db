#include "toolkit/windows_keys.h"

#include <array>
#include <windows.h>

namespace {

/// Runs of keys that have the same order in both worlds.
struct Range {
    std::uint32_t first;
    std::uint32_t last;
    Qt::Key key;
};

constexpr std::array<Range, 4> ranges = {{
    {'A', 'Z', Qt::Key_A},
    {'0', '9', Qt::Key_0},
    {VK_NUMPAD0, VK_NUMPAD9, Qt::Key_0},
    {VK_F1, VK_F24, Qt::Key_F1},
}};

struct Pair {
    std::uint32_t code;
    Qt::Key key;
};

constexpr std::array<Pair, 16> pairs = {{
    {VK_ESCAPE, Qt::Key_Escape},
    {VK_SPACE, Qt::Key_Space},
    {VK_RETURN, Qt::Key_Return},
    {VK_TAB, Qt::Key_Tab},
    {VK_BACK, Qt::Key_Backspace},
    {VK_DELETE, Qt::Key_Delete},
    {VK_INSERT, Qt::Key_Insert},
    {VK_HOME, Qt::Key_Home},
    {VK_END, Qt::Key_End},
    {VK_PRIOR, Qt::Key_PageUp},
    {VK_NEXT, Qt::Key_PageDown},
    {VK_LEFT, Qt::Key_Left},
    {VK_UP, Qt::Key_Up},
    {VK_RIGHT, Qt::Key_Right},
    {VK_DOWN, Qt::Key_Down},
    {VK_PAUSE, Qt::Key_Pause},
}};

}  // namespace

std::optional<Qt::Key> keyFromVirtualKey(std::uint32_t code, bool extended) {
    if (code == VK_RETURN && extended)
        return Qt::Key_Enter;
    for (const Range &range : ranges)
        if (code >= range.first && code <= range.last)
            return static_cast<Qt::Key>(range.key + static_cast<int>(code - range.first));
    for (const Pair &pair : pairs)
        if (pair.code == code)
            return pair.key;
    return std::nullopt;
}
