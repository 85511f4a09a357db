#pragma once

#include <QDeadlineTimer>
#include <QIcon>
#include <QLocale>
#include <QObject>
#include <QStringList>
#include <QSystemTrayIcon>
#include <QTimer>
#include <memory>
#include <vector>

class EyetrackerInterface;
class OcelaHTTPExchange;
class QAction;
class QMenu;
class QWidget;

/// The tray icon of the main window, with its menu. The main window owns it. GUI thread.
///
/// A red mark and the tool tip tell that a tracker is recording. While the user does not see the window, because it is
/// hidden or minimised, messages tell what the window would tell: a connection was lost during a recording, and a
/// recording was saved, not saved or recovered.
class TrayIcon : public QObject {
    Q_OBJECT

public:
    /// Shows the icon. `window` and `api` are not owned and must outlive the icon.
    TrayIcon(QWidget *window, const OcelaHTTPExchange &api);
    ~TrayIcon() override;

    /// Tells about the recordings of a tracker, which is not owned.
    void addTracker(EyetrackerInterface *tracker);

    /// Sets all texts in the language of the user interface. Numbers have the format of `locale`.
    void retranslate(const QLocale &locale);

    /// Keeps the window hidden as long as a tray may still appear, because desktops start their programs in any order.
    /// Shows the window if there is none after 10 s: there would be no other way to it.
    void startHidden();

    /// Tells that a recording of an earlier run of the program was recovered.
    void showRecovered(const QString &path);

    /// Tells that the program runs without its window, and how to end it. Returns false if this tray cannot show
    /// messages.
    [[nodiscard]] bool explainHiding();

private:
    void buildMenu();
    void toggleWindow();
    void showWindow();
    [[nodiscard]] bool isWindowShown() const;

    void waitForTray();
    void tellStart();
    void showState();
    [[nodiscard]] QStringList recordingTrackers() const;
    void recordStopped(const EyetrackerInterface &tracker, const QString &path);
    void connectionLost(const EyetrackerInterface &tracker);
    void tellRecovered();
    /// Shows a message unless the user sees the window.
    void tell(const QString &title, const QString &text, QSystemTrayIcon::MessageIcon kind);

    QWidget *const window_;
    const OcelaHTTPExchange &api_;
    std::vector<EyetrackerInterface *> trackers_;
    QLocale locale_;
    QStringList recovered_;  ///< the names of the recovered files

    const QIcon plainIcon_;
    const QIcon recordingIcon_;
    QSystemTrayIcon *const icon_;
    std::unique_ptr<QMenu> menu_;
    QAction *showAction_ = nullptr;
    QAction *dashboardAction_ = nullptr;
    QAction *quitAction_ = nullptr;

    QTimer trayTimer_;  ///< looks for a tray after startHidden()
    QDeadlineTimer trayDeadline_;
    bool isStarting_ = false;  ///< from startHidden() until messages can be shown
};
