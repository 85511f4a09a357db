#pragma once

#include "toolkit/platform/vendor_library.h"

/// The operating system's functions for shared libraries.
namespace system_library {

struct OpenResult {
    void *handle = nullptr;
    VendorLibrary::Error error;  ///< set if `handle` is null
};

/// Returns the file names of a library in the order in which they are tried: "lib<name>.so.<version>" if there is a
/// version, and "lib<name>.so". On Windows, "<name>.dll".
[[nodiscard]] QStringList fileNamesOf(const QString &name, std::optional<int> version);

/// Loads a library. A file name without a path is looked up in the system's search path. On Windows, the first call
/// removes the working directory from that path.
[[nodiscard]] OpenResult open(const QString &fileName);
void close(void *handle);

/// Returns the address of an entry point, or null if the library does not have it.
[[nodiscard]] QFunctionPointer resolve(void *handle, const char *entryPoint);
[[nodiscard]] QString pathOf(void *handle);

}  // namespace system_library
