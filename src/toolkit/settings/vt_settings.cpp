#include "toolkit/settings/vt_settings.h"

#include "toolkit/base/toolkit_log.h"
#include "toolkit/settings/property_value.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QScopedValueRollback>
#include <QThread>
#include <utility>

namespace {

constexpr int maxReadAttempts = 6;
constexpr int readRetryMs = 200;

QString native(const QString &path) {
    return QDir::toNativeSeparators(path);
}

}  // namespace

VTSettings::VTSettings(QString filePath, bool saveOnChange, QObject *parent, VTSettingsFormat /*format*/)
    : AbstractSettings(parent), filePath_(std::move(filePath)) {
    if (!saveOnChange)
        return;
    connect(this, &VTSettings::changedProperty, this, [this] {
        if (!reloading_)
            save();
    });
}

bool VTSettings::reload() {
    const QScopedValueRollback<bool> guard(reloading_, true);
    const settings_file::Contents file = readFile();
    readProblem_.clear();
    if (file.isDamaged)
        setAside(file.error);
    else if (!file.error.isEmpty())
        leaveUnread(file.error);
    restore(file.entries);
    return file.error.isEmpty();
}

settings_file::Contents VTSettings::readFile() const {
    settings_file::Contents file;
    for (int attempt = 1; attempt <= maxReadAttempts; ++attempt) {
        if (!QFileInfo::exists(filePath_))
            return {};
        file = settings_file::read(filePath_);
        if (file.error.isEmpty() || file.isDamaged)
            return file;
        if (attempt < maxReadAttempts)
            QThread::msleep(readRetryMs);
    }
    return file;
}

bool VTSettings::save() {
    if (!readProblem_.isEmpty())
        return false;
    QVector<settings_file::Entry> entries;
    for (const PropertyDescriptor &descriptor : metaDescriptor())
        entries.append({descriptor.name, property_value::toText(descriptor, getValue(descriptor.name))});
    const QString error = settings_file::write(filePath_, entries + unknown_);
    if (!error.isEmpty())
        qCWarning(lcSettings).noquote() << "Settings were not saved to" << native(filePath_) + ":" << error;
    return error.isEmpty();
}

void VTSettings::setAside(const QString &reason) {
    const QString kept = settings_file::moveAside(filePath_);
    if (kept.isEmpty())
        readProblem_ = QT_TRANSLATE_NOOP("VTSettings", "it is damaged and cannot be renamed");
    const QString outcome = kept.isEmpty() ? QStringLiteral("it could not be renamed") : "kept as " + native(kept);
    qCWarning(lcSettings).noquote() << "Settings file" << native(filePath_) << "cannot be used:" << reason + ";"
                                    << outcome + "; the defaults apply";
}

void VTSettings::leaveUnread(const QString &reason) {
    readProblem_ = reason;
    qCWarning(lcSettings).noquote() << "Settings file" << native(filePath_)
                                    << "cannot be read:" << reason + "; the defaults apply, and changes are not saved";
}

void VTSettings::restore(const QVector<settings_file::Entry> &entries) {
    QHash<QString, QString> texts;
    unknown_.clear();
    for (const settings_file::Entry &entry : entries) {
        if (containsProperty(entry.name))
            texts.insert(entry.name, entry.text);
        else
            unknown_.append(entry);
    }
    for (const PropertyDescriptor &descriptor : metaDescriptor()) {
        const auto text = texts.constFind(descriptor.name);
        restoreProperty(descriptor.name, text == texts.constEnd() ? nullptr : &*text);
    }
}

void VTSettings::restoreProperty(const QString &name, const QString *text) {
    if (text != nullptr && setValue(name, *text))
        return;
    if (text != nullptr)
        qCWarning(lcSettings).noquote() << native(filePath_) + ":" << name << "has the invalid value"
                                        << *text + "; the default applies";
    resetValue(name);
}
