#pragma once

#include "toolkit/platform/vendor_library.h"
#include "trackers/eyetech/sdk/quicklink2.h"

#include <QString>

/// The vendor's functions, resolved at run time. Each one returns `notLoaded` while the library is not loaded. A
/// failing call is logged when its result changes. Callable from any thread.
namespace quicklink2 {

constexpr int notLoaded = 10;

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
OCELA_QUICKLINK2_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

}  // namespace quicklink2

namespace eyetech {

/// Loads the library from the system's search path. If it is already loaded, first stops all devices and unloads it. If
/// the library or one of its entry points is missing, logs the reason and returns false; the library is not loaded
/// then. Called on the GUI thread, while no other thread is in a function of the library.
///
/// With a `path`, that file is loaded first, and stays loaded until the program ends. The system then finds it under
/// the library's name.
[[nodiscard]] bool loadQuickLink2(const QString &path = QString());

/// Returns a value of QLDevice_GetStatus, or 0 if the call fails.
[[nodiscard]] int deviceStatus(int device);

/// Returns whether `status` is the status of an attached device.
[[nodiscard]] constexpr bool isAttached(int status) {
    return status == quicklink2::deviceStopped || status == quicklink2::deviceRunning;
}

/// Returns why the library could not be loaded from the system's search path. Called on the GUI thread.
[[nodiscard]] const std::optional<VendorLibrary::Error> &libraryError();

}  // namespace eyetech
