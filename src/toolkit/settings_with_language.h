#pragma once

#include "toolkit/ui_language.h"
#include "toolkit/vt_settings.h"

#include <QStringList>

/// Settings with the language of the user interface among them; the interface follows it at once.
///
/// `Language` is a locale name out of `languages`. Its default follows the system's language. A derived class
/// names its category with the class-info "LanguageCategory".
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
