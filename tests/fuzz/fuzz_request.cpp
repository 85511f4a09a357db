#include "fuzz/fuzz_support.h"
#include "support/request_outcome.h"

#include <QRandomGenerator>

namespace {

constexpr int sizeLimits[] = {50000000, 1000, 300, 100, 50, 20, 1, 0, -5, 2147483647};

int sizeLimit(unsigned choice) {
    return sizeLimits[choice % std::size(sizeLimits)];
}

QList<QByteArray> outcome(const RequestLimits &limits, std::string_view bytes,
                          const std::function<std::size_t()> &pieceSize) {
    HttpRequest request(limits.settings());
    const std::string_view rest = feed(request, bytes, pieceSize);
    return describe(request) << QByteArray::number(qulonglong(rest.size()));
}

}  // namespace

// The first bytes choose the limits and how the network cuts the request, which must not change what it becomes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static RequestLimits limits(0, 0);
    fuzz::Input input(data, size);
    const int maxRequestSize = sizeLimit(input.byte());
    limits.set(maxRequestSize, sizeLimit(input.byte()));
    const unsigned cut = input.byte();
    QRandomGenerator random(cut);
    const auto pieceSize = [&] { return 1 + random.bounded(cut + 1); };

    const QList<QByteArray> whole = outcome(limits, input.rest(), [] { return std::string_view::npos; });
    fuzz::require(outcome(limits, input.rest(), pieceSize) == whole, "the outcome depends on how the request was cut");
    return 0;
}
