#pragma once

#include <QDeadlineTimer>
#include <QIcon>
#include <QLocale>
#include <QObject>
#include <QStringList>
#include <QSystemTrayIcon>
#include <QTimer>
#include <chrono>
#include <list>
#include <memory>
#include <optional>
#include <vector>

class EyetrackerInterface;
class OcelaHTTPExchange;
class QAction;
class QMenu;
class QWidget;

/// The tray icon of the main window, with its menu. The main window owns it. GUI thread.
///
/// A red mark and the tool tip show that a tracker is recording. While the window is hidden or minimised, messages tell
/// the user that a recording gets no samples, and that a recording was saved, not saved or recovered.
class TrayIcon : public QObject {
    Q_OBJECT

public:
    /// `window` and `api` are not owned and must outlive the icon. Call show() or startHidden() next.
    TrayIcon(QWidget *window, const OcelaHTTPExchange &api);
    ~TrayIcon() override;

    /// Shows the recordings of a tracker, which is not owned. A message tells that a recording gets no samples: when
    /// the connection is lost, or after 5 s without a sample, because not every device reports a loss. The message is
    /// not repeated before another sample has arrived.
    void addTracker(EyetrackerInterface *tracker);

    /// Sets all texts in the language of the user interface. Numbers have the format of `locale`.
    void retranslate(const QLocale &locale);

    /// Shows the icon if there is a tray.
    void show();

    /// Waits up to 10 s for a tray while the window is hidden, because a desktop session starts its programs in any
    /// order. Shows the icon then. If there is no tray, also shows the window, because the user could not show it.
    void startHidden();

    /// Returns whether the user can show a hidden window with the icon.
    [[nodiscard]] bool isAvailable() const;

    /// Tells that a recording of an earlier run of the program was recovered. `path` is its record file.
    void showRecovered(const QString &path);

    /// Tells that the program runs without its window, and how to end it. Returns false if this tray cannot show
    /// messages.
    [[nodiscard]] bool explainHiding();

private:
    using Clock = std::chrono::steady_clock;

    struct Observed {
        EyetrackerInterface *tracker = nullptr;
        Clock::time_point recordStart;
        std::optional<quint64> toldAfter;  ///< the newest sample at the last message of this recording
    };

    struct Message {
        QString title;
        QString text;
        QSystemTrayIcon::MessageIcon kind;
    };

    void buildMenu();
    void createIcon();
    void toggleWindow();
    void showWindow();
    [[nodiscard]] bool isWindowShown() const;

    void waitForTray();
    void tellStart();
    void showState();
    [[nodiscard]] QStringList recordingTrackers() const;
    void recordStopped(const EyetrackerInterface &tracker, const QString &path);
    void checkSamples();
    void tellNoSamples(Observed &observed, const QString &title);
    void tellRecovered();
    /// Shows a message unless the user sees the window. Before the icon is shown, keeps the message for tellStart().
    void tell(const QString &title, const QString &text, QSystemTrayIcon::MessageIcon kind);

    QWidget *const window_;
    const OcelaHTTPExchange &api_;
    std::list<Observed> trackers_;  ///< a list, because signal connections refer to its elements
    QLocale locale_;
    QStringList recovered_;         ///< the names of the recovered files
    std::vector<Message> waiting_;  ///< the messages from before the icon was shown

    const QIcon plainIcon_;
    const QIcon recordingIcon_;
    /// Null until there is a tray or the window is shown, because Qt takes a D-Bus tray only if it exists before the
    /// first QSystemTrayIcon.
    QSystemTrayIcon *icon_ = nullptr;
    std::unique_ptr<QMenu> menu_;
    QAction *showAction_ = nullptr;
    QAction *dashboardAction_ = nullptr;
    QAction *quitAction_ = nullptr;

    QTimer samplesTimer_;
    QTimer trayTimer_;  ///< looks for a tray after startHidden()
    QDeadlineTimer trayDeadline_;
    bool isStarting_ = false;  ///< from startHidden() until messages can be shown
};
