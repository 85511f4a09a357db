#include "trackers/eyetech/script.h"

#include <QLibrary>
#include <QThreadPool>

Script &freshScript() {
    // Frame tasks of the previous test may still call the library.
    QThreadPool::globalInstance()->waitForDone();
    // Keeps the library loaded when the program unloads it.
    static QLibrary library("QuickLink2");
    const auto renew = library.load() ? reinterpret_cast<Script *(*)()>(library.resolve("renewScript")) : nullptr;
    if (!renew)
        qFatal("cannot load the fake library: %s", qUtf8Printable(library.errorString()));
    return *renew();
}
