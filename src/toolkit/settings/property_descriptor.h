#pragma once

#include <QMetaProperty>
#include <QString>
#include <QStringList>
#include <QVector>
#include <optional>

/// The description of one property of a settings class, read from the class-info (see vt_property.h).
///
/// `displayName`, `explanation`, `category`, `suffix` and the keys of an enum are source texts. Translate them in the
/// context "Generic" for display.
struct PropertyDescriptor {
    /// Describes the properties that a class and its base classes below QObject declare. Base classes are first, in
    /// order of declaration. If several classes have the same class-info key, the most derived one applies.
    [[nodiscard]] static QVector<PropertyDescriptor> ofClass(const QMetaObject &metaObject);

    QMetaProperty property;
    QString name;
    QString displayName;
    QString explanation;
    QString category;
    QString defaultText;  ///< the declared C++ expression; see AbstractSettings::defaultValue() for its value
    QString suffix;
    std::optional<double> minimum;
    std::optional<double> maximum;
    std::optional<double> step;
    QStringList choices;  ///< the accepted values of a text property; any text if empty
    bool editable = false;
    bool visible = true;
    bool readOnly = false;
    bool isFolder = false;
};

using MetaDescriptor = QVector<PropertyDescriptor>;
