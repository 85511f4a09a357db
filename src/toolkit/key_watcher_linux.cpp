#include "toolkit/key_watcher.h"
#include "toolkit/toolkit_log.h"
#include "toolkit/x11_key_watcher.h"

#include <QGuiApplication>

std::unique_ptr<KeyWatcher> createDesktopKeyWatcher(const KeyWatcher::Report &report) {
    // DISPLAY says little: under Wayland it leads to a server that sees only its own clients' keys.
    if (QGuiApplication::platformName() != "xcb") {
        qCDebug(lcToolkit) << "No X11 display: keys are seen only while the application has the focus";
        return nullptr;
    }
    auto watcher = std::make_unique<X11KeyWatcher>(report);
    if (watcher->isWatching())
        return watcher;
    qCDebug(lcToolkit) << "No X11 RECORD extension: keys are seen only while the application has the focus";
    return nullptr;
}
