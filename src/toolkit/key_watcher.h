#pragma once

#include <Qt>
#include <functional>
#include <memory>

/// One way of watching the keyboard; private to GlobalKeyboard, which owns the watcher and its lifetime.
///
/// A watcher watches from its construction to the end of its destructor, and calls `report` once for each
/// press of a key that it can name: a key that is held down repeats nothing. It may call from any thread, but
/// never after its destructor has returned.
class KeyWatcher {
public:
    using Report = std::function<void(Qt::Key)>;

    KeyWatcher() = default;
    virtual ~KeyWatcher() = default;
    KeyWatcher(const KeyWatcher &) = delete;
    KeyWatcher &operator=(const KeyWatcher &) = delete;
};

/// Watches the whole desktop, by what the platform offers for it; null, with the reason in a debug line,
/// where it offers nothing. GUI thread.
std::unique_ptr<KeyWatcher> createDesktopKeyWatcher(const KeyWatcher::Report &report);

/// Watches the key events that this application gets, that is, while it has the focus. GUI thread.
std::unique_ptr<KeyWatcher> createApplicationKeyWatcher(const KeyWatcher::Report &report);
