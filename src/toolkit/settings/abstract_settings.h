#pragma once

#include "toolkit/settings/property_descriptor.h"
#include "toolkit/settings/vt_property.h"

#include <QObject>
#include <QVariant>
#include <optional>

/// Base class of settings that are declared with VT_PROPERTY. Gives access to them by name. GUI thread.
class AbstractSettings : public QObject {
    Q_OBJECT

public:
    explicit AbstractSettings(QObject *parent = nullptr);

    /// Returns the value of a property, or an invalid QVariant for an unknown name.
    [[nodiscard]] virtual QVariant getValue(const QString &name) const;

    /// Sets a property from a value of its type or from its text, clamped to its range. Returns false and changes
    /// nothing for an unknown name or a value that cannot be converted.
    virtual bool setValue(const QString &name, const QVariant &value);

    [[nodiscard]] virtual bool containsProperty(const QString &name) const;

    /// Returns the descriptions of all properties, those of base classes first, in order of declaration.
    [[nodiscard]] virtual MetaDescriptor metaDescriptor() const;

    [[nodiscard]] QVariant defaultValue(const QString &name) const;
    [[nodiscard]] bool isDefault(const PropertyDescriptor &descriptor) const;
    void resetValue(const QString &name);

Q_SIGNALS:
    /// Emitted after `changed<Prop>` when a property has a new value.
    void changedProperty(const QString &name);

private:
    [[nodiscard]] std::optional<PropertyDescriptor> descriptorOf(const QString &name) const;
};
