#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace sim::eyetech {

/// A container of settings: values by name. Numbers are kept in the widest type of their kind; a name that was added
/// without a value has an invalid one.
class Settings {
public:
    void add(const QString &name);
    void set(const QString &name, const QVariant &value) { values_[name] = value; }
    bool remove(const QString &name) { return values_.remove(name) > 0; }
    [[nodiscard]] bool contains(const QString &name) const { return values_.contains(name); }
    [[nodiscard]] QVariant value(const QString &name) const { return values_.value(name); }

    /// Takes over all that `other` holds.
    void merge(const Settings &other);

    /// A text file, "name = value" on each line; all that is loaded is text at first. Lines of another form are passed
    /// over, pointers are not saved.
    bool load(const QString &path);
    [[nodiscard]] bool save(const QString &path) const;

private:
    QMap<QString, QVariant> values_;
};

}  // namespace sim::eyetech
