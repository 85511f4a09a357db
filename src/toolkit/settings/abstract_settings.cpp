#include "toolkit/settings/abstract_settings.h"

#include "toolkit/settings/property_value.h"

#include <algorithm>

AbstractSettings::AbstractSettings(QObject *parent) : QObject(parent) {}

QVariant AbstractSettings::getValue(const QString &name) const {
    const auto descriptor = descriptorOf(name);
    return descriptor ? descriptor->property.read(this) : QVariant();
}

bool AbstractSettings::setValue(const QString &name, const QVariant &value) {
    const auto descriptor = descriptorOf(name);
    const auto converted = descriptor ? property_value::convert(*descriptor, value) : std::nullopt;
    return converted && descriptor->property.write(this, *converted);
}

bool AbstractSettings::containsProperty(const QString &name) const {
    return descriptorOf(name).has_value();
}

MetaDescriptor AbstractSettings::metaDescriptor() const {
    return PropertyDescriptor::ofClass(*metaObject());
}

QVariant AbstractSettings::defaultValue(const QString &name) const {
    QVariant value;
    if (containsProperty(name)) {
        QMetaObject::invokeMethod(const_cast<AbstractSettings *>(this), ("get" + name + "Default").toLatin1(),
                                  Qt::DirectConnection, Q_RETURN_ARG(QVariant, value));
    }
    return value;
}

bool AbstractSettings::isDefault(const PropertyDescriptor &descriptor) const {
    // Texts are compared because QVariant cannot compare values of enums.
    return property_value::toText(descriptor, getValue(descriptor.name)) ==
           property_value::toText(descriptor, defaultValue(descriptor.name));
}

void AbstractSettings::resetValue(const QString &name) {
    if (const auto descriptor = descriptorOf(name))
        descriptor->property.reset(this);
}

std::optional<PropertyDescriptor> AbstractSettings::descriptorOf(const QString &name) const {
    const MetaDescriptor all = metaDescriptor();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto &one) { return one.name == name; });
    return found == all.end() ? std::nullopt : std::optional<PropertyDescriptor>(*found);
}
