#include "fuzz/fuzz_support.h"

#include <QDir>
#include <cstdio>
#include <vector>

/// Feeds every file of the folder in its argument to the fuzz target.
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
        // A copy of exactly the input's size, so that AddressSanitizer detects a read past its end.
        const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(input.data(), input.size());
        ++count;
    }
    return argc == 2 && count > 0 ? 0 : 1;
}
