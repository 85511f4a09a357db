#include "trackers/eyetech/script.h"

#include <QLibrary>
#include <QThreadPool>

Script &freshScript() {
    // Frame tasks of the last test may still call.
    QThreadPool::globalInstance()->waitForDone();
    // Kept loaded beside the program's own use.
    static QLibrary library("QuickLink2");
    const auto renew = library.load() ? reinterpret_cast<Script *(*)()>(library.resolve("renewScript")) : nullptr;
    if (!renew)
        qFatal("the scripted library is not found: %s", qUtf8Printable(library.errorString()));
    return *renew();
}
