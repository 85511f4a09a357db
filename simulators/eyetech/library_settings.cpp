#include "eyetech/library.h"
#include "eyetech/results.h"

#include <QString>
#include <cstring>
#include <optional>
#include <type_traits>

namespace sim::eyetech {

namespace {

/// The types of QLSettings_SetValue and QLSettings_GetValue, in the order of their numbers.
#define OCELA_SETTING_TYPES(X) \
    X(Int, int)                \
    X(Int8, std::int8_t)       \
    X(Int16, std::int16_t)     \
    X(Int32, std::int32_t)     \
    X(Int64, std::int64_t)     \
    X(UInt, unsigned)          \
    X(UInt8, std::uint8_t)     \
    X(UInt16, std::uint16_t)   \
    X(UInt32, std::uint32_t)   \
    X(UInt64, std::uint64_t)   \
    X(Float, float)            \
    X(Double, double)          \
    X(Bool, bool)              \
    X(VoidPointer, void *)

enum SettingType : int {
#define OCELA_TYPE(name, type) name##Type,
    OCELA_SETTING_TYPES(OCELA_TYPE)
#undef OCELA_TYPE
        StringType
};

template <typename T>
QVariant stored(T value) {
    if constexpr (std::is_same_v<T, bool> || std::is_pointer_v<T>)
        return QVariant::fromValue(value);
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(value);
    else if constexpr (std::is_signed_v<T>)
        return static_cast<qlonglong>(value);
    else
        return static_cast<qulonglong>(value);
}

/// Returns nothing if `value` does not convert to T, or is out of its range.
template <typename T>
std::optional<T> convert(const QVariant &value) {
    if constexpr (std::is_pointer_v<T> || std::is_same_v<T, bool>) {
        return value.canConvert<T>() ? std::make_optional(value.value<T>()) : std::nullopt;
    } else {
        bool ok = false;
        T result{};
        if constexpr (std::is_floating_point_v<T>)
            result = static_cast<T>(value.toDouble(&ok));
        else if constexpr (std::is_signed_v<T>)
            result = static_cast<T>(value.toLongLong(&ok));
        else
            result = static_cast<T>(value.toULongLong(&ok));
        const bool inRange = std::is_floating_point_v<T> || stored(result).toString() == value.toString();
        return ok && inRange ? std::make_optional(result) : std::nullopt;
    }
}

template <typename T>
T readAs(const void *value) {
    T result{};
    std::memcpy(&result, value, sizeof result);
    return result;
}

}  // namespace

Settings *Library::container(int settings) {
    const auto found = settings_.find(settings);
    return found != settings_.end() ? &found->second : nullptr;
}

int Library::transfer(const Settings *from, Settings *to) {
    if (from == nullptr || to == nullptr)
        return UnknownSettings;
    to->merge(*from);
    return Ok;
}

/// Loads into the container `settings`, or into a new one if there is no such container.
int Library::QLSettings_Load(const char *path, int *settings) {
    if (path == nullptr || settings == nullptr)
        return BadArgument;
    const std::lock_guard lock(mutex_);
    if (container(*settings) == nullptr)
        *settings = ++lastId_;
    return settings_[*settings].load(QString::fromLocal8Bit(path)) ? Ok : FileError;
}

int Library::QLSettings_Save(const char *path, int settings) {
    const std::lock_guard lock(mutex_);
    if (container(settings) == nullptr)
        return UnknownSettings;
    return path != nullptr && container(settings)->save(QString::fromLocal8Bit(path)) ? Ok : FileError;
}

/// Creates an empty container, or a copy of `source` if that is not 0.
int Library::QLSettings_Create(int source, int *settings) {
    if (settings == nullptr)
        return BadArgument;
    const std::lock_guard lock(mutex_);
    if (source != 0 && container(source) == nullptr)
        return UnknownSettings;
    *settings = ++lastId_;
    settings_[*settings] = source != 0 ? *container(source) : Settings();
    return Ok;
}

int Library::QLSettings_AddSetting(int settings, const char *name) {
    const std::lock_guard lock(mutex_);
    Settings *const found = container(settings);
    if (found == nullptr || name == nullptr)
        return found == nullptr ? UnknownSettings : BadArgument;
    found->add(name);
    return Ok;
}

int Library::QLSettings_RemoveSetting(int settings, const char *name) {
    const std::lock_guard lock(mutex_);
    Settings *const found = container(settings);
    if (found == nullptr)
        return UnknownSettings;
    return name != nullptr && found->remove(name) ? Ok : NotFound;
}

int Library::setValue(int settings, const char *name, const QVariant &value) {
    const std::lock_guard lock(mutex_);
    Settings *const found = container(settings);
    if (found == nullptr || name == nullptr)
        return found == nullptr ? UnknownSettings : BadArgument;
    found->set(name, value);
    return Ok;
}

Answer<QVariant> Library::findValue(int settings, const char *name) {
    const std::lock_guard lock(mutex_);
    const Settings *const found = container(settings);
    if (found == nullptr)
        return {UnknownSettings};
    const QVariant value = name != nullptr ? found->value(name) : QVariant();
    return {value.isValid() ? Ok : NotFound, value};
}

template <typename T>
int Library::getValue(int settings, const char *name, T *value) {
    if (value == nullptr)
        return BadArgument;
    const Answer<QVariant> found = findValue(settings, name);
    if (found.result != Ok)
        return found.result;
    const auto converted = convert<T>(found.value);
    if (!converted)
        return WrongType;
    *value = *converted;
    return Ok;
}

template <typename T>
int Library::getBytes(int settings, const char *name, int size, void *value) {
    return size < static_cast<int>(sizeof(T)) ? BufferTooSmall : getValue(settings, name, static_cast<T *>(value));
}

#define OCELA_ACCESSORS(type_name, type)                                                       \
    int Library::QLSettings_SetValue##type_name(int settings, const char *name, type value) {  \
        return setValue(settings, name, stored(value));                                        \
    }                                                                                          \
    int Library::QLSettings_GetValue##type_name(int settings, const char *name, type *value) { \
        return getValue(settings, name, value);                                                \
    }
OCELA_SETTING_TYPES(OCELA_ACCESSORS)
#undef OCELA_ACCESSORS

int Library::QLSettings_SetValueString(int settings, const char *name, const char *value) {
    return value != nullptr ? setValue(settings, name, QString::fromUtf8(value)) : BadArgument;
}

int Library::QLSettings_GetValueString(int settings, const char *name, int size, char *value) {
    const Answer<QVariant> found = findValue(settings, name);
    if (found.result != Ok)
        return found.result;
    if (value == nullptr)
        return BadArgument;
    const QByteArray text = found.value.toString().toUtf8();
    if (size <= text.size())
        return BufferTooSmall;
    std::memcpy(value, text.constData(), static_cast<std::size_t>(text.size()) + 1);
    return Ok;
}

/// The size includes the terminating NUL.
int Library::QLSettings_GetValueStringSize(int settings, const char *name, int *size) {
    const Answer<QVariant> found = findValue(settings, name);
    if (found.result != Ok)
        return found.result;
    if (size == nullptr)
        return BadArgument;
    *size = found.value.toString().toUtf8().size() + 1;
    return Ok;
}

int Library::QLSettings_SetValue(int settings, const char *name, int type, const void *value) {
    if (value == nullptr)
        return BadArgument;
    switch (type) {
#define OCELA_CASE(type_name, type) \
    case type_name##Type:           \
        return QLSettings_SetValue##type_name(settings, name, readAs<type>(value));
        OCELA_SETTING_TYPES(OCELA_CASE)
#undef OCELA_CASE
        case StringType:
            return QLSettings_SetValueString(settings, name, static_cast<const char *>(value));
        default:
            return WrongType;
    }
}

int Library::QLSettings_GetValue(int settings, const char *name, int type, int size, void *value) {
    switch (type) {
#define OCELA_CASE(type_name, type) \
    case type_name##Type:           \
        return getBytes<type>(settings, name, size, value);
        OCELA_SETTING_TYPES(OCELA_CASE)
#undef OCELA_CASE
        case StringType:
            return QLSettings_GetValueString(settings, name, size, static_cast<char *>(value));
        default:
            return WrongType;
    }
}

}  // namespace sim::eyetech
