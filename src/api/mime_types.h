#pragma once

#include "core/guarded.h"

#include <QHash>

class QFileInfo;

/// The MIME types of files by name and content. A file that has not changed is looked up once, as that takes up to
/// 0.2 ms. Any thread may ask.
class MimeTypes {
public:
    [[nodiscard]] QString nameFor(const QFileInfo &file);

private:
    struct Known {
        qint64 size = 0;
        qint64 modifiedMs = 0;
        QString name;
    };

    Guarded<QHash<QString, Known>> known_;
};
