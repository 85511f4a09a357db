#pragma once

#include "toolkit/settings/ui_language.h"
#include "toolkit/settings/vt_settings.h"

#include <QStringList>

/// Settings that include the language of the user interface. Changing `Language` changes the user interface
/// immediately.
///
/// `Language` is a locale name from `languages`. Its default depends on the language of the system. A derived class
/// sets its category with the class-info "LanguageCategory".
class SettingsWithLanguage : public VTSettings {
    Q_OBJECT
    Q_CLASSINFO("LanguageDisplayName", QT_TRANSLATE_NOOP("Generic", "Language"))
    Q_CLASSINFO("LanguageEditable", "true")

public:
    VT_PROPERTY(QString, Language, "")

    SettingsWithLanguage(QString filePath, bool saveOnChange, QStringList languages, QObject *parent,
                         VTSettingsFormat format = VTSettingsFormat::Xml);

    [[nodiscard]] MetaDescriptor metaDescriptor() const override;

private:
    const QStringList languages_;
    UiLanguage uiLanguage_;
};
