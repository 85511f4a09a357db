#pragma once

#include "app/settings.h"

#include <QMainWindow>
#include <memory>
#include <vector>

class EyetrackerInterface;
struct AccessRights;
class JournalRecovery;
class LslStreams;
class MainPage;
class Markers;
class OcelaHTTPExchange;
class QTabWidget;
class RecordingKeeper;
class SettingsPage;
class StatusBar;
class TrayIcon;

/// The main window. Owns the settings, the trackers, the markers, the HTTP API, the LSL streams, the widgets for the
/// selected tracker, and the tray icon. While it has the focus, F9 sets a marker. GUI thread.
///
/// Only the selected tracker is started. Selecting another tracker stops the old one, starts the new one and stores the
/// selection. While HideWindowOnStart is set, closing the visible window hides it to the tray. Otherwise closing quits
/// the program, after a question if a recording is running. At the end of the desktop session, running recordings are
/// saved without a question.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Returns whether the window was closed, which may happen before the event loop runs.
    [[nodiscard]] bool isClosed() const { return closed_; }

    /// Opens the dashboard in the browser. If it is not served, shows the window, whose status bar says why.
    void openDashboard();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void buildSettings();
    void buildTrackers();
    void buildMarkers();
    void buildExchange();
    void buildStreams();
    void buildPages();
    void buildStatusBar();
    void buildTray();
    void startRecovery();
    void selectInitialTracker();

    void addTracker(EyetrackerInterface *tracker);
    void trackerIndexChanged(int index);
    void growTo(QSize wanted);
    void applyRecordsPath();
    void applyAccess();
    [[nodiscard]] AccessRights accessRights() const;
    void showReachability();
    void showProblems();
    void changeAutorun(bool on);
    [[nodiscard]] bool hidesToTray() const;
    void hideToTray();
    void shutDown();
    void retranslate();

    QString dataFolder_;
    Settings *settings_ = nullptr;
    std::vector<EyetrackerInterface *> trackers_;
    Markers *markers_ = nullptr;
    RecordingKeeper *recordings_ = nullptr;
    EyetrackerInterface *currentTracker_ = nullptr;
    bool isRevertingAutorun_ = false;
    bool closed_ = false;
    /// Destroyed before the trackers, which are children of the window, because their threads read from them.
    std::unique_ptr<LslStreams> streams_;
    std::unique_ptr<OcelaHTTPExchange> exchange_;
    std::unique_ptr<JournalRecovery> journalRecovery_;

    QTabWidget *pages_ = nullptr;
    MainPage *mainPage_ = nullptr;
    SettingsPage *settingsPage_ = nullptr;
    StatusBar *status_ = nullptr;
    TrayIcon *tray_ = nullptr;
};
