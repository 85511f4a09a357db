#pragma once

#include <QByteArray>
#include <QString>

/// The text of a desktop entry (freedesktop.org, version 1.5) that starts the executable `program`, given
/// with its full path, in its own folder. Any character of the path is quoted as that format asks. Once the
/// program has been removed, desktops pass over the entry.
QByteArray desktopEntry(const QString &program);
