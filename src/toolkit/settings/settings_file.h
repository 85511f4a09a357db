#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/// Reads and writes settings files, which are XML with one property per line:
///
///     <?xml version="1.0" encoding="UTF-8"?>
///     <settings version="1">
///         <property name="AutoRun">true</property>
///     </settings>
///
/// A text that XML cannot represent, for example with control characters, is percent-encoded and has the attribute
/// encoding="percent". Reentrant.
namespace settings_file {

struct Entry {
    QString name;
    QString text;
};

struct Contents {
    QVector<Entry> entries;
    QString error;           ///< empty on success; `entries` is empty after an error
    bool isDamaged = false;  ///< the file was read, but is not a settings file
};

[[nodiscard]] Contents parse(const QByteArray &document);
[[nodiscard]] Contents read(const QString &path);

/// Writes the file atomically and creates its folder. Returns the reason for a failure, or an empty text on
/// success.
[[nodiscard]] QString write(const QString &path, const QVector<Entry> &entries);

/// Renames a file to `path.damaged`, `path.damaged.1` or the next free name. Returns the new name, or an empty text
/// after a failure.
[[nodiscard]] QString moveAside(const QString &path);

}  // namespace settings_file
