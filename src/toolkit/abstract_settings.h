#pragma once

#include "toolkit/property_descriptor.h"
#include "toolkit/vt_property.h"

#include <QObject>
#include <QVariant>
#include <optional>

/// A set of settings declared with VT_PROPERTY, reached by their names at run time. Knows nothing of files.
///
/// Lives on the GUI thread, as all that reacts to its signals does.
class AbstractSettings : public QObject {
    Q_OBJECT

public:
    explicit AbstractSettings(QObject *parent = nullptr);

    /// The value of a property; an invalid QVariant for an unknown name.
    [[nodiscard]] virtual QVariant getValue(const QString &name) const;

    /// Sets a property from a value of its type or from its text, clamped to its range. Returns false and
    /// changes nothing for an unknown name or a value that does not convert.
    virtual bool setValue(const QString &name, const QVariant &value);

    [[nodiscard]] virtual bool containsProperty(const QString &name) const;

    /// The description of all properties, base classes first, in order of declaration.
    [[nodiscard]] virtual MetaDescriptor metaDescriptor() const;

    [[nodiscard]] QVariant defaultValue(const QString &name) const;
    [[nodiscard]] bool isDefault(const PropertyDescriptor &descriptor) const;
    void resetValue(const QString &name);

Q_SIGNALS:
    /// Follows `changed<Prop>` whenever a property got another value.
    void changedProperty(const QString &name);

private:
    [[nodiscard]] std::optional<PropertyDescriptor> descriptorOf(const QString &name) const;
};
