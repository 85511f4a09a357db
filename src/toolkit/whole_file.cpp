#include "toolkit/whole_file.h"

#include <QSaveFile>

bool whole_file::open(QSaveFile &file) {
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

// A disk that fills takes a part without an error; the reason comes when it is offered the rest.
bool whole_file::write(QSaveFile &file, const char *bytes, long long size) {
    while (size > 0) {
        const qint64 taken = file.write(bytes, size);
        if (taken <= 0)
            return false;
        bytes += taken;
        size -= taken;
    }
    return true;
}
