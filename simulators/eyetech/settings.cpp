#include "eyetech/settings.h"

#include <QFile>
#include <QSaveFile>

namespace sim::eyetech {

void Settings::add(const QString &name) {
    if (!contains(name))
        values_.insert(name, {});
}

void Settings::merge(const Settings &other) {
    for (auto it = other.values_.begin(); it != other.values_.end(); ++it)
        values_[it.key()] = it.value();
}

bool Settings::load(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine());
        const int separator = line.indexOf('=');
        if (separator > 0)
            set(line.left(separator).trimmed(), line.mid(separator + 1).trimmed());
    }
    return true;
}

bool Settings::save(const QString &path) const {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    for (auto it = values_.begin(); it != values_.end(); ++it) {
        if (it.value().canConvert<QString>())
            file.write(QString("%1 = %2\n").arg(it.key(), it.value().toString()).toUtf8());
    }
    return file.commit();
}

}  // namespace sim::eyetech
