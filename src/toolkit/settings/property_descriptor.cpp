#include "toolkit/settings/property_descriptor.h"

#include <QMetaClassInfo>
#include <QMetaObject>

namespace {

QString classInfo(const QMetaObject &metaObject, const QString &key) {
    const int index = metaObject.indexOfClassInfo(key.toUtf8().constData());
    return index < 0 ? QString() : QString::fromUtf8(metaObject.classInfo(index).value());
}

std::optional<double> number(const QString &text) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? std::optional<double>(value) : std::nullopt;
}

PropertyDescriptor describe(const QMetaObject &metaObject, const QMetaProperty &property) {
    const QString name = QString::fromLatin1(property.name());
    const auto info = [&](const char *key) { return classInfo(metaObject, name + QLatin1String(key)); };
    const QString displayName = info("DisplayName");

    PropertyDescriptor descriptor;
    descriptor.property = property;
    descriptor.name = name;
    descriptor.displayName = displayName.isEmpty() ? name : displayName;
    descriptor.explanation = info("Explanation");
    descriptor.category = info("Category");
    descriptor.defaultText = info("Default");
    descriptor.suffix = info("Suffix");
    descriptor.minimum = number(info("Minimum"));
    descriptor.maximum = number(info("Maximum"));
    descriptor.step = number(info("Step"));
    descriptor.editable = info("Editable") == QLatin1String("true");
    descriptor.visible = info("NotVisible") != QLatin1String("true");
    descriptor.readOnly = info("ReadOnly") == QLatin1String("true");
    descriptor.isFolder = info("IsFolder") == QLatin1String("true");
    return descriptor;
}

}  // namespace

MetaDescriptor PropertyDescriptor::ofClass(const QMetaObject &metaObject) {
    MetaDescriptor descriptors;
    for (int i = QObject::staticMetaObject.propertyCount(); i < metaObject.propertyCount(); ++i)
        descriptors.append(describe(metaObject, metaObject.property(i)));
    return descriptors;
}
