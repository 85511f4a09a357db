#pragma once

#include <QByteArray>
#include <QString>

/// Returns the text of a desktop entry (freedesktop.org, version 1.5) that starts the executable `program`, an absolute
/// path, in its own folder. The path may contain any character. Desktops ignore the entry if the program does not
/// exist.
QByteArray desktopEntry(const QString &program);
