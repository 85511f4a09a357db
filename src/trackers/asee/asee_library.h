#pragma once

#include "trackers/asee/sdk/asee_sdk.h"

/// The vendor's functions, resolved at run time. The first call loads the library. If the library or one of its entry
/// points is missing, the log says so once, and every function returns `notAvailable`. A failing call is logged when
/// its result changes. Callable from any thread.
namespace asee_sdk {

constexpr int notAvailable = -1;

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
OCELA_ASEE_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

}  // namespace asee_sdk
