#include "toolkit/settings/property_value.h"

#include <QMetaEnum>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Value = std::optional<QVariant>;

Value enumValue(const QMetaEnum &keys, const QVariant &value) {
    bool ok = false;
    int number = 0;
    if (value.userType() == QMetaType::QString)
        number = keys.keyToValue(value.toString().toLatin1().constData(), &ok);
    else
        number = value.toInt(&ok);
    return ok && keys.valueToKey(number) != nullptr ? Value(number) : std::nullopt;
}

Value boolValue(const QVariant &value) {
    if (value.userType() != QMetaType::QString)
        return value.canConvert<bool>() ? Value(value.toBool()) : std::nullopt;
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    return std::nullopt;
}

double clamped(const PropertyDescriptor &descriptor, double value) {
    value = std::max(value, descriptor.minimum.value_or(value));
    return std::min(value, descriptor.maximum.value_or(value));
}

Value intValue(const PropertyDescriptor &descriptor, const QVariant &value) {
    using Limits = std::numeric_limits<int>;
    bool ok = false;
    const double number = value.toDouble(&ok);  // also converts numbers beyond the range of int
    if (!ok || std::trunc(number) != number)
        return std::nullopt;
    return static_cast<int>(std::clamp<double>(clamped(descriptor, number), Limits::min(), Limits::max()));
}

Value doubleValue(const PropertyDescriptor &descriptor, const QVariant &value) {
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok && std::isfinite(number) ? Value(clamped(descriptor, number)) : std::nullopt;
}

Value textValue(const PropertyDescriptor &descriptor, const QVariant &value) {
    const QString text = value.toString();
    const bool allowed = descriptor.choices.isEmpty() || descriptor.choices.contains(text);
    return value.canConvert<QString>() && allowed ? Value(text) : std::nullopt;
}

Value otherValue(const PropertyDescriptor &descriptor, QVariant value) {
    return value.convert(descriptor.property.userType()) ? Value(value) : std::nullopt;
}

}  // namespace

QString property_value::toText(const PropertyDescriptor &descriptor, const QVariant &value) {
    if (descriptor.property.isEnumType())
        return QString::fromLatin1(descriptor.property.enumerator().valueToKey(value.toInt()));
    return value.toString();
}

std::optional<QVariant> property_value::convert(const PropertyDescriptor &descriptor, const QVariant &value) {
    if (!value.isValid())
        return std::nullopt;
    if (descriptor.property.isEnumType())
        return enumValue(descriptor.property.enumerator(), value);
    switch (descriptor.property.userType()) {
        case QMetaType::Bool:
            return boolValue(value);
        case QMetaType::Int:
            return intValue(descriptor, value);
        case QMetaType::Double:
            return doubleValue(descriptor, value);
        case QMetaType::QString:
            return textValue(descriptor, value);
        default:
            return otherValue(descriptor, value);
    }
}
