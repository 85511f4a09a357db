#include "toolkit/console.h"

#include <QByteArray>
#include <cstdio>

// A program with windows has no streams of its own there, and what is written to none is dropped.
void console::prepare() {}

void console::print(const QByteArray &text) {
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
    std::fflush(stdout);
}

int console::readCharacter() {
    const int character = std::getchar();
    std::fflush(nullptr);
    return character == EOF ? -1 : character;
}
