#include "app/main_window.h"
#include "support/test_main.h"
#include "toolkit/platform/xcb_pointers.h"

#include <QAction>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <memory>

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

}  // namespace

/// Tests the main window and its tray icon on a display with a system tray.
class TestMainWindowTray : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void click_on_the_icon_toggles_the_window();
    void starts_hidden_and_quit_hides_a_visible_window();
    void quit_exits_when_the_window_is_hidden();

private:
    [[nodiscard]] QSystemTrayIcon &icon() const { return *window_->findChild<QSystemTrayIcon *>(); }
    /// 0 shows the window, 1 quits.
    [[nodiscard]] QAction &action(int index) const { return *icon().contextMenu()->actions().at(index); }

    XcbConnection tray_;
    std::unique_ptr<MainWindow> window_;
};

void TestMainWindowTray::initTestCase() {
    Q_INIT_RESOURCE(ocela);
    QCoreApplication::setOrganizationName("Velmora");
    QCoreApplication::setApplicationName("Ocela");
    tray_ = startSystemTray();
    QVERIFY(QSystemTrayIcon::isSystemTrayAvailable());
    Settings settings(Settings::defaultFilePath(), Settings::supportedLanguages(), nullptr);
    settings.setHideWindowOnStart(true);
}

void TestMainWindowTray::init() {
    window_.reset();
    window_ = std::make_unique<MainWindow>();
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
    action(0).trigger();
    QVERIFY(window_->isVisible());
    action(1).trigger();
    QVERIFY(!window_->isVisible());
    QVERIFY(!window_->isClosed());
}

void TestMainWindowTray::quit_exits_when_the_window_is_hidden() {
    QTimer::singleShot(0, &action(1), &QAction::trigger);
    QTimer::singleShot(20000, window_.get(), [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QVERIFY(window_->isClosed());
}

OCELA_TEST(TestMainWindowTray)
#include "tst_main_window_tray_linux.moc"
