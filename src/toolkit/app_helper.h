#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>

/// What the program asks about running programs, its own name, and the short word it has with the user.
class AppHelper {
public:
    /// The executable file names of all running processes of this machine, without their folders, one entry a
    /// process, this one included. A process whose executable may not be seen (another user's, on Linux) is
    /// listed by the name that the system gives it. A zombie has ended and is not listed. Any thread.
    static QStringList getRunningApps();

    /// The file name of the program `base` on this platform: "Ocela" is "Ocela.exe" on Windows. Any thread.
    static QString executableName(const QString &base);

    /// Why no window can be shown here, in one line for the console; empty where one can. Asked before there is an
    /// application object, which would end the program without one.
    static QString displayProblem();

    /// Shows a modal message box over the active window and waits until the user has closed it. GUI thread.
    static void warningMessage(const QString &text, const QString &title, QMessageBox::Icon icon);
};
