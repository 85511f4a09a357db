#pragma once

#include <QByteArray>
#include <bitset>
#include <optional>

namespace sim::gazepoint {

/// The groups of fields of a record, in the order in which a record holds them.
enum class FieldGroup {
    Counter,
    Time,
    TimeTick,
    PogFix,
    PogLeft,
    PogRight,
    PogBest,
    PogAac,
    PupilLeft,
    PupilRight,
    EyeLeft,
    EyeRight,
    Cursor,
    Keyboard,
    Blink,
    PupilMm,
    Pix,
    Dial,
    Gsr,
    HeartRate,
    HeartRatePulse,
    HeartRateInterval,
    Ttl,
    UserData,
};
constexpr int kFieldGroupCount = static_cast<int>(FieldGroup::UserData) + 1;

/// What one client has switched on.
struct Switches {
    std::bitset<kFieldGroupCount> groups;
    bool data = false;

    [[nodiscard]] bool has(FieldGroup group) const { return groups.test(static_cast<std::size_t>(group)); }
};

/// The group that `ENABLE_SEND_<name>` switches; nothing when there is none of that name.
std::optional<FieldGroup> fieldGroupOfSwitch(const QByteArray &id);

}  // namespace sim::gazepoint
