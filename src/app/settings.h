#pragma once

#include "toolkit/settings/settings_with_language.h"

#include <QStandardPaths>
#include <utility>

/// The settings of the application. The main window owns the object and calls `reload()` before it connects to the
/// signals.
class Settings : public SettingsWithLanguage {
    Q_OBJECT
    Q_CLASSINFO("LanguageCategory", QT_TRANSLATE_NOOP("Generic", "Common"))

public:
    Settings(QString filePath, QStringList languages, QObject *parent)
        : SettingsWithLanguage(std::move(filePath), true, std::move(languages), parent) {}

    /// Returns the folder for the program's data of the current user, without a trailing slash.
    [[nodiscard]] static QString dataFolder() {
        return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    }
    /// Returns the path of the settings file. The file is beside the data folder, and its name begins with the name of
    /// that folder. This is intended.
    [[nodiscard]] static QString defaultFilePath() { return dataFolder() + "Settings.xml"; }
    /// Returns the locale names of the languages of the user interface.
    [[nodiscard]] static QStringList supportedLanguages() { return {"ru_RU", "en_US"}; }

    /// Whether the program starts when the user logs in.
    VT_PROPERTY(bool, AutoRun, true)
    Q_CLASSINFO("AutoRunDisplayName", QT_TRANSLATE_NOOP("Generic", "AutoRun"))
    Q_CLASSINFO("AutoRunCategory", "Common")
    Q_CLASSINFO("AutoRunEditable", "true")

    /// The folder for record files, if it differs from the default. By default they are written to the folder Ocela in
    /// the documents folder.
    VT_PROPERTY(QString, RecordsPath, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
    Q_CLASSINFO("RecordsPathDisplayName", QT_TRANSLATE_NOOP("Generic", "RecordsPath"))
    Q_CLASSINFO("RecordsPathCategory", "Common")
    Q_CLASSINFO("RecordsPathEditable", "true")
    Q_CLASSINFO("RecordsPathIsFolder", "true")

    /// Whether a record file gets companions: a description, and the arrival times of its samples. A change applies to
    /// recordings that start later.
    VT_PROPERTY(bool, DescribeRecordings, true)
    Q_CLASSINFO("DescribeRecordingsDisplayName", QT_TRANSLATE_NOOP("Generic", "DescribeRecordings"))
    Q_CLASSINFO("DescribeRecordingsCategory", "Common")
    Q_CLASSINFO("DescribeRecordingsEditable", "true")

    /// Whether the program starts with only the tray icon. Closing the window then hides it.
    VT_PROPERTY(bool, HideWindowOnStart, false)
    Q_CLASSINFO("HideWindowOnStartDisplayName", QT_TRANSLATE_NOOP("Generic", "HideWindowOnStart"))
    Q_CLASSINFO("HideWindowOnStartCategory", "Common")
    Q_CLASSINFO("HideWindowOnStartEditable", "true")

    /// Who may use the HTTP API. See AccessRights.
    VT_PROPERTY(bool, AllowOtherComputers, true)
    Q_CLASSINFO("AllowOtherComputersDisplayName", QT_TRANSLATE_NOOP("Generic", "AllowOtherComputers"))
    Q_CLASSINFO("AllowOtherComputersCategory", QT_TRANSLATE_NOOP("Generic", "Access"))
    Q_CLASSINFO("AllowOtherComputersEditable", "true")
    Q_CLASSINFO("AllowOtherComputersExplanation",
                QT_TRANSLATE_NOOP("Generic",
                                  "Every computer that can connect to this one can read the gaze and control "
                                  "Ocela. There is no password. If this is off, only programs and web pages "
                                  "on this computer can use Ocela."))

    VT_PROPERTY(bool, AllowForeignPages, true)
    Q_CLASSINFO("AllowForeignPagesDisplayName", QT_TRANSLATE_NOOP("Generic", "AllowForeignPages"))
    Q_CLASSINFO("AllowForeignPagesCategory", "Access")
    Q_CLASSINFO("AllowForeignPagesEditable", "true")
    Q_CLASSINFO("AllowForeignPagesExplanation",
                QT_TRANSLATE_NOOP("Generic",
                                  "Every web page that is open in a browser can read the gaze, control Ocela "
                                  "and fetch files. If this is off, only Ocela's own pages and pages of the "
                                  "allowed web origins can use Ocela."))

    VT_PROPERTY(QString, AllowedOrigins, "")
    Q_CLASSINFO("AllowedOriginsDisplayName", QT_TRANSLATE_NOOP("Generic", "AllowedOrigins"))
    Q_CLASSINFO("AllowedOriginsCategory", "Access")
    Q_CLASSINFO("AllowedOriginsEditable", "true")
    Q_CLASSINFO("AllowedOriginsExplanation",
                QT_TRANSLATE_NOOP("Generic",
                                  "Web sites whose pages can always use Ocela and its API for programs, "
                                  "separated by spaces. For example: https://lab.example "
                                  "http://192.0.2.20:8080"))

    VT_PROPERTY(bool, ServeAnyFile, true)
    Q_CLASSINFO("ServeAnyFileDisplayName", QT_TRANSLATE_NOOP("Generic", "ServeAnyFile"))
    Q_CLASSINFO("ServeAnyFileCategory", "Access")
    Q_CLASSINFO("ServeAnyFileEditable", "true")
    Q_CLASSINFO("ServeAnyFileExplanation",
                QT_TRANSLATE_NOOP("Generic",
                                  "Programs and web pages that use Ocela can read every file that you can "
                                  "read, and save recordings in every folder. If this is off, they can read "
                                  "only the files of Ocela's web pages and the recordings in the records "
                                  "folder, and save recordings only there."))

    /// Whether other programs in the network can receive the gaze and the markers. See LslStreams.
    VT_PROPERTY(bool, LslStreams, false)
    Q_CLASSINFO("LslStreamsDisplayName", QT_TRANSLATE_NOOP("Generic", "LslStreams"))
    Q_CLASSINFO("LslStreamsCategory", QT_TRANSLATE_NOOP("Generic", "LSL"))
    Q_CLASSINFO("LslStreamsEditable", "true")
    Q_CLASSINFO(
        "LslStreamsExplanation",
        QT_TRANSLATE_NOOP("Generic",
                          "Programs of the Lab Streaming Layer, for example LabRecorder, can receive the gaze of "
                          "the selected tracker and the markers. There is no password: every computer in the "
                          "local network can receive them."))

    /// The `EyetrackerInterface::name()` of the tracker that was selected last.
    VT_PROPERTY(QString, SelectedTracker, "")
    Q_CLASSINFO("SelectedTrackerEditable", "true")
    Q_CLASSINFO("SelectedTrackerNotVisible", "true")

    /// The names of record files begin with these texts. See SessionStrip.
    VT_PROPERTY(QString, Participant, "")
    Q_CLASSINFO("ParticipantNotVisible", "true")
    VT_PROPERTY(QString, Session, "")
    Q_CLASSINFO("SessionNotVisible", "true")
    VT_PROPERTY(QString, Task, "")
    Q_CLASSINFO("TaskNotVisible", "true")

    /// Whether the message has been shown that closing the window only hides it. The message is shown once.
    VT_PROPERTY(bool, HidingExplained, false)
    Q_CLASSINFO("HidingExplainedNotVisible", "true")
};
