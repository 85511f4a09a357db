#include "toolkit/key_watcher.h"
#include "toolkit/toolkit_log.h"
#include "toolkit/windows_keys.h"

#include <QSemaphore>
#include <QThread>
#include <bitset>
#include <windows.h>

namespace {

/// The low-level keyboard hook, in a thread of its own: Windows calls it for every key of every program and
/// waits for it, so a busy GUI thread would make the whole desktop's keyboard lag, and in the end lose the
/// hook.
class WindowsKeyWatcher : public KeyWatcher {
public:
    explicit WindowsKeyWatcher(const Report &report);
    ~WindowsKeyWatcher() override;

    bool isWatching() const { return hook_ != nullptr; }

private:
    void run();
    void handle(WPARAM message, const KBDLLHOOKSTRUCT &event);
    static LRESULT CALLBACK hookProcedure(int code, WPARAM message, LPARAM data);

    /// The hook procedure is given no context. Set and used in the hook's thread alone.
    static thread_local WindowsKeyWatcher *current_;

    const Report report_;
    std::bitset<256> down_;  // by virtual key, hook's thread
    HHOOK hook_ = nullptr;   // written before `started_` is released
    DWORD threadId_ = 0;     // likewise
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
    // Without a hook the thread has ended, and another one may have its number.
    if (hook_)
        PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
    thread_->wait();
}

void WindowsKeyWatcher::run() {
    MSG message;
    // Makes the thread's message queue, so that the WM_QUIT of an early end is not lost.
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
        // Waiting for messages is all it takes: Windows calls the hook from within.
    }
    UnhookWindowsHookEx(hook);
}

LRESULT CALLBACK WindowsKeyWatcher::hookProcedure(int code, WPARAM message, LPARAM data) {
    if (code == HC_ACTION)
        // NOLINTNEXTLINE(performance-no-int-to-ptr): so it is handed over
        current_->handle(message, *reinterpret_cast<const KBDLLHOOKSTRUCT *>(data));
    return CallNextHookEx(nullptr, code, message, data);
}

void WindowsKeyWatcher::handle(WPARAM message, const KBDLLHOOKSTRUCT &event) {
    if (event.vkCode >= down_.size())
        return;
    // F10, and any key together with Alt, comes as a "system" key.
    if (message != WM_KEYDOWN && message != WM_SYSKEYDOWN) {
        down_.reset(event.vkCode);
        return;
    }
    if (down_.test(event.vkCode))  // held down: Windows repeats the press without a release
        return;
    down_.set(event.vkCode);
    if (const std::optional<Qt::Key> key = keyFromVirtualKey(event.vkCode, event.flags & LLKHF_EXTENDED))
        report_(*key);
}

}  // namespace

std::unique_ptr<KeyWatcher> createDesktopKeyWatcher(const KeyWatcher::Report &report) {
    auto watcher = std::make_unique<WindowsKeyWatcher>(report);
    return watcher->isWatching() ? std::unique_ptr<KeyWatcher>(std::move(watcher)) : nullptr;
}
