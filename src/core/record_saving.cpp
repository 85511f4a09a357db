#include "core/record_saving.h"

#include "core/record_companions.h"
#include "toolkit/base/file_utilities.h"
#include "toolkit/base/text_helper.h"

#include <QDir>
#include <QFileInfo>
#include <new>

namespace {

QString folderOf(const QString &path) {
    return QFileInfo(path).path();
}

/// The attempts to save one recording.
class Saving {
public:
    Saving(const NewFile::Write &write, const file_names::BeforeNaming &beforeNaming)
        : write_(write), beforeNaming_(beforeNaming) {}

    [[nodiscard]] bool at(const QString &path) {
        const QString target = file_names::withoutLinks(QDir::cleanPath(path));
        NewFile file(folderOf(target), beforeNaming_);
        if (!file.write(write_))
            return fail(path, file.problem());
        if (file.takeName(target)) {
            if (!file.earlierName().isEmpty())
                record_companions::rename(target, file.earlierName());
            savedPath_ = path;
            return true;
        }
        (void)fail(path, file.problem());
        return takeFreeName(file, target);
    }

    [[nodiscard]] bool in(const QString &folder, const QString &name) {
        NewFile file(folder, beforeNaming_);
        return (file.write(write_) && takeFreeName(file, FileUtilities::FolderSlash(folder) + name)) ||
               fail(folder, file.problem());
    }

    [[nodiscard]] record_saving::Result result() const { return {savedPath_, problems_.join("; ")}; }

private:
    [[nodiscard]] bool takeFreeName(NewFile &file, const QString &path) {
        // The file system may refuse the name, for example because it is too long.
        const QString otherPath = FileUtilities::FolderSlash(folderOf(path)) + record_saving::defaultFileName();
        if (!file.takeFreeName(path) && !file.takeFreeName(otherPath))
            return false;
        savedPath_ = file.name();
        return true;
    }

    [[nodiscard]] bool fail(const QString &path, const QString &problem) {
        problems_ << QString("%1: %2").arg(QDir::toNativeSeparators(path), problem);
        return false;
    }

    const NewFile::Write &write_;
    const file_names::BeforeNaming &beforeNaming_;
    QString savedPath_;
    QStringList problems_;
};

record_saving::Result trySave(const QString &path, const QStringList &fallbackFolders, Saving &saving) {
    bool saved = saving.at(path);
    for (const QString &folder : fallbackFolders) {
        if (!saved && QDir(folder) != QDir(folderOf(path)))
            saved = saving.in(folder, QFileInfo(QDir::cleanPath(path)).fileName());
    }
    return saving.result();
}

}  // namespace

record_saving::Result record_saving::save(const QString &path, const QStringList &fallbackFolders,
                                          const NewFile::Write &write, const file_names::BeforeNaming &beforeNaming) {
    Saving saving(write, beforeNaming);
    try {
        return trySave(path, fallbackFolders, saving);
    } catch (const std::bad_alloc &) {
        return {QString(), QStringLiteral("out of memory")};
    }
}

QString record_saving::defaultFileName() {
    return TextHelper::DateTimeFileString(QDateTime(), true) + "_ocela.csv";
}
