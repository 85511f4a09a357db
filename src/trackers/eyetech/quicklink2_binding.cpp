#include "trackers/eyetech/quicklink2_binding.h"

#include <QLibrary>
#include <algorithm>

namespace {

struct EntryPoint {
    const char *name = nullptr;
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

/// Null while nothing is loaded.
QLibrary *library = nullptr;

/// Null without a library, whatever stands in the table.
QFunctionPointer loadedFunction(Index index) {
    return library ? entryPoints[index].function : nullptr;
}

void unload() {
    if (!library)
        return;
    quicklink2::QLDevice_Stop_All();
    library->unload();
    library = nullptr;
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
    static QLibrary quickLink2(QStringLiteral("QuickLink2"));
    if (!quickLink2.load())
        return false;
    library = &quickLink2;
    for (EntryPoint &entry : entryPoints)
        entry.function = library->resolve(entry.name);
    const bool complete = std::all_of(std::begin(entryPoints), std::end(entryPoints),
                                      [](const EntryPoint &entry) { return entry.function != nullptr; });
    if (!complete)
        unload();
    return complete;
}
