#pragma once

#include <QString>
#include <QVector>

class QIODevice;

/// The XML layout of a settings file, one property a line, without any knowledge of what the properties mean:
///
///     <?xml version="1.0" encoding="UTF-8"?>
///     <settings version="1">
///         <property name="AutoRun">true</property>
///     </settings>
///
/// A text that XML cannot carry unchanged (control characters) is percent-encoded and says so:
/// encoding="percent".
namespace settings_file {

struct Entry {
    QString name;
    QString text;
};

struct Contents {
    QVector<Entry> entries;
    QString error;  ///< why the file could not be used; empty: all is well. `entries` is empty with an error.
};

[[nodiscard]] Contents parse(QIODevice &device);
[[nodiscard]] Contents read(const QString &path);

/// Writes the file whole or not at all and creates its folder if missing. Returns the reason of a failure, or
/// nothing.
[[nodiscard]] QString write(const QString &path, const QVector<Entry> &entries);

/// Renames a file to `path.damaged`, or to `path.damaged.1`, `path.damaged.2`, ... where that is taken.
/// Returns the new name, empty if the file could not be renamed.
[[nodiscard]] QString moveAside(const QString &path);

}  // namespace settings_file
