#include "toolkit/settings/ui_language.h"

#include "toolkit/base/toolkit_log.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {

void install(std::unique_ptr<QTranslator> &translator, bool loaded) {
    if (loaded)
        QCoreApplication::installTranslator(translator.get());
}

}  // namespace

const QString UiLanguage::cataloguePrefix = QStringLiteral(":/translations/ocela_");

UiLanguage::UiLanguage() = default;

UiLanguage::~UiLanguage() = default;

void UiLanguage::use(const QString &locale) {
    // QTranslator removes itself from the application when it is destroyed.
    qtTranslator_ = std::make_unique<QTranslator>();
    translator_ = std::make_unique<QTranslator>();
    const QString qtFolder = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
    install(qtTranslator_, qtTranslator_->load(QLocale(locale), "qtbase", "_", qtFolder));
    const bool loaded = translator_->load(cataloguePrefix + locale);
    install(translator_, loaded);
    if (!loaded)
        qCDebug(lcSettings) << "No translation for" << locale;
}

QString UiLanguage::preferred(const QStringList &languages, const QStringList &systemLanguages) {
    const QLocale::Language wanted = QLocale(systemLanguages.value(0)).language();
    for (const QString &language : languages) {
        if (QLocale(language).language() == wanted)
            return language;
    }
    const QString english = QStringLiteral("en_US");
    return languages.contains(english) ? english : languages.value(0);
}

QString UiLanguage::nativeName(const QString &locale) {
    const QLocale language(locale);
    // Qt's native name of en_US is "American English".
    if (language.language() == QLocale::English)
        return QLocale::languageToString(QLocale::English);
    QString name = language.nativeLanguageName();
    name.replace(0, 1, language.toUpper(name.left(1)));
    return name;
}
