#include "fuzz/fuzz_support.h"
#include "support/request_outcome.h"

#include <QRandomGenerator>

namespace {

constexpr int limitChoices[] = {50000000, 1000, 300, 100, 50, 20, 1, 0, -5, 2147483647};

int limitFor(unsigned choice) {
    return limitChoices[choice % std::size(limitChoices)];
}

QList<QByteArray> outcome(const RequestLimits &limits, std::string_view bytes,
                          const std::function<std::size_t()> &pieceSize) {
    HttpRequest request(limits.settings());
    const std::string_view rest = request_outcome::feed(request, bytes, pieceSize);
    return request_outcome::describe(request) << QByteArray::number(qulonglong(rest.size()));
}

}  // namespace

// The first three bytes select the limits and the sizes of the pieces in which the request arrives. The outcome must
// not depend on the pieces.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static RequestLimits limits(0, 0);
    fuzz::Input input(data, size);
    const int maxRequestSize = limitFor(input.byte());
    limits.set(maxRequestSize, limitFor(input.byte()));
    const unsigned maxPieceBytes = input.byte() + 1;
    QRandomGenerator random(maxPieceBytes - 1);
    const auto pieceSize = [&] { return 1 + random.bounded(maxPieceBytes); };

    const QList<QByteArray> whole = outcome(limits, input.rest(), request_outcome::wholeInput);
    fuzz::require(outcome(limits, input.rest(), pieceSize) == whole, "the outcome depends on the pieces");
    return 0;
}
