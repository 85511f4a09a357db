#include "toolkit/global_keyboard.h"

#include "toolkit/key_watcher.h"

#include <QCoreApplication>

namespace {

GlobalKeyboard *instance = nullptr;

/// Runs at the beginning of the application object's end, while the platform is still there.
void removeInstance() {
    delete instance;
    instance = nullptr;
}

}  // namespace

GlobalKeyboard::GlobalKeyboard() {
    qRegisterMetaType<Qt::Key>("Qt::Key");  // so that receivers on other threads can have the signal queued
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
