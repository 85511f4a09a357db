#pragma once

#include "trackers/eyetech/quicklink2.h"

#include <QString>

/// The vendor's library, looked up while the program runs: a machine without it runs the program all the same.
///
/// Each function passes its call on to the library, and returns `ql_not_loaded` without one. They may be called from
/// any thread; the library is loaded and unloaded on the GUI thread alone, while no other thread is in a call.
namespace quicklink2 {

#define OCELA_DECLARE(name, parameters, arguments) int name parameters;
OCELA_QUICKLINK2_FUNCTIONS(OCELA_DECLARE)
#undef OCELA_DECLARE

}  // namespace quicklink2

/// Loads the library that the system finds under its name, or the one at `path`, and looks up all entry points. One
/// that was loaded before is stopped and unloaded first. False, with nothing loaded, when there is no library or it
/// lacks any of them.
///
/// The library at `path` is loaded twice: the second time, by the name alone, the system hands out the same one. So
/// that one stays in memory to the end.
[[nodiscard]] bool loadQuickLink2(const QString &path = QString());
