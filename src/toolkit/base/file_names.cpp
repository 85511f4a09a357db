#include "toolkit/base/file_names.h"

#include <QFileInfo>

namespace {

/// The limit of Linux.
constexpr int maxLinkCount = 40;

/// Limits the search for a free numbered name.
constexpr int maxNumber = 100000;

}  // namespace

file_names::Renaming file_names::renameToNextFree(const QString &from, const QString &to,
                                                  const BeforeNaming &beforeNaming) {
    for (int number = 1; number <= maxNumber; ++number) {
        const QString candidate = numbered(to, number);
        if (QFileInfo::exists(candidate))
            continue;
        if (beforeNaming)
            beforeNaming(candidate);
        Renaming renaming = renameIfFree(from, candidate);
        if (renaming.outcome != Renaming::Outcome::NameTaken)
            return renaming;
    }
    return {Renaming::Outcome::NameTaken, QString(), QStringLiteral("all numbered names are taken")};
}

QString file_names::numbered(const QString &path, int number) {
    const QFileInfo file(path);
    const QString suffix = file.suffix().isEmpty() ? QString() : '.' + file.suffix();
    return QString("%1/%2_%3%4").arg(file.path(), file.completeBaseName(), QString::number(number), suffix);
}

QString file_names::withoutLinks(const QString &path) {
    QString target = path;
    for (int count = 0; count <= maxLinkCount; ++count) {
        const QFileInfo entry(target);
        if (!entry.isSymbolicLink())
            return target;
        target = entry.symLinkTarget();
    }
    return path;
}
