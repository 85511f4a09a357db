#pragma once

#include <QString>

/// Manages the programs that start when a user logs in. GUI thread.
class AutorunHelper {
public:
    /// Adds the program `exeName` in this application's folder to the autostart list, or removes it. The list applies
    /// to the current user, or with `allUsers` to all users of the machine, which requires administrator rights. The
    /// program starts with its own folder as the working directory.
    ///
    /// `exeName` has the suffix ".exe" on every platform. Linux ignores the suffix. The entry is a shortcut in the
    /// Startup folder on Windows and a desktop entry in the autostart folder on Linux. It is written atomically.
    ///
    /// Returns false after a failure, and logs one warning with the file and the reason. Adding a program that does not
    /// exist fails. Removing a program that is not listed succeeds.
    static bool setAppInAutorunUsingExe(const QString &exeName, bool enable, bool allUsers);

    /// Does the same as setAppInAutorunUsingExe(). Returns an empty text on success, or a text for the user: the file
    /// and, if it is known, the system's reason.
    [[nodiscard]] static QString changeAutorun(const QString &exeName, bool enable, bool allUsers);
};
