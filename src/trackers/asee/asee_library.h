#pragma once

#include "toolkit/platform/vendor_library.h"
#include "trackers/asee/sdk/asee_sdk.h"

/// The vendor's functions, resolved at run time. The first call loads the library. If the library or one of its entry
/// points is missing, the log says so, and every function returns `notAvailable`. A failing call is logged when its
/// result changes. Callable from any thread.
namespace asee_sdk {

constexpr int notAvailable = -1;

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
OCELA_ASEE_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

}  // namespace asee_sdk

namespace asee {

/// Loads the library, unless it is already loaded. Callable from any thread.
void loadLibrary();

/// Returns why the last attempt to load the library failed, or std::nullopt. Callable from any thread.
[[nodiscard]] const std::optional<VendorLibrary::Error> &libraryError();

}  // namespace asee
