#include "streams/lsl_library.h"

#include "streams/lsl_log.h"

Q_LOGGING_CATEGORY(lcLsl, "ocela.lsl")

namespace {

/// The version in the name of the library's file on Linux.
constexpr int binaryVersion = 2;

enum EntryPoint : std::size_t {
#define OCELA_INDEX(result, name, parameters) index_##name,
    OCELA_LSL_FUNCTIONS(OCELA_INDEX)
#undef OCELA_INDEX
};

constexpr const char *entryPoints[] = {
#define OCELA_NAME(result, name, parameters) #name,
    OCELA_LSL_FUNCTIONS(OCELA_NAME)
#undef OCELA_NAME
};

}  // namespace

lsl::Library::Library() : library_("lsl", {std::begin(entryPoints), std::end(entryPoints)}, nullptr, binaryVersion) {}

bool lsl::Library::load() {
    if (isLoaded_)
        return true;
    isLoaded_ = library_.load();
    if (!isLoaded_) {
        library_.error()->log(lcLsl(), "LSL streams cannot be used");
        return false;
    }
#define OCELA_RESOLVE(result, name, parameters) functions_.name = library_.function<result(*) parameters>(index_##name);
    OCELA_LSL_FUNCTIONS(OCELA_RESOLVE)
#undef OCELA_RESOLVE
    qCInfo(lcLsl) << "LSL library, version" << functions_.lsl_library_version();
    return true;
}
