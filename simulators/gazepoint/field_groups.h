#pragma once

#include <QByteArray>
#include <bitset>
#include <optional>

namespace sim::gazepoint {

/// The groups of fields, in their order in a record.
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
constexpr int fieldGroupCount = static_cast<int>(FieldGroup::UserData) + 1;

/// The switches of one client.
struct Switches {
    std::bitset<fieldGroupCount> groups;  ///< the fields that its records contain
    bool data = false;                    ///< the client receives records

    [[nodiscard]] bool has(FieldGroup group) const { return groups.test(static_cast<std::size_t>(group)); }

    /// Returns the state of the switch with the id `ENABLE_SEND_<name>`, or nothing if there is no such switch.
    [[nodiscard]] std::optional<bool> state(const QByteArray &id) const;
    /// Changes a switch. Ignores an unknown id.
    void set(const QByteArray &id, bool on);
};

}  // namespace sim::gazepoint
