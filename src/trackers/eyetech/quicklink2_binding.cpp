#include "trackers/eyetech/quicklink2_binding.h"

#include <QLibrary>
#include <algorithm>

namespace {

struct EntryPoint {
    const char *name;
    QFunctionPointer function = nullptr;
};

/// In the order of the library's list. Written during a load alone.
EntryPoint entryPoints[] = {
#define OCELA_ENTRY_POINT(name, parameters, arguments) {#name},
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_ENTRY_POINT)
#undef OCELA_ENTRY_POINT
};
static_assert(std::size(entryPoints) == 71);

enum Index {
#define OCELA_INDEX(name, parameters, arguments) index_##name,
    OCELA_QUICKLINK2_FUNCTIONS(OCELA_INDEX)
#undef OCELA_INDEX
};

QLibrary &library() {
    static QLibrary library(QStringLiteral("QuickLink2"));
    return library;
}

/// Null while no library is loaded, whatever stands in the table.
QFunctionPointer loadedFunction(Index index) {
    return library().isLoaded() ? entryPoints[index].function : nullptr;
}

void unload() {
    if (!library().isLoaded())
        return;
    quicklink2::QLDevice_Stop_All();
    library().unload();
}

}  // namespace

#define OCELA_FORWARD(name, parameters, arguments)                                               \
    int quicklink2::name parameters {                                                            \
        const auto function = reinterpret_cast<int(*) parameters>(loadedFunction(index_##name)); \
        return function ? function arguments : ql_not_loaded;                                    \
    }
OCELA_QUICKLINK2_FUNCTIONS(OCELA_FORWARD)
#undef OCELA_FORWARD

bool loadQuickLink2(const QString &path) {
    unload();
    if (!path.isEmpty() && !QLibrary(path).load())
        return false;
    if (!library().load())
        return false;
    for (EntryPoint &entry : entryPoints)
        entry.function = library().resolve(entry.name);
    const bool complete = std::all_of(std::begin(entryPoints), std::end(entryPoints),
                                      [](const EntryPoint &entry) { return entry.function != nullptr; });
    if (!complete)
        unload();
    return complete;
}
