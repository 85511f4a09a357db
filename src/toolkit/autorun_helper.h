#pragma once

#include <QString>

/// The list of programs that start when a user logs in. GUI thread.
class AutorunHelper {
public:
    /// Puts the program `exeName`, which lies in this application's folder, on the start-up list of this user
    /// (with `allUsers`: of everyone on the machine, which takes an administrator), or takes it off.
    /// The program starts with its own folder as the working directory.
    ///
    /// Callers name the program as Windows does, "Ocela.exe"; elsewhere the ".exe" falls away. Windows gets a
    /// shortcut in the Startup folder, Linux a desktop entry in the autostart folder, written in one step so
    /// that a half-written entry never exists. Taking off what is not listed succeeds. A failure, also that
    /// there is no such program to start, gives false and one warning that names the file and the reason.
    static bool setAppInAutorunUsingExe(const QString &exeName, bool enable, bool allUsers);
};
