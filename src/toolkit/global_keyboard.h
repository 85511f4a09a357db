#pragma once

#include <QObject>
#include <memory>

class KeyWatcher;

/// Tells which keys the user presses, also while another program has the focus.
///
/// One object for the whole process. The first Install() makes it, and it goes with the application object;
/// whoever wants keys calls Install() and connects to Instance(). Both belong to the GUI thread, as does the
/// signal.
///
/// On Windows the keys come from a low-level keyboard hook, under X11 from the RECORD extension. Where there
/// is neither (Wayland, no display), the application's own key events take their place, and keys are seen
/// only while the application has the focus.
class GlobalKeyboard : public QObject {
    Q_OBJECT

public:
    ~GlobalKeyboard() override;

    /// Starts watching; does nothing when the watch is on already. Needs the application object.
    static void Install();

    /// Null before Install() and after the end of the application object.
    static GlobalKeyboard *Instance();

Q_SIGNALS:
    /// Once a press, without the repeats of a key held down. Emitted from the event loop, never from within
    /// the handling of the key by a widget, so that a receiver may close or delete any window.
    void keyPressed(Qt::Key key);

private:
    GlobalKeyboard();

    std::unique_ptr<KeyWatcher> watcher_;
};
