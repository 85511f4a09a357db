#include "toolkit/platform/global_keyboard.h"

#include "toolkit/platform/key_watcher.h"

#include <QCoreApplication>

namespace {

GlobalKeyboard *instance = nullptr;

/// Called by the application object's destructor, before the platform plugin is unloaded.
void removeInstance() {
    delete instance;
    instance = nullptr;
}

}  // namespace

GlobalKeyboard::GlobalKeyboard() {
    qRegisterMetaType<Qt::Key>("Qt::Key");  // for queued connections
    const KeyWatcher::Report report = [this](Qt::Key key) {
        QMetaObject::invokeMethod(
            this, [this, key] { Q_EMIT keyPressed(key); }, Qt::QueuedConnection);
    };
    watcher_ = createDesktopKeyWatcher(report);
    if (!watcher_)
        watcher_ = createApplicationKeyWatcher(report);
}

GlobalKeyboard::~GlobalKeyboard() = default;

void GlobalKeyboard::Install() {
    if (instance)
        return;
    instance = new GlobalKeyboard;
    qAddPostRoutine(removeInstance);
}

GlobalKeyboard *GlobalKeyboard::Instance() {
    return instance;
}
