#pragma once

#include <QFile>
#include <mutex>

/// The log of the program in a file, for example Ocela.log. Any thread.
///
/// Each program start appends to the file. A file that reaches 4 MiB is renamed to Ocela.old.log and replaces the
/// earlier one. Long texts are truncated. A line contains the time (UTC), level, category, thread number and text. The
/// line is in the file when write() returns, so a crash loses no line. A line that cannot be written, for example
/// because the disk is full, is dropped completely.
class LogFile {
public:
    /// Creates the folder of `path` and writes a line with the versions of the program, the system and Qt.
    explicit LogFile(const QString &path);

    /// Returns why the file cannot be opened, or an empty text if it is open.
    [[nodiscard]] QString problem();

    void write(QtMsgType type, const QMessageLogContext &context, const QString &text);

    /// Installs a Qt message handler that writes all messages to a file at `path` and then calls the previous handler.
    /// It is never uninstalled, because threads of vendor libraries may log until the process exits. Call it once, in
    /// the GUI thread.
    static void install(const QString &path);

private:
    [[nodiscard]] bool open(QIODevice::OpenMode mode);
    void put(const QByteArray &line);
    void append(const QByteArray &line);
    void startNewFile();

    std::mutex mutex_;  // guards file_ and sizeBytes_
    QFile file_;
    qint64 sizeBytes_ = 0;  // a member because QFile::size() looks up the path on Windows
    const QString earlierPath_;
    const QByteArray firstLine_;
};
