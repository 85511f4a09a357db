#include "gazepoint/field_groups.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace sim::gazepoint {

namespace {

constexpr std::array<const char *, fieldGroupCount> groupNames{
    "COUNTER",    "TIME",        "TIME_TICK", "POG_FIX",   "POG_LEFT", "POG_RIGHT", "POG_BEST", "POG_AAC",
    "PUPIL_LEFT", "PUPIL_RIGHT", "EYE_LEFT",  "EYE_RIGHT", "CURSOR",   "KB",        "BLINK",    "PUPILMM",
    "PIX",        "DIAL",        "GSR",       "HR",        "HR_PULSE", "HR_IBI",    "TTL",      "USER_DATA"};

const QByteArray switchPrefix = QByteArrayLiteral("ENABLE_SEND_");
const QByteArray dataSwitch = QByteArrayLiteral("ENABLE_SEND_DATA");

/// Returns the index of the group that the switch `id` controls.
std::optional<std::size_t> groupOfSwitch(const QByteArray &id) {
    if (!id.startsWith(switchPrefix))
        return std::nullopt;
    const auto *found = std::find(groupNames.begin(), groupNames.end(), id.mid(switchPrefix.size()));
    if (found == groupNames.end())
        return std::nullopt;
    return static_cast<std::size_t>(std::distance(groupNames.begin(), found));
}

}  // namespace

std::optional<bool> Switches::state(const QByteArray &id) const {
    if (id == dataSwitch)
        return data;
    const auto group = groupOfSwitch(id);
    return group ? std::make_optional(groups.test(*group)) : std::nullopt;
}

void Switches::set(const QByteArray &id, bool on) {
    if (id == dataSwitch)
        data = on;
    else if (const auto group = groupOfSwitch(id))
        groups.set(*group, on);
}

}  // namespace sim::gazepoint
