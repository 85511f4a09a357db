#pragma once

#include <QString>
#include <QStringList>
#include <memory>

class QTranslator;

/// The language of the user interface. Installs the program's catalogue and, if available, Qt's catalogue for standard
/// dialogs, and owns their translators. GUI thread.
///
/// Widgets must retranslate their texts in changeEvent() at QEvent::LanguageChange.
class UiLanguage {
public:
    /// The path of a catalogue consists of this prefix, the locale name and ".qm".
    static const QString cataloguePrefix;

    UiLanguage();
    ~UiLanguage();
    UiLanguage(const UiLanguage &) = delete;
    UiLanguage &operator=(const UiLanguage &) = delete;

    /// Changes the user interface to a locale such as "ru_RU". Without a catalogue, the source texts are shown.
    void use(const QString &locale);

    /// Returns the first entry of `languages` with the language of `systemLanguages[0]`. If there is none, returns
    /// "en_US" if available, otherwise the first entry. `systemLanguages` has the format of QLocale::uiLanguages().
    static QString preferred(const QStringList &languages, const QStringList &systemLanguages);

    /// Returns the name of a language in that language, for example "Русский" or "English", or an empty text for an
    /// unknown locale.
    static QString nativeName(const QString &locale);

private:
    std::unique_ptr<QTranslator> qtTranslator_;
    std::unique_ptr<QTranslator> translator_;
};
