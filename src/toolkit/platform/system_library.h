#pragma once

#include "toolkit/platform/vendor_library.h"

/// The operating system's functions for shared libraries.
namespace system_library {

struct OpenResult {
    void *handle = nullptr;
    VendorLibrary::Error error;  ///< set if `handle` is null
};

/// Returns the file name of a library: "lib<name>.so" or "<name>.dll".
[[nodiscard]] QString fileNameOf(const QString &name);

/// Loads a library. A file name without a path is looked up in the system's search path. On Windows, the first call
/// removes the working directory from that path.
[[nodiscard]] OpenResult open(const QString &fileName);
void close(void *handle);

/// Returns the address of an entry point, or null if the library does not have it.
[[nodiscard]] QFunctionPointer resolve(void *handle, const char *entryPoint);
[[nodiscard]] QString pathOf(void *handle);

}  // namespace system_library
