#include "toolkit/base/log_file.h"

#include "toolkit/base/toolkit_log.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <atomic>

namespace {

constexpr qint64 maxFileBytes = 4 << 20;
constexpr int maxTextLength = 16 << 10;

/// The LogFile object is never destroyed. Both variables are set before the handler is installed, because other threads
/// may already be logging.
std::atomic<LogFile *> installed{nullptr};
std::atomic<QtMessageHandler> previousHandler{nullptr};

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

/// Numbers the threads in the order of their first message. The thread identifiers of the system are long.
int threadNumber() {
    static std::atomic<int> count{0};
    thread_local const int number = ++count;
    return number;
}

QString truncated(const QString &text) {
    if (text.size() <= maxTextLength)
        return text;
    return text.left(maxTextLength) + QString(" ... (truncated from %1 characters)").arg(text.size());
}

QByteArray lineOf(const QByteArray &head, QString text) {
    // Indentation distinguishes the lines of one message from other messages.
    return head + text.replace('\n', "\n    ").toUtf8() + '\n';
}

QByteArray head(QtMsgType type, const char *category) {
    const QByteArray time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toLatin1();
    return time + ' ' + levelName(type) + ' ' + category + " [" + QByteArray::number(threadNumber()) + "] ";
}

/// Returns the line with the versions. It includes the local time, because the names of record files contain it.
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
    // The previous handler is called last, because it may abort the program at a fatal message.
    installed.load()->write(type, context, text);
    previousHandler.load()(type, context, text);
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
    append(lineOf(head(type, context.category ? context.category : "default"), truncated(text)));
}

void LogFile::append(const QByteArray &line) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!file_.isOpen() && !open(QIODevice::Append))
        return;
    if (sizeBytes_ + line.size() > maxFileBytes)
        startNewFile();
    put(line);
}

bool LogFile::open(QIODevice::OpenMode mode) {
    const bool opened = file_.open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode);
    sizeBytes_ = opened ? file_.size() : 0;
    return opened;
}

void LogFile::put(const QByteArray &line) {
    if (!file_.isOpen())
        return;
    if (file_.write(line) == line.size())
        sizeBytes_ += line.size();
    else
        file_.resize(sizeBytes_);  // removes an incomplete line
}

void LogFile::startNewFile() {
    file_.close();
    QFile::remove(earlierPath_);
    // Windows cannot rename or replace a file that another program has opened. The file is then copied. If the old file
    // cannot be replaced, the lines of the current file are lost.
    if (!QFile::rename(file_.fileName(), earlierPath_))
        QFile::copy(file_.fileName(), earlierPath_);
    if (open(QIODevice::Truncate))
        put(firstLine_);
}

void LogFile::install(const QString &path) {
    installed = new LogFile(path);
    previousHandler = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(handle);
    const QString problem = installed.load()->problem();
    if (!problem.isEmpty())
        qCWarning(lcToolkit).noquote() << "Cannot write" << QDir::toNativeSeparators(path) + ": " + problem;
}
