#pragma once

/// The tray of the desktop. GUI thread.
namespace system_tray {

/// Returns whether a tray runs, or on Windows always true. Waits at most 200 ms for a tray that does not answer.
///
/// Use it to wait for a tray on Linux. Qt asks only once for a D-Bus tray, with the first QSystemTrayIcon or the first
/// call of QSystemTrayIcon::isSystemTrayAvailable(), and keeps the answer.
[[nodiscard]] bool isRunning();

}  // namespace system_tray
