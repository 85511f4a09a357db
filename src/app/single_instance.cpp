#include "app/single_instance.h"

#include "app/settings.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/platform/app_helper.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

namespace {

/// The time for other instances to refuse themselves. Under load, a start takes a second.
constexpr int decisionTimeoutMs = 3000;
constexpr int pollIntervalMs = 50;
/// Another instance may hold the lock of a refusal for a moment, in isRefused().
constexpr int maxLockAttempts = 20;

}  // namespace

SingleInstance::SingleInstance() : folder_(FileUtilities::FolderSlash(Settings::dataFolder())) {
    FileUtilities::createIfNotExists(folder_);
    const bool decides = decision_.tryLock(folder_ + "Ocela.lock");
    const QDeadlineTimer deadline(decisionTimeoutMs);
    while (decides && countCopies() > 1 && !deadline.hasExpired())
        QThread::msleep(pollIntervalMs);
    mayRun_ = countCopies() <= 1;
    if (!mayRun_)
        refuse();
}

SingleInstance::~SingleInstance() {
    refusal_.unlock();
    if (!mayRun_)
        QFile::remove(refusalPath(QCoreApplication::applicationPid()));
}

/// Counts the instances that were not refused. Includes this process, unless it was refused or its executable has
/// another name.
int SingleInstance::countCopies() const {
    const QString executable = AppHelper::executableName(QCoreApplication::applicationName());
    int count = 0;
    for (const AppHelper::RunningApp &app : AppHelper::runningApps()) {
        if (app.name.compare(executable, Qt::CaseInsensitive) == 0 && !isRefused(app.process))
            ++count;
    }
    return count;
}

bool SingleInstance::isRefused(qint64 process) const {
    const QString path = refusalPath(process);
    // A file without a lock was left by a process that has crashed. Another process may have its id now.
    return QFile::exists(path) && !FileLock().tryLock(path);
}

QString SingleInstance::refusalPath(qint64 process) const {
    return folder_ + QString("Ocela-refused-%1.lock").arg(process);
}

void SingleInstance::refuse() {
    decision_.unlock();
    const QString path = refusalPath(QCoreApplication::applicationPid());
    for (int attempt = 0; attempt < maxLockAttempts && !refusal_.tryLock(path); ++attempt)
        QThread::msleep(pollIntervalMs);
}
