#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace sim::eyetech {

/// A container of settings: values by name. Numbers are stored in the widest type of their kind. A setting that was
/// added without a value has an invalid QVariant.
class Settings {
public:
    void add(const QString &name);
    void set(const QString &name, const QVariant &value) { values_[name] = value; }
    bool remove(const QString &name) { return values_.remove(name) > 0; }
    [[nodiscard]] bool contains(const QString &name) const { return values_.contains(name); }
    [[nodiscard]] QVariant value(const QString &name) const { return values_.value(name); }

    /// Adds the settings of `other`, and replaces those of the same name.
    void merge(const Settings &other);

    /// The file is text, with "name = value" on each line. Loaded values are text, and other lines are ignored.
    /// Pointers are not saved.
    [[nodiscard]] bool load(const QString &path);
    [[nodiscard]] bool save(const QString &path) const;

private:
    QMap<QString, QVariant> values_;
};

}  // namespace sim::eyetech
