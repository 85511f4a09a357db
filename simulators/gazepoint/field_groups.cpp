#include "gazepoint/field_groups.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace sim::gazepoint {

namespace {

constexpr std::array<const char *, kFieldGroupCount> kNames{
    "COUNTER",    "TIME",        "TIME_TICK", "POG_FIX",   "POG_LEFT", "POG_RIGHT", "POG_BEST", "POG_AAC",
    "PUPIL_LEFT", "PUPIL_RIGHT", "EYE_LEFT",  "EYE_RIGHT", "CURSOR",   "KB",        "BLINK",    "PUPILMM",
    "PIX",        "DIAL",        "GSR",       "HR",        "HR_PULSE", "HR_IBI",    "TTL",      "USER_DATA"};

const QByteArray kPrefix = QByteArrayLiteral("ENABLE_SEND_");

}  // namespace

std::optional<FieldGroup> fieldGroupOfSwitch(const QByteArray &id) {
    if (!id.startsWith(kPrefix))
        return std::nullopt;
    const QByteArray name = id.mid(kPrefix.size());
    const auto *found = std::find(kNames.begin(), kNames.end(), name);
    if (found == kNames.end())
        return std::nullopt;
    return static_cast<FieldGroup>(std::distance(kNames.begin(), found));
}

}  // namespace sim::gazepoint
