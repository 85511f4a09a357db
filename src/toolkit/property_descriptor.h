#pragma once

#include <QMetaProperty>
#include <QString>
#include <QStringList>
#include <QVector>
#include <optional>

/// What the class-info of a settings class says about one of its properties (see vt_property.h).
///
/// A plain value. `displayName`, `category`, `suffix` and the keys of an enum are source texts: whoever shows
/// them translates them in the context "Generic".
struct PropertyDescriptor {
    QMetaProperty property;
    QString name;
    QString displayName;
    QString category;
    QString defaultText;  ///< as declared, possibly a C++ expression; `AbstractSettings::defaultValue` has
                          ///< the value
    QString suffix;
    std::optional<double> minimum;
    std::optional<double> maximum;
    std::optional<double> step;
    QStringList choices;  ///< the only values a text property may take; empty: any text
    bool editable = false;
    bool visible = true;
    bool readOnly = false;
};

/// Base classes first, then in the order of declaration.
using MetaDescriptor = QVector<PropertyDescriptor>;

/// Describes the settings properties of a class: those declared below QObject. Of several class-info entries
/// with the same key the one of the most derived class counts.
MetaDescriptor describeProperties(const QMetaObject &metaObject);
