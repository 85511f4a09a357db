#include "toolkit/base/new_file.h"

#include "toolkit/base/file_utilities.h"

#include <QFileInfo>
#include <QUuid>
#include <utility>

namespace {

/// Does not contain the final name, which may be too long for a suffix.
QString temporaryName(const QString &folder) {
    return FileUtilities::FolderSlash(folder) + "unfinished_" + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

}  // namespace

// QSaveFile removes its own temporary file after a failure, and commit() syncs it. It replaces existing files, so it
// gets a unique name here.
NewFile::NewFile(const QString &folder, file_names::BeforeNaming beforeNaming)
    : beforeNaming_(std::move(beforeNaming)), file_(temporaryName(folder)) {}

NewFile::~NewFile() {
    if (name_.isEmpty())
        QFile::remove(file_.fileName());
}

bool NewFile::write(const Write &content) {
    return (FileUtilities::openUnbuffered(file_) && content(file_) && file_.commit()) || fail(file_.errorString());
}

bool NewFile::takeName(const QString &path) {
    if (!QFileInfo(path).isFile())
        return rename(path);
    const file_names::Renaming earlier = file_names::renameToNextFree(path, path);
    if (!earlier.isDone())
        return fail("the earlier file cannot be renamed: " + earlier.reason);
    if (rename(path)) {
        earlierName_ = earlier.name;
        return true;
    }
    (void)file_names::renameIfFree(earlier.name, path);
    return false;
}

bool NewFile::takeFreeName(const QString &path) {
    return rename(path) || accept(file_names::renameToNextFree(file_.fileName(), path, beforeNaming_));
}

bool NewFile::rename(const QString &path) {
    const QFileInfo entry(path);
    if (entry.exists())
        return fail(entry.isDir() ? "a folder has this name" : "the name is taken");
    if (beforeNaming_)
        beforeNaming_(path);
    return accept(file_names::renameIfFree(file_.fileName(), path));
}

bool NewFile::accept(const file_names::Renaming &renaming) {
    name_ = renaming.name;
    return renaming.isDone() || fail(renaming.reason);
}

bool NewFile::fail(const QString &problem) {
    problem_ = problem;
    return false;
}
