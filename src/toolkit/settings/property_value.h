#pragma once

#include "toolkit/settings/property_descriptor.h"

#include <QVariant>
#include <optional>

/// Converts the values of settings. Reentrant.
namespace property_value {

/// Returns the text of a value in a settings file. The text of an enum is its key. Numbers have a decimal point in
/// every locale.
[[nodiscard]] QString toText(const PropertyDescriptor &descriptor, const QVariant &value);

/// Converts a value, or its text, to the type of the property. A number is clamped to the range of the property.
/// Returns std::nullopt if the value cannot be converted or is not one of the property's choices.
[[nodiscard]] std::optional<QVariant> convert(const PropertyDescriptor &descriptor, const QVariant &value);

}  // namespace property_value
