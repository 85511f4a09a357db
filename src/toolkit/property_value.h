#pragma once

#include "toolkit/property_descriptor.h"

#include <QVariant>
#include <optional>

/// The text of a value in a settings file: enums by their key, numbers with a decimal point in every locale.
QString propertyText(const PropertyDescriptor &descriptor, const QVariant &value);

/// Converts a value or its text to the property's type. A number outside the property's range is clamped to
/// it; nothing comes back where the value does not convert or is none of the property's choices.
std::optional<QVariant> propertyValue(const PropertyDescriptor &descriptor, const QVariant &value);
