#include "asee/coefficients.h"
#include "trackers/asee/sdk/asee_sdk.h"

#include <QFile>
#include <array>
#include <cstdio>

// Writes the coefficient file of a calibration with the simulated tracker, so that a demonstration does not have to
// start with a calibration.
int main(int argc, char *argv[]) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: asee-simulator-coefficients FILE\n");
        return 2;
    }
    std::array<char, asee_sdk::coefficientBytes> block{};
    sim::asee_pro::Coefficients{0.5F, 0.5F}.write(block.data());
    QFile file(QString::fromLocal8Bit(argv[1]));
    const qint64 size = asee_sdk::coefficientBytes;
    if (file.open(QIODevice::WriteOnly) && file.write(block.data(), size) == size && file.flush())
        return 0;
    std::fprintf(stderr, "asee-simulator-coefficients: cannot write %s: %s\n", argv[1], qPrintable(file.errorString()));
    return 1;
}
