#pragma once

#include "system/child_process.h"

#include <QImage>
#include <QMap>
#include <QTemporaryDir>
#include <memory>

/// A temporary home folder, which gives the program settings, data and documents of its own.
class Home {
public:
    /// `tracker` is the selected tracker. If it is empty, there are no settings, as on a first start.
    explicit Home(const QString &tracker = "gazepoint");

    [[nodiscard]] QProcessEnvironment environment() const;
    [[nodiscard]] QString recordsFolder() const { return folder_.filePath("Documents/Ocela"); }
    [[nodiscard]] QString dataFolder() const { return folder_.filePath(".local/share/Velmora/Ocela"); }
    [[nodiscard]] QString settingsFile() const { return dataFolder() + "Settings.xml"; }

    void writeSettings(const QMap<QString, QString> &properties) const;
    void writeSettings(const QByteArray &contents) const;
    [[nodiscard]] QString readSettings() const;
    [[nodiscard]] QString readLogFile() const;
    /// Returns the path of the only record file, or an empty string if there is not exactly one.
    [[nodiscard]] QString recordFile() const;

private:
    QTemporaryDir folder_;
};

/// The program in a process of its own.
class Program {
public:
    explicit Program(const Home &home);
    /// Ends the program. If the test has failed, prints the program's log and saves a picture of the screen.
    ~Program();

    /// Sets an environment variable of the program. Call it before the start.
    void setVariable(const QString &name, const QString &value);

    void start();
    /// Starts the program and waits for its main window.
    [[nodiscard]] bool startWindow();
    [[nodiscard]] bool isRunning() const { return process_.state() == QProcess::Running; }

    /// Returns the id of a visible window of this process, or an empty array.
    [[nodiscard]] QByteArray window(const QString &titlePattern = "^Ocela [0-9.]+$") const;
    /// Returns a screenshot of the main window.
    [[nodiscard]] QImage picture() const;
    /// Asks the main window to close, as the close button of its frame does.
    void requestClose();
    /// Closes the main window, waits for the end of the process and returns its exit code, or -1.
    [[nodiscard]] int close();

    [[nodiscard]] ChildProcess &process() { return process_; }
    /// Returns the warnings and errors in the log, and the reports of sanitizers.
    [[nodiscard]] QStringList problems();

private:
    ChildProcess process_;
};

/// A test with a new home and a new program, which is not started, for each test function.
class ProgramTest : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void init() { create("gazepoint"); }
    void cleanup() { program_.reset(); }

protected:
    /// Creates the home and the program. See Home for the tracker.
    void create(const QString &tracker);
    /// Fails the test if the program does not end without problems.
    void checkEnd();

    std::unique_ptr<Home> home_;
    std::unique_ptr<Program> program_;
};
