#include "api/hanging_files.h"

bool hanging_files::isSupported() {
    return false;
}

hanging_files::Hang::Hang(const QByteArray & /*part*/) {}

hanging_files::Hang::~Hang() = default;

int hanging_files::Hang::blockedThreadCount() const {
    return 0;
}
