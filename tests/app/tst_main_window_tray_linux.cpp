#include "api/ocela_http_exchange.h"
#include "app/main_window.h"
#include "app/tray_icon.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"
#include "toolkit/platform/xcb_pointers.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

namespace {

/// Makes a connection to the X11 display that owns the tray selection of the first screen.
XcbConnection startSystemTray() {
    XcbConnection connection(xcb_connect(nullptr, nullptr));
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
    const xcb_window_t window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), 0, window, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    const QByteArray name("_NET_SYSTEM_TRAY_S0");
    const auto atomCookie =
        xcb_intern_atom(connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection.get(), atomCookie, nullptr));
    const auto cookie = xcb_set_selection_owner_checked(connection.get(), window, atom->atom, XCB_CURRENT_TIME);
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(connection.get(), cookie));
    return connection;
}

/// Returns the texts of the message that the icon shows, or an empty text.
QString message() {
    QStringList texts;
    for (const QWidget *widget : QApplication::topLevelWidgets()) {
        if (!widget->isVisible() || !widget->inherits("QBalloonTip"))
            continue;
        for (const QLabel *label : widget->findChildren<QLabel *>())
            texts << label->text();
    }
    texts.removeAll(QString());
    return texts.join('|');
}

/// Replaces the shown message.
void clearMessage(QSystemTrayIcon &icon) {
    icon.showMessage(QString(), QString());
}

bool isMarked(const QSystemTrayIcon &icon) {
    const QColor corner = icon.icon().pixmap(32).toImage().pixelColor(23, 23);
    return corner.red() > 200 && corner.green() < 80 && corner.blue() < 80;
}

}  // namespace

/// Tests the main window and its tray icon on a display with a system tray.
class TestMainWindowTray : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void click_on_the_icon_toggles_the_window();
    void starts_hidden_and_quit_hides_a_visible_window();
    void minimised_window_is_shown();
    void hiding_is_explained_once();
    void messages_tell_about_recordings_while_the_window_is_hidden();
    void recording_without_samples_is_told_once();
    void tray_may_appear_after_a_hidden_start();
    void port_of_another_program_is_shown();
    void quit_exits_when_the_window_is_hidden();

private:
    [[nodiscard]] QSystemTrayIcon &icon() const { return *trayIcon_->findChild<QSystemTrayIcon *>(); }
    /// Returns null if the menu has no such action.
    [[nodiscard]] QAction *action(const QString &text) const;

    std::optional<XcbConnection> tray_;
    TrayIcon *trayIcon_ = nullptr;
    std::unique_ptr<MainWindow> window_;
};

void TestMainWindowTray::initTestCase() {
    Q_INIT_RESOURCE(ocela);
    QCoreApplication::setOrganizationName("Velmora");
    QCoreApplication::setApplicationName("Ocela");
    tray_.emplace(startSystemTray());
    QVERIFY(QSystemTrayIcon::isSystemTrayAvailable());
    Settings settings(Settings::defaultFilePath(), Settings::supportedLanguages(), nullptr);
    settings.setLanguage("en_US");
    settings.setHideWindowOnStart(true);
}

void TestMainWindowTray::init() {
    window_.reset();
    window_ = std::make_unique<MainWindow>();
    trayIcon_ = window_->findChild<TrayIcon *>();
}

QAction *TestMainWindowTray::action(const QString &text) const {
    QAction *found = nullptr;
    for (QAction *action : icon().contextMenu()->actions())
        found = action->text() == text ? action : found;
    return found;
}

void TestMainWindowTray::click_on_the_icon_toggles_the_window() {
    for (const bool visible : {true, false}) {
        Q_EMIT icon().activated(QSystemTrayIcon::Trigger);
        QCOMPARE(window_->isVisible(), visible);
        Q_EMIT icon().activated(QSystemTrayIcon::DoubleClick);
        QCOMPARE(window_->isVisible(), visible);
    }
}

void TestMainWindowTray::starts_hidden_and_quit_hides_a_visible_window() {
    QVERIFY(!window_->isVisible());
    action("Show window")->trigger();
    QVERIFY(window_->isVisible());
    action("Quit")->trigger();
    QVERIFY(!window_->isVisible());
    QVERIFY(!window_->isClosed());
}

void TestMainWindowTray::minimised_window_is_shown() {
    const std::function<void()> ways[] = {[this] { Q_EMIT icon().activated(QSystemTrayIcon::Trigger); },
                                          [this] { action("Show window")->trigger(); }};
    for (const auto &show : ways) {
        window_->showMinimized();
        QVERIFY(window_->isMinimized());
        show();
        QVERIFY(window_->isVisible() && !window_->isMinimized());
    }
}

void TestMainWindowTray::hiding_is_explained_once() {
    window_->findChild<Settings *>()->resetHidingExplained();
    for (const bool explained : {true, false}) {
        init();  // also not after a restart
        window_->show();
        window_->close();
        QVERIFY(!window_->isVisible());
        QCOMPARE(message().contains("To end it, choose Quit"), explained);
        clearMessage(icon());
    }
}

void TestMainWindowTray::messages_tell_about_recordings_while_the_window_is_hidden() {
    FakeTracker tracker;
    const QTemporaryDir folder;
    trayIcon_->addTracker(&tracker);
    for (const bool hidden : {true, false}) {
        const auto shows = [&](const QString &text) {
            const QString shown = message();
            clearMessage(icon());
            return hidden ? shown.contains(text) : shown.isEmpty();
        };
        window_->setVisible(!hidden);
        clearMessage(icon());
        QVERIFY(!isMarked(icon()));
        tracker.setConnected(true);
        tracker.startRecord(folder.filePath("P01.csv"));
        QVERIFY(isMarked(icon()));
        QCOMPARE(icon().toolTip(), QString("Eye Tracker Service\nRecording: fake"));
        tracker.setConnected(false);
        QVERIFY2(shows("Connection lost|fake is recording"), qPrintable(message()));
        tracker.stopRecord();
        QVERIFY2(shows("Recording saved|Saved P01.csv, 0 samples, 00:00"), qPrintable(message()));
        QVERIFY(!isMarked(icon()));
        trayIcon_->showRecovered(folder.filePath("P01_recovered.csv"));
        // The first messages wait until the icon has its place.
        QTRY_COMPARE(message(), hidden ? QString("Interrupted recording recovered|P01_recovered.csv") : QString());
    }
}

void TestMainWindowTray::recording_without_samples_is_told_once() {
    FakeTracker tracker;
    const QTemporaryDir folder;
    trayIcon_->addTracker(&tracker);
    window_->hide();
    clearMessage(icon());
    tracker.setConnected(true);
    tracker.startRecord(folder.filePath("P02.csv"));
    tracker.addSample({});
    // This device does not report the loss.
    QTRY_VERIFY(message().contains("No samples|fake is recording, but sends no samples. Open"));
    QVERIFY(tracker.isConnected());
    clearMessage(icon());
    tracker.setConnected(false);
    QCOMPARE(message(), QString());
    tracker.addSample({});
    tracker.setConnected(true);
    tracker.setConnected(false);
    QVERIFY2(message().contains("Connection lost"), qPrintable(message()));
    tracker.discardRecord();
}

void TestMainWindowTray::tray_may_appear_after_a_hidden_start() {
    window_.reset();
    tray_.reset();
    QTRY_VERIFY(!QSystemTrayIcon::isSystemTrayAvailable());
    QWidget window;
    const OcelaHTTPExchange api(nullptr);
    TrayIcon trayIcon(&window, api);
    trayIcon.startHidden();
    trayIcon.showRecovered("late.csv");
    QCOMPARE(message(), QString());
    tray_.emplace(startSystemTray());
    QTRY_VERIFY(message().contains("late.csv"));
    QVERIFY(!window.isVisible());
}

void TestMainWindowTray::port_of_another_program_is_shown() {
    window_.reset();
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, OcelaHTTPExchange::port));
    init();
    const QString problem = "Port 3735 is used by another program";
    QTRY_VERIFY2(message().contains(problem), qPrintable(message()));
    QCOMPARE(icon().toolTip(), "Eye Tracker Service\n" + problem);
    QVERIFY(!action("Open dashboard (" + problem + ")")->isEnabled());
}

void TestMainWindowTray::quit_exits_when_the_window_is_hidden() {
    QTimer::singleShot(0, action("Quit"), &QAction::trigger);
    QTimer::singleShot(20000, window_.get(), [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QVERIFY(window_->isClosed());
}

OCELA_TEST(TestMainWindowTray)
#include "tst_main_window_tray_linux.moc"
