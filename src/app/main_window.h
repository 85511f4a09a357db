#pragma once

#include "app/settings.h"

#include <QMainWindow>
#include <QSystemTrayIcon>
#include <memory>
#include <vector>

class BaseEyetrackerWidget;
class EyetrackerInterface;
class NewVersionButton;
class OcelaHTTPExchange;
class QComboBox;
class QGridLayout;
class QMenu;
class QStackedWidget;
class QTabWidget;

/// The program's window, and the owner of everything that lives for the whole run: settings, trackers, the
/// HTTP API and the widgets bound to the selected tracker, and the tray icon. GUI thread only.
///
/// Exactly one tracker is started at a time: the selected one. Selecting another stops the old one, starts
/// the new one and stores the choice. Closing hides the window into the tray while HideWindowOnStart is set,
/// and ends the program otherwise.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Whether the user has ended the program; possible even before the event loop runs.
    [[nodiscard]] bool isClosed() const { return closed_; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Tracker {
        EyetrackerInterface *tracker;
        QWidget *view;  ///< the camera view; null when the tracker has none
    };

    void buildSettings();
    void buildTrackers();
    [[nodiscard]] QWidget *buildMainPage();
    [[nodiscard]] QWidget *buildSettingsPage();
    void buildPages();
    void buildTray();
    void selectFirstTracker();

    void addTracker(EyetrackerInterface *tracker);
    void trackerIndexChanged(int index);
    void showView(int index);
    [[nodiscard]] bool hidesIntoTray() const;
    void shutDown();
    void toggleVisible();
    void retranslate();

    QString dataFolder_;
    Settings *settings_ = nullptr;
    std::vector<Tracker> trackers_;
    EyetrackerInterface *currentTracker_ = nullptr;
    bool closed_ = false;
    /// Ends before the trackers, which are children of the window: its threads read them.
    std::unique_ptr<OcelaHTTPExchange> exchange_;
    std::vector<BaseEyetrackerWidget *> trackerWidgets_;

    QTabWidget *pages_ = nullptr;
    QTabWidget *settingsTabs_ = nullptr;
    NewVersionButton *newVersionButton_ = nullptr;
    QGridLayout *mainGrid_ = nullptr;
    QComboBox *trackerCombo_ = nullptr;
    QStackedWidget *viewStack_ = nullptr;
    QSystemTrayIcon *trayIcon_ = nullptr;
    QMenu *trayMenu_ = nullptr;
    QAction *showAction_ = nullptr;
    QAction *quitAction_ = nullptr;
};
