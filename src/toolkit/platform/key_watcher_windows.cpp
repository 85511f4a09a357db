#include "toolkit/base/toolkit_log.h"
#include "toolkit/platform/key_watcher.h"

#include <QSemaphore>
#include <QThread>
#include <array>
#include <bitset>
#include <optional>
#include <windows.h>

namespace {

/// Keys whose codes are consecutive in Windows and in Qt.
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

/// Returns std::nullopt for unknown keys. `extended` distinguishes the Enter key of the keypad from the main one.
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

/// A low-level keyboard hook with its own thread. Windows calls the hook for each key of every program and waits for
/// it. In the GUI thread, a long operation would delay all keyboard input, and Windows would remove the hook.
class WindowsKeyWatcher : public KeyWatcher {
public:
    explicit WindowsKeyWatcher(const Report &report);
    ~WindowsKeyWatcher() override;

    bool isWatching() const { return hook_ != nullptr; }

private:
    void run();
    void handle(WPARAM message, const KBDLLHOOKSTRUCT &event);
    static LRESULT CALLBACK hookProcedure(int code, WPARAM message, LPARAM data);

    /// The hook procedure has no context argument. Used only in the hook's thread.
    static thread_local WindowsKeyWatcher *current_;

    const Report report_;
    std::bitset<256> pressed_;  // by virtual-key code; used in the hook's thread
    HHOOK hook_ = nullptr;      // written before `started_` is released
    DWORD threadId_ = 0;        // written before `started_` is released
    QSemaphore started_;
    std::unique_ptr<QThread> thread_;
};

thread_local WindowsKeyWatcher *WindowsKeyWatcher::current_ = nullptr;

WindowsKeyWatcher::WindowsKeyWatcher(const Report &report) : report_(report) {
    thread_.reset(QThread::create([this] { run(); }));
    thread_->setObjectName("keyboard hook");
    thread_->start();
    started_.acquire();
}

WindowsKeyWatcher::~WindowsKeyWatcher() {
    // Without a hook the thread has ended, and another thread may have its identifier.
    if (hook_)
        PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
    thread_->wait();
}

void WindowsKeyWatcher::run() {
    MSG message;
    // Creates the thread's message queue. Without a queue, WM_QUIT would be lost.
    PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);
    current_ = this;
    threadId_ = GetCurrentThreadId();
    const HHOOK hook = SetWindowsHookExW(WH_KEYBOARD_LL, hookProcedure, GetModuleHandleW(nullptr), 0);
    if (!hook) {
        const QString reason = qt_error_string();
        qCWarning(lcToolkit).noquote() << "Cannot watch the keyboard:" << reason;
    }
    hook_ = hook;
    started_.release();
    if (!hook)
        return;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        // Windows calls the hook inside GetMessageW().
    }
    UnhookWindowsHookEx(hook);
}

LRESULT CALLBACK WindowsKeyWatcher::hookProcedure(int code, WPARAM message, LPARAM data) {
    if (code == HC_ACTION)
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the Windows API passes the pointer as an integer
        current_->handle(message, *reinterpret_cast<const KBDLLHOOKSTRUCT *>(data));
    return CallNextHookEx(nullptr, code, message, data);
}

void WindowsKeyWatcher::handle(WPARAM message, const KBDLLHOOKSTRUCT &event) {
    if (event.vkCode >= pressed_.size())
        return;
    // F10 and any key pressed together with Alt are "system" keys.
    if (message != WM_KEYDOWN && message != WM_SYSKEYDOWN) {
        pressed_.reset(event.vkCode);
        return;
    }
    if (pressed_.test(event.vkCode))  // automatic repeat: a press without a release in between
        return;
    pressed_.set(event.vkCode);
    if (const std::optional<Qt::Key> key = keyFromVirtualKey(event.vkCode, event.flags & LLKHF_EXTENDED))
        report_(*key);
}

}  // namespace

std::unique_ptr<KeyWatcher> createDesktopKeyWatcher(const KeyWatcher::Report &report) {
    auto watcher = std::make_unique<WindowsKeyWatcher>(report);
    return watcher->isWatching() ? std::unique_ptr<KeyWatcher>(std::move(watcher)) : nullptr;
}
