#include "trackers/asee/asee_sdk.h"

#include "trackers/asee/asee_log.h"

#include <QLibrary>

namespace {

/// The library's functions under their names; all null when the library or one of them is missing.
struct EntryPoints {
#define OCELA_POINTER(name, parameters, arguments) int(*name) parameters = nullptr;
    OCELA_ASEE_FUNCTIONS(OCELA_POINTER)
#undef OCELA_POINTER
};

template <typename Function>
bool resolve(QLibrary &library, const char *name, Function &function) {
    function = reinterpret_cast<Function>(library.resolve(name));
    if (!function)
        qCWarning(lcAsee).noquote() << library.fileName() << "lacks" << name << "- aSee Pro trackers cannot be used";
    return function;
}

EntryPoints load() {
    QLibrary library("aSeeX");
    // Its threads may run to the end of the program.
    library.setLoadHints(QLibrary::PreventUnloadHint);
    if (!library.load()) {
        // Normal where no such tracker is in use.
        qCInfo(lcAsee).noquote() << "aSee Pro trackers cannot be used:" << library.errorString();
        return {};
    }
    EntryPoints found;
    bool complete = true;
#define OCELA_RESOLVE(name, parameters, arguments) complete = resolve(library, #name, found.name) && complete;
    OCELA_ASEE_FUNCTIONS(OCELA_RESOLVE)
#undef OCELA_RESOLVE
    return complete ? found : EntryPoints();
}

const EntryPoints &entryPoints() {
    static const EntryPoints loaded = load();
    return loaded;
}

}  // namespace

#define OCELA_FORWARD(name, parameters, arguments)           \
    int asee::name parameters {                              \
        const auto function = entryPoints().name;            \
        return function ? function arguments : notAvailable; \
    }
OCELA_ASEE_FUNCTIONS(OCELA_FORWARD)
#undef OCELA_FORWARD
