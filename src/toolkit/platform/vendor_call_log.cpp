#include "toolkit/platform/vendor_call_log.h"

#include <algorithm>
#include <utility>

VendorCallLog::VendorCallLog(const QLoggingCategory &(*category)(), std::vector<const char *> functions,
                             std::vector<Meaning> meanings)
    : category_(category),
      functions_(std::move(functions)),
      meanings_(std::move(meanings)),
      lastResults_(functions_.size()) {}

int VendorCallLog::checked(std::size_t index, int result) {
    // Most results repeat the previous one, and reading does not make threads wait for each other.
    std::atomic<int> &last = lastResults_[index];
    if (last.load(std::memory_order_relaxed) != result && last.exchange(result) != result && result != 0)
        qCInfo(category_).noquote() << functions_[index] << "returned"
                                    << QByteArray::number(result) + meaningOf(result);
    return result;
}

QByteArray VendorCallLog::meaningOf(int result) const {
    const auto found = std::find_if(meanings_.begin(), meanings_.end(),
                                    [result](const Meaning &meaning) { return meaning.result == result; });
    return found != meanings_.end() ? QByteArray(": ") + found->text : QByteArray();
}
