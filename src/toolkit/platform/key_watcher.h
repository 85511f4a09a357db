#pragma once

#include <Qt>
#include <functional>
#include <memory>

/// Base class of the keyboard watchers. Private to GlobalKeyboard, which owns its watcher.
///
/// From construction to destruction, a watcher calls `report` once for each press of a known key, without automatic
/// repeats. It may call `report` from any thread, but never after its destructor has returned.
class KeyWatcher {
public:
    using Report = std::function<void(Qt::Key)>;

    KeyWatcher() = default;
    virtual ~KeyWatcher() = default;
    KeyWatcher(const KeyWatcher &) = delete;
    KeyWatcher &operator=(const KeyWatcher &) = delete;
};

/// Returns a watcher for the whole desktop, or null if the platform does not support it. Logs the reason if it
/// returns null. GUI thread.
std::unique_ptr<KeyWatcher> createDesktopKeyWatcher(const KeyWatcher::Report &report);

/// Returns a watcher for the key events that this application receives while it has the focus. GUI thread.
std::unique_ptr<KeyWatcher> createApplicationKeyWatcher(const KeyWatcher::Report &report);
