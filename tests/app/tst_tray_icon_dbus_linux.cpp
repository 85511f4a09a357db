#include "api/ocela_http_exchange.h"
#include "app/tray_icon.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QDBusConnection>
#include <QTemporaryDir>
#include <QThread>
#include <QVariantMap>
#include <QWidget>
#include <atomic>

/// A StatusNotifier tray on the session bus.
class FakeWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

public:
    [[nodiscard]] bool hasHost() const { return hasHost_; }
    void addHost() { hasHost_ = true; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service) { Q_EMIT itemRegistered(service); }

Q_SIGNALS:
    void itemRegistered(const QString &service);

private:
    std::atomic<bool> hasHost_ = false;
};

/// The notifications of the desktop, which a StatusNotifier tray shows as messages.
class FakeNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public Q_SLOTS:
    uint Notify(const QString & /*application*/, uint /*replacedId*/, const QString & /*icon*/, const QString &title,
                const QString & /*text*/, const QStringList & /*actions*/, const QVariantMap & /*hints*/,
                int /*timeoutMs*/) {
        Q_EMIT shown(title);
        return 1;
    }

Q_SIGNALS:
    void shown(const QString &title);
};

/// Tests the tray icon on a desktop without an X11 tray. Qt keeps its first answer whether there is a D-Bus tray, so
/// this executable has one test.
class TestTrayIconDBus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tray_may_appear_after_a_hidden_start();
    void cleanupTestCase();

private:
    /// Runs the fakes, because Qt waits for their answers in the thread of the icon.
    QThread thread_;
    FakeWatcher watcher_;
    FakeNotifications notifications_;
    QStringList items_;
    QStringList messages_;
};

void TestTrayIconDBus::initTestCase() {
    Q_INIT_RESOURCE(ocela);
    connect(&watcher_, &FakeWatcher::itemRegistered, this, [this](const QString &service) { items_ << service; });
    connect(&notifications_, &FakeNotifications::shown, this, [this](const QString &title) { messages_ << title; });
    watcher_.moveToThread(&thread_);
    notifications_.moveToThread(&thread_);
    thread_.start();
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "fakes");
    QVERIFY2(bus.registerObject("/StatusNotifierWatcher", &watcher_,
                                QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties),
             "This test needs a D-Bus session bus, for example of dbus-run-session.");
    QVERIFY(bus.registerObject("/org/freedesktop/Notifications", &notifications_, QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService("org.freedesktop.Notifications"));
}

void TestTrayIconDBus::cleanupTestCase() {
    QDBusConnection::disconnectFromBus("fakes");
    thread_.quit();
    thread_.wait();
}

void TestTrayIconDBus::tray_may_appear_after_a_hidden_start() {
    constexpr int severalLooksMs = 600;
    QWidget window;
    const OcelaHTTPExchange api(nullptr);
    FakeTracker tracker;
    const QTemporaryDir folder;
    TrayIcon trayIcon(&window, api);
    trayIcon.addTracker(&tracker);
    trayIcon.startHidden();
    trayIcon.showRecovered("P01.csv");
    tracker.setConnected(true);
    tracker.startRecord(folder.filePath("P02.csv"));
    tracker.stopRecord();
    QTest::qWait(severalLooksMs);
    QVERIFY(QDBusConnection("fakes").registerService("org.kde.StatusNotifierWatcher"));
    QTest::qWait(severalLooksMs);
    QVERIFY(!trayIcon.isAvailable() && items_.isEmpty());

    watcher_.addHost();
    QTRY_COMPARE(items_.size(), 1);
    QVERIFY(trayIcon.isAvailable() && !window.isVisible());
    QTRY_COMPARE(messages_, QStringList({"Interrupted recording recovered", "Recording saved"}));
    QVERIFY(!window.isVisible());
}

OCELA_TEST(TestTrayIconDBus)
#include "tst_tray_icon_dbus_linux.moc"
