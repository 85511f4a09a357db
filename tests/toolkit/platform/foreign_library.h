#pragma once

#include <QByteArray>
#include <QList>

/// A library file for another architecture, cut off after its header.
struct ForeignLibrary {
    const char *architecture;
    QByteArray content;
};

/// Libraries in the format of this operating system.
[[nodiscard]] QList<ForeignLibrary> foreignLibraries();
