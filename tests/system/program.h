#pragma once

#include "system/child_process.h"

#include <QImage>
#include <QMap>
#include <QTemporaryDir>

/// The private home of a person who runs the program: folders for documents and settings of its own.
class Home {
public:
    /// `tracker` is the person's choice; without one it is the program's, as on a first start.
    explicit Home(const QString &tracker = "gazepoint");

    [[nodiscard]] QProcessEnvironment environment() const;
    [[nodiscard]] QString recordsFolder() const { return folder_.filePath("Documents/Ocela"); }
    [[nodiscard]] QString dataFolder() const { return folder_.filePath("data/Velmora/Ocela"); }
    [[nodiscard]] QString settingsFile() const { return dataFolder() + "Settings.xml"; }

    void writeSettings(const QMap<QString, QString> &properties) const;
    void writeSettings(const QByteArray &contents) const;
    [[nodiscard]] QString readSettings() const;
    [[nodiscard]] QString readLogFile() const;
    /// The only record file; empty while there is none, or more than one.
    [[nodiscard]] QString recordFile() const;

private:
    QTemporaryDir folder_;
};

/// The built program, driven from outside.
class Program {
public:
    explicit Program(const Home &home);

    /// Before the start: an environment variable of the program.
    void setVariable(const QString &name, const QString &value);

    void start();
    /// Starts it and waits for its main window.
    [[nodiscard]] bool startWindow();
    [[nodiscard]] bool isRunning() const { return process_.state() == QProcess::Running; }

    /// The window of this process with a title that matches; empty while there is none to be seen.
    [[nodiscard]] QByteArray window(const QString &titlePattern = "^Ocela [0-9.]+$") const;
    /// What the main window shows.
    [[nodiscard]] QImage picture() const;
    /// Asks the main window to close, as the close button of its frame does.
    void requestClose();
    /// Closes the window and waits for the end; the exit code, or -1.
    [[nodiscard]] int close();

    [[nodiscard]] ChildProcess &process() { return process_; }
    /// Warnings and worse in the log, and whatever a sanitizer reports.
    [[nodiscard]] QStringList complaints();

private:
    ChildProcess process_;
};
