#pragma once

#include "core/guarded.h"

#include <QHash>

class QFileInfo;

/// The MIME types of files. Looking up a type takes up to 0.2 ms, so the types of unchanged files are cached. All
/// functions may be called from any thread.
class MimeTypes {
public:
    /// Returns the type by name and content of the file.
    [[nodiscard]] QString nameFor(const QFileInfo &file);

private:
    struct Known {
        qint64 sizeBytes = 0;
        qint64 modifiedMs = 0;
        QString name;
    };

    Guarded<QHash<QString, Known>> known_;
};
