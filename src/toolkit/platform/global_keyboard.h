#pragma once

#include <QObject>
#include <memory>

class KeyWatcher;

/// Reports key presses, even while another program has the focus. GUI thread.
///
/// The process has one instance. The first Install() creates it, and it is destroyed with the application object. To
/// receive keys, call Install() and connect to Instance().
///
/// The keys come from a low-level keyboard hook on Windows and from the RECORD extension under X11. Elsewhere (Wayland,
/// no display) they come from the application's own key events, so only keys pressed while it has the focus are
/// reported.
class GlobalKeyboard : public QObject {
    Q_OBJECT

public:
    ~GlobalKeyboard() override;

    /// Creates the instance unless it exists. Requires the application object.
    static void Install();

    /// Returns null before Install() and after the application object was destroyed.
    static GlobalKeyboard *Instance();

Q_SIGNALS:
    /// Emitted once for each press, without automatic repeats. It is emitted from the event loop, never while a widget
    /// handles the key, so receivers may close or delete any window.
    void keyPressed(Qt::Key key);

private:
    GlobalKeyboard();

    std::unique_ptr<KeyWatcher> watcher_;
};
