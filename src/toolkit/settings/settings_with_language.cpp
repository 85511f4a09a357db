#include "toolkit/settings/settings_with_language.h"

#include <QLocale>
#include <utility>

SettingsWithLanguage::SettingsWithLanguage(QString filePath, bool saveOnChange, QStringList languages, QObject *parent,
                                           VTSettingsFormat format)
    : VTSettings(std::move(filePath), saveOnChange, parent, format), languages_(std::move(languages)) {
    defaultLanguage_ = UiLanguage::preferred(languages_, QLocale::system().uiLanguages());
    Language_ = defaultLanguage_;
    uiLanguage_.use(Language_);
    connect(this, &SettingsWithLanguage::changedLanguage, this,
            [this](const QString &language) { uiLanguage_.use(language); });
}

MetaDescriptor SettingsWithLanguage::metaDescriptor() const {
    MetaDescriptor descriptors = VTSettings::metaDescriptor();
    for (PropertyDescriptor &descriptor : descriptors) {
        if (descriptor.name == QLatin1String("Language"))
            descriptor.choices = languages_;
    }
    return descriptors;
}
