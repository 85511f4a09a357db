#include "fuzz/fuzz_support.h"

#include <QDir>
#include <cstdio>

/// Feeds every file of the folder that is named to the fuzz target it is linked with.
int main(int argc, char *argv[]) {
    const QDir folder(argc == 2 ? argv[1] : "");
    int count = 0;
    for (const QFileInfo &entry : folder.entryInfoList(QDir::Files)) {
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly))
            return 1;
        const QByteArray bytes = file.readAll();
        std::printf("%s\n", qPrintable(entry.fileName()));
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()), std::size_t(bytes.size()));
        ++count;
    }
    return argc == 2 && count > 0 ? 0 : 1;
}
