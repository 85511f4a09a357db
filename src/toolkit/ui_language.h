#pragma once

#include <QString>
#include <QStringList>
#include <memory>

class QTranslator;

/// The language of the user interface. Owns the translators it installs into the application: the program's
/// own catalogue and, where it is present, Qt's for the standard dialogs and buttons.
///
/// Used on the GUI thread. Widgets follow in their changeEvent(): QEvent::LanguageChange.
class UiLanguage {
public:
    /// The program's catalogue of a locale is this, the locale's name and ".qm".
    static const QString cataloguePrefix;

    UiLanguage();
    ~UiLanguage();
    UiLanguage(const UiLanguage &) = delete;
    UiLanguage &operator=(const UiLanguage &) = delete;

    /// Switches the whole user interface to a locale such as "ru_RU". Without a catalogue the source texts
    /// show.
    void use(const QString &locale);

    /// The one of `languages` that fits the system's languages (best first, as QLocale::uiLanguages() gives
    /// them): same language as the system's first, else "en_US", else the first.
    static QString preferred(const QStringList &languages, const QStringList &systemLanguages);

    /// What the speakers of a language call it: "Русский", "English". Empty for what is no locale.
    static QString nativeName(const QString &locale);

private:
    std::unique_ptr<QTranslator> qtTranslator_;
    std::unique_ptr<QTranslator> translator_;
};
