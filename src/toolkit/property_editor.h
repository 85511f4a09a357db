#pragma once

#include "toolkit/property_descriptor.h"

#include <QObject>
#include <QString>
#include <QVariant>

class QWidget;

/// The widget that shows one property's value and lets it be edited, behind one face for all types.
///
/// Knows the property's description, not the settings: whoever owns both carries values from one to the
/// other. Owned by its parent, as is the widget.
class PropertyEditor : public QObject {
    Q_OBJECT

public:
    explicit PropertyEditor(QWidget *parent);

    /// The editor that fits the property's type. A read-only text can still be selected and copied.
    static PropertyEditor *create(const PropertyDescriptor &descriptor, QWidget *parent);

    [[nodiscard]] virtual QWidget *widget() const = 0;

    /// Shows a value without emitting `edited`.
    virtual void show(const QVariant &value) = 0;

    /// A value as this editor would show it.
    [[nodiscard]] virtual QString display(const QVariant &value) const = 0;

    /// Makes the widget's own texts follow a new language.
    virtual void retranslate() {}

Q_SIGNALS:
    /// The user has finished an edit.
    void edited(const QVariant &value);
};
