#include "toolkit/log_file.h"

#include "toolkit/toolkit_log.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <atomic>

namespace {

constexpr qint64 fullFileBytes = 4 << 20;
constexpr int longestText = 16 << 10;

/// Set before the handler is, for threads that run already; never deleted.
std::atomic<LogFile *> installed{nullptr};
std::atomic<QtMessageHandler> handlerBefore{nullptr};

const char *levelName(QtMsgType type) {
    switch (type) {
        case QtDebugMsg:
            return "debug";
        case QtInfoMsg:
            return "info";
        case QtWarningMsg:
            return "warning";
        case QtCriticalMsg:
            return "critical";
        case QtFatalMsg:
            return "fatal";
    }
    return "unknown";
}

/// Short, unlike what the system calls its threads.
int threadNumber() {
    static std::atomic<int> count{0};
    thread_local const int number = ++count;
    return number;
}

QString cut(const QString &text) {
    if (text.size() <= longestText)
        return text;
    return text.left(longestText) + QString(" ... (cut, %1 characters)").arg(text.size());
}

QByteArray lineOf(const QByteArray &head, QString text) {
    // A text of several lines must not look like several lines of the log.
    return head + text.replace('\n', "\n    ").toUtf8() + '\n';
}

QByteArray head(QtMsgType type, const char *category) {
    const QByteArray time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toLatin1();
    return time + ' ' + levelName(type) + ' ' + category + " [" + QByteArray::number(threadNumber()) + "] ";
}

/// Local time is what the user's watch and the names of records say.
QByteArray firstLine() {
    const QDateTime now = QDateTime::currentDateTime();
    const QString text = QString("%1 %2 on %3 (%4 %5, %6), Qt %7, local time %8")
                             .arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion(),
                                  QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                                  QSysInfo::currentCpuArchitecture(), qVersion(),
                                  now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate));
    return lineOf(head(QtInfoMsg, lcToolkit().categoryName()), text);
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    // First, as a handler may end the program at a fatal line.
    installed.load()->write(type, context, text);
    handlerBefore.load()(type, context, text);
}

}  // namespace

LogFile::LogFile(const QString &path)
    : file_(path),
      earlierPath_(QFileInfo(path).path() + '/' + QFileInfo(path).completeBaseName() + ".old.log"),
      firstLine_(firstLine()) {
    QDir().mkpath(QFileInfo(path).path());
    append(firstLine_);
}

QString LogFile::problem() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return file_.isOpen() ? QString() : file_.errorString();
}

void LogFile::write(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    append(lineOf(head(type, context.category ? context.category : "default"), cut(text)));
}

void LogFile::append(const QByteArray &line) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!file_.isOpen() && !open(QIODevice::Append))
        return;
    if (size_ + line.size() > fullFileBytes)
        startAnew();
    put(line);
}

bool LogFile::open(QIODevice::OpenMode mode) {
    const bool opened = file_.open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode);
    size_ = opened ? file_.size() : 0;
    return opened;
}

void LogFile::put(const QByteArray &line) {
    if (!file_.isOpen())
        return;
    if (file_.write(line) == line.size())
        size_ += line.size();
    else
        file_.resize(size_);  // a part of a line would run into the next one
}

void LogFile::startAnew() {
    file_.close();
    QFile::remove(earlierPath_);
    // A program that looks at the file holds it where it is on Windows. If it holds the earlier one, the newer lines
    // count.
    if (!QFile::rename(file_.fileName(), earlierPath_))
        QFile::copy(file_.fileName(), earlierPath_);
    if (open(QIODevice::Truncate))
        put(firstLine_);
}

void LogFile::install(const QString &path) {
    installed = new LogFile(path);
    handlerBefore = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(handle);
    const QString problem = installed.load()->problem();
    if (!problem.isEmpty())
        qCWarning(lcToolkit).noquote() << "Cannot write" << QDir::toNativeSeparators(path) + ": " + problem;
}
