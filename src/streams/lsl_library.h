#pragma once

#include "streams/lsl_functions.h"
#include "toolkit/platform/vendor_library.h"

#include <optional>

namespace lsl {

/// Loads the library at run time. The library stays loaded until the process ends, because it has threads of its own.
class Library {
public:
    Library();

    /// Looks up the library in the system's search path, unless it is loaded. Returns whether it can be used. If not,
    /// logs the reason.
    [[nodiscard]] bool load();
    /// Returns why the last load() failed.
    [[nodiscard]] const std::optional<VendorLibrary::Error> &error() const { return library_.error(); }
    /// Call it only after load() has returned true.
    [[nodiscard]] const Functions &functions() const { return functions_; }

private:
    VendorLibrary library_;
    Functions functions_;
    bool isLoaded_ = false;
};

}  // namespace lsl
