#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <QVector>

/// Helpers for the process, its platform and message boxes.
class AppHelper {
public:
    /// Returns the executable file names, without their folders, of all running processes of this machine. Each process
    /// has one entry, including the calling process. On Linux, a process of another user is listed by its kernel name,
    /// because its executable cannot be read. Zombies are not listed. Any thread.
    static QStringList getRunningApps();

    struct RunningApp {
        qint64 process;  ///< the process id
        QString name;
    };
    /// Returns the same processes with their ids. Any thread.
    static QVector<RunningApp> runningApps();

    /// Returns the file name of the program `base` on this platform, for example "Ocela.exe" on Windows. Any thread.
    static QString executableName(const QString &base);

    /// Returns why windows cannot be shown, as one line for the console, or an empty text if they can. Call it before
    /// QApplication is constructed: its constructor aborts the process if there is no display.
    static QString displayProblem();

    /// Shows a modal message box over the active window and waits until the user closes it. GUI thread.
    static void warningMessage(const QString &text, const QString &title, QMessageBox::Icon icon);
};
