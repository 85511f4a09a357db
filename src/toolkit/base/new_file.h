#pragma once

#include "toolkit/base/file_names.h"

#include <QSaveFile>
#include <QString>
#include <functional>

/// A file that is written under a temporary name, and then gets a name that no other file has.
///
/// Call write() once, then the take functions until one succeeds. The destructor removes a file without a final name.
/// Any thread, one at a time. After a failure, problem() returns the reason.
class NewFile {
public:
    using Write = std::function<bool(QSaveFile &file)>;

    /// `folder` is the folder of the temporary name and must be on the file system of the final name.
    explicit NewFile(const QString &folder, file_names::BeforeNaming beforeNaming = nullptr);
    ~NewFile();
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    /// Writes the content, see FileUtilities::writeAll(), and syncs it to the disk.
    [[nodiscard]] bool write(const Write &content);

    /// Names the file `path`. A regular file of that name is kept under the next free numbered name.
    [[nodiscard]] bool takeName(const QString &path);

    /// Returns the new name of the file that takeName() has kept, or an empty text.
    [[nodiscard]] const QString &earlierName() const { return earlierName_; }

    /// Names the file `path`, or the next free numbered name. Changes no other file.
    [[nodiscard]] bool takeFreeName(const QString &path);

    /// Returns the final name, or an empty text.
    [[nodiscard]] const QString &name() const { return name_; }
    [[nodiscard]] const QString &problem() const { return problem_; }

private:
    [[nodiscard]] bool fail(const QString &problem);
    [[nodiscard]] bool accept(const file_names::Renaming &renaming);
    [[nodiscard]] bool rename(const QString &path);

    const file_names::BeforeNaming beforeNaming_;
    QSaveFile file_;
    QString name_;
    QString earlierName_;
    QString problem_;
};
