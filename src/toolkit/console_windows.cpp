#include "toolkit/console.h"

#include <cstdio>

// A program with windows has no streams of its own there, and what is written to none is dropped.
void console::prepare() {}

void console::print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

int console::readCharacter() {
    const int character = std::getchar();
    std::fflush(nullptr);
    return character == EOF ? -1 : character;
}
