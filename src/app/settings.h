#pragma once

#include "toolkit/settings_with_language.h"

#include <QStandardPaths>

/// The application's own settings. One object, owned by the main window, which calls `reload()` before it
/// connects to the change signals.
class Settings : public SettingsWithLanguage {
    Q_OBJECT
    Q_CLASSINFO("LanguageCategory", QT_TRANSLATE_NOOP("Generic", "Common"))

public:
    Settings(QString filePath, QStringList languages, QObject *parent);

    /// Folder of the user's own files of this program, without a separator at its end.
    [[nodiscard]] static QString dataFolder();
    /// The settings file. It stands beside the data folder, not in it, and its name begins with the folder's.
    [[nodiscard]] static QString defaultFilePath() { return dataFolder() + "Settings.xml"; }
    /// The languages that the program speaks, as locale names.
    [[nodiscard]] static QStringList supportedLanguages() { return {"ru_RU", "en_US"}; }

    /// Start the program with the user's session.
    VT_PROPERTY(bool, AutoRun, true)
    Q_CLASSINFO("AutoRunDisplayName", QT_TRANSLATE_NOOP("Generic", "AutoRun"))
    Q_CLASSINFO("AutoRunCategory", "Common")
    Q_CLASSINFO("AutoRunEditable", "true")

    /// Folder that the settings page shows for record files; records go to the folder Ocela in the documents.
    VT_PROPERTY(QString, RecordsPath, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
    Q_CLASSINFO("RecordsPathDisplayName", QT_TRANSLATE_NOOP("Generic", "RecordsPath"))
    Q_CLASSINFO("RecordsPathCategory", "Common")
    Q_CLASSINFO("RecordsPathEditable", "true")
    Q_CLASSINFO("RecordsPathReadOnly", "true")

    /// Start with the tray icon only.
    VT_PROPERTY(bool, HideWindowOnStart, false)
    Q_CLASSINFO("HideWindowOnStartDisplayName", QT_TRANSLATE_NOOP("Generic", "HideWindowOnStart"))
    Q_CLASSINFO("HideWindowOnStartCategory", "Common")
    Q_CLASSINFO("HideWindowOnStartEditable", "true")

    /// `EyetrackerInterface::name()` of the tracker chosen last.
    VT_PROPERTY(QString, SelectedTracker, "")
    Q_CLASSINFO("SelectedTrackerEditable", "true")
    Q_CLASSINFO("SelectedTrackerNotVisible", "true")
};
