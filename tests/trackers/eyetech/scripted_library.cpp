// A fake of the vendor's library.

#include "trackers/eyetech/script.h"

#include <memory>

static std::unique_ptr<Script> script = std::make_unique<Script>();

extern "C" Script *renewScript() {
    script = std::make_unique<Script>();
    return script.get();
}

#define OCELA_EXPORT(name, parameters, arguments)         \
    extern "C" int name parameters {                      \
        script->note(#name);                              \
        return script->name ? script->name arguments : 0; \
    }
OCELA_QUICKLINK2_FUNCTIONS(OCELA_EXPORT)
