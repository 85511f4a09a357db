#pragma once

#include <QFile>
#include <mutex>

/// The log of the program as a file that a user can send: Ocela.log, and Ocela.old.log with what came before it.
///
/// Each is 4 MiB at most, whatever is logged and however often the program starts: a start appends, a long text is cut.
/// A line is in the file when write() returns, so a crash loses none. It holds the time (UTC), the level, the category,
/// the number of the thread (1: the GUI's) and the text. What cannot be written is dropped in whole lines: a full disk
/// or a folder that is gone costs lines of the log and nothing else. Any thread.
class LogFile {
public:
    /// Makes the folder of `path` if need be, and begins with a line that names program, system and versions.
    explicit LogFile(const QString &path);

    /// Why there is no file; empty while there is one.
    [[nodiscard]] QString problem();

    void write(QtMsgType type, const QMessageLogContext &context, const QString &text);

    /// From now on whatever is logged goes to a file at `path`, and on to where it went until now. That is never taken
    /// back: threads of vendors' libraries may log until the process is gone. GUI thread, once.
    static void install(const QString &path);

private:
    [[nodiscard]] bool open(QIODevice::OpenMode mode);
    void put(const QByteArray &line);
    void append(const QByteArray &line);
    void startAnew();

    std::mutex mutex_;  // guards the file and its size
    QFile file_;
    qint64 size_ = 0;  // counted, as Windows looks up the path to tell it
    const QString earlierPath_;
    const QByteArray firstLine_;
};
