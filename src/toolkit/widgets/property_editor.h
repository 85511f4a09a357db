#pragma once

#include "toolkit/settings/property_descriptor.h"

#include <QObject>
#include <QString>
#include <QVariant>

class QWidget;

/// Base class of the editors for the value of one property. The parent owns the editor and its widget. GUI thread.
///
/// An editor does not access the settings. Its owner passes values to show() and stores the values of edited().
class PropertyEditor : public QObject {
    Q_OBJECT

public:
    explicit PropertyEditor(QWidget *parent);

    /// Creates the editor for the type of the property. The text of a read-only text property can be selected and
    /// copied.
    static PropertyEditor *create(const PropertyDescriptor &descriptor, QWidget *parent);

    [[nodiscard]] virtual QWidget *widget() const = 0;

    /// Shows a value. Does not emit edited().
    virtual void show(const QVariant &value) = 0;

    /// Returns the text that the editor shows for a value.
    [[nodiscard]] virtual QString display(const QVariant &value) const = 0;

    /// Translates the widget's texts to the current language.
    virtual void retranslate() {}

Q_SIGNALS:
    /// Emitted when the user has finished editing.
    void edited(const QVariant &value);
};
