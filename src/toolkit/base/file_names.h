#pragma once

#include <QString>
#include <functional>

/// Gives files names that no other file has. Unlike QFile::rename(), these functions never write through a link and
/// never replace a file, even if another program creates one at the same time. Any thread.
namespace file_names {

struct Renaming {
    enum class Outcome { Done, NameTaken, Failed };

    Outcome outcome = Outcome::Failed;
    QString name;    ///< the new name, if done
    QString reason;  ///< why the file was not renamed

    [[nodiscard]] bool isDone() const { return outcome == Outcome::Done; }
};

/// Renames a file unless an entry of any kind has the name `to`. Both names must be on the same file system.
[[nodiscard]] Renaming renameIfFree(const QString &from, const QString &to);

/// Called with a free name immediately before the file is renamed to it. The renaming can still fail.
using BeforeNaming = std::function<void(const QString &name)>;

/// Renames a file to the first free name of numbered(to, 1), numbered(to, 2), ...
[[nodiscard]] Renaming renameToNextFree(const QString &from, const QString &to,
                                        const BeforeNaming &beforeNaming = nullptr);

/// Returns "folder/name_2.csv" for the path "folder/name.csv" and the number 2.
[[nodiscard]] QString numbered(const QString &path, int number);

/// Returns the path to which the symbolic link `path` leads, which may not exist. Returns `path` if it is not a link,
/// or if its links form a cycle. Links in its folder path are not resolved.
[[nodiscard]] QString withoutLinks(const QString &path);

}  // namespace file_names
