#include "api/ocela_http_exchange.h"
#include "app/main_window.h"
#include "app/settings_notice.h"
#include "app/startup.h"
#include "core/eyetracker_interface.h"
#include "support/file_content.h"
#include "support/gazepoint_wire.h"
#include "support/test_main.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QSystemTrayIcon>
#include <QTabWidget>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>
#include <cerrno>
#include <memory>

namespace {

Settings &settingsOf(MainWindow &window) {
    return *window.findChild<Settings *>();
}

QComboBox &trackersOf(MainWindow &window) {
    return *window.findChild<QComboBox *>("trackers");
}

QString statusOf(MainWindow &window) {
    return window.findChild<QLabel *>("trackerStatus")->text();
}

/// Returns the texts and the tool tips of the visible widgets.
QStringList shownOn(const QWidget &page) {
    QStringList texts;
    for (const QWidget *widget : page.findChildren<QWidget *>()) {
        if (widget->isVisibleTo(&page))
            texts << widget->property("text").toString() << widget->toolTip();
    }
    return texts;
}

void click(const QWidget &page, const QString &text) {
    for (QPushButton *button : page.findChildren<QPushButton *>()) {
        if (button->text() == text)
            button->click();
    }
}

/// Accepts the next message box, and stores its title and text.
void acceptBox(QStringList &texts) {
    QTimer::singleShot(0, [&texts] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        QVERIFY(box);
        texts << box->windowTitle() << box->text();
        box->accept();
    });
}

/// Records the class names of the shown top-level widgets.
class ShownWindows : public QObject {
public:
    ShownWindows() { QCoreApplication::instance()->installEventFilter(this); }
    bool eventFilter(QObject *object, QEvent *event) override {
        const auto *widget = event->type() == QEvent::Show ? qobject_cast<QWidget *>(object) : nullptr;
        if (widget != nullptr && widget->isWindow())
            names << widget->metaObject()->className();
        return false;
    }

    QStringList names;
};

void store(const QByteArray &tracker, const QByteArray &more = QByteArray()) {
    QVERIFY(writeFile(Settings::defaultFilePath(),
                      "<settings><property name=\"Language\">en_US</property><property name=\"SelectedTracker\">" +
                          tracker + "</property>" + more + "</settings>"));
}

}  // namespace

/// Tests the main window in the process of the test. The system tests run the whole program.
class TestMainWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { store("eyetech"); }

    void first_tracker_is_selected_and_stored_for_an_unknown_name();
    void missing_vendor_library_shows_an_error_and_keeps_the_selection();
    void selected_tracker_is_shown_until_another_is_selected_or_the_window_is_closed();
    void changing_the_language_changes_all_texts_immediately();
    void f9_sets_a_marker_whatever_has_the_focus();
    void wheel_over_a_list_changes_nothing();
    void failing_autorun_is_shown_and_switched_back();
    void access_settings_apply_immediately();
    void missing_lsl_library_is_shown_on_every_page();
    void unread_settings_are_explained_inside_the_window();

private:
    const QTemporaryDir folder_;
};

void TestMainWindow::initTestCase() {
    Q_INIT_RESOURCE(ocela);
    QStandardPaths::setTestModeEnabled(true);  // without it, Windows would use the user's real folder
    QCoreApplication::setOrganizationName("Velmora");
    QCoreApplication::setApplicationName("Ocela");
    QVERIFY(Settings::defaultFilePath().endsWith("/Velmora/OcelaSettings.xml"));
    QVERIFY(QDir().mkpath(QFileInfo(Settings::defaultFilePath()).path()));
}

void TestMainWindow::first_tracker_is_selected_and_stored_for_an_unknown_name() {
    store("unknown tracker");
    MainWindow window;
    QVERIFY(window.isVisible());
    QVERIFY(QDir(Settings::dataFolder()).exists());
    QCOMPARE(trackersOf(window).currentIndex(), 0);
    QVERIFY(readFile(Settings::defaultFilePath()).contains("eyetech"));
    const QRegularExpression noLibrary("^Not connected: library (lib)?QuickLink2\\.(so|dll) not found$");
    QVERIFY2(noLibrary.match(statusOf(window)).hasMatch(), qPrintable(statusOf(window)));
    trackersOf(window).setCurrentText("gazepoint");
    QTRY_COMPARE(statusOf(window), QString("Not connected: server not running at 127.0.0.1:4242"));
}

void TestMainWindow::missing_vendor_library_shows_an_error_and_keeps_the_selection() {
    store("aSee Pro");
    QStringList box;
    acceptBox(box);
    MainWindow window;
    QCOMPARE(box, QStringList({"others error!!!", "code: -1"}));
    QCOMPARE(trackersOf(window).currentText(), QString("aSee Pro"));
    const QRegularExpression noLibrary("^Not connected: library (lib)?aSeeX\\.(so|dll) not found$");
    QVERIFY2(noLibrary.match(statusOf(window)).hasMatch(), qPrintable(statusOf(window)));
    QVERIFY(readFile(Settings::defaultFilePath()).contains("aSee Pro"));
}

void TestMainWindow::selected_tracker_is_shown_until_another_is_selected_or_the_window_is_closed() {
    QTcpServer server;
    startup::createRecordsFolder();
    QVERIFY(server.listen(QHostAddress::LocalHost, 4242));
    MainWindow window;
    const QWidget &page = *trackersOf(window).parentWidget();
    std::unique_ptr<QTcpSocket> peer;
    const auto connects = [&] {
        trackersOf(window).setCurrentText("gazepoint");
        const bool connected = server.waitForNewConnection(test_support::longWaitMs);
        peer.reset(server.nextPendingConnection());
        return connected &&
               QTest::qWaitFor([&] { return shownOn(page).contains("Connected"); }, test_support::longWaitMs);
    };
    const auto isStopped = [&] { return peer->state() == QTcpSocket::UnconnectedState; };
    QVERIFY(connects());
    peer->write(wire::screenSize);
    const auto showsGaze = [&] {
        peer->write("<REC FPOGX=\"0.5\" />\r\n");
        return shownOn(page).contains("x:  50.0%");
    };
    QVERIFY(QTest::qWaitFor(showsGaze, test_support::longWaitMs));
    click(page, "Calibrate");
    click(page, "Start record");
    QVERIFY(shownOn(page).contains("Stop record"));
    QVERIFY(!trackersOf(window).itemIcon(1).isNull());
    QByteArray received;
    QTRY_VERIFY((received += peer->readAll()).endsWith(wire::calibrate));

    trackersOf(window).setCurrentText("eyetech");
    QTRY_VERIFY(isStopped());
    QVERIFY(shownOn(page).contains("Disconnected") && shownOn(page).contains("Start record"));

    QVERIFY(connects());
    click(page, "Stop record");
    QVERIFY(trackersOf(window).itemIcon(1).isNull());
    QTimer::singleShot(0, &window, &MainWindow::close);
    QCOMPARE(QCoreApplication::exec(), 0);
    QTRY_VERIFY(isStopped());
    QVERIFY(window.isClosed());
}

void TestMainWindow::changing_the_language_changes_all_texts_immediately() {
    MainWindow window;
    auto *pages = qobject_cast<QTabWidget *>(window.centralWidget());
    const auto texts = [&] {
        QStringList all{pages->tabText(0), pages->tabText(1)};
        for (const QPushButton *button : window.findChildren<QPushButton *>())
            all << button->text();
        for (const QLabel *label : window.findChildren<QLabel *>("eyeH1"))
            all << label->text();
        all << statusOf(window);
        for (const QAction *action : window.findChild<QSystemTrayIcon *>()->contextMenu()->actions())
            all << action->text();
        for (const QWidget *widget : pages->widget(0)->findChildren<QWidget *>())
            all << widget->toolTip();
        all.removeAll(QString());
        return all;
    };
    const QStringList english = texts();
    QCOMPARE(pages->tabText(0), QString("Main"));

    settingsOf(window).setLanguage("ru_RU");
    QVERIFY(readFile(Settings::defaultFilePath()).contains("ru_RU"));
    QTRY_VERIFY(texts() != english);
    const QStringList russian = texts();
    for (int i = 0; i < english.size(); ++i)
        QVERIFY2(russian[i] != english[i], qPrintable(english[i]));

    settingsOf(window).setLanguage("en_US");
    QTRY_COMPARE(texts(), english);
}

void TestMainWindow::f9_sets_a_marker_whatever_has_the_focus() {
    MainWindow window;
    const QString file = folder_.filePath("r.csv");
    EyetrackerInterface *tracker = window.findChild<EyetrackerInterface *>();
    tracker->startRecord(file);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    int count = 0;
    const auto pages = window.findChild<QTabWidget *>();
    for (int page = 0; page < pages->count(); ++page) {
        pages->setCurrentIndex(page);
        for (QWidget *widget : pages->widget(page)->findChildren<QWidget *>()) {
            if (!widget->isVisible() || !widget->isEnabled() || widget->focusPolicy() == Qt::NoFocus)
                continue;
            widget->setFocus();
            QTest::keyClick(window.windowHandle(), Qt::Key_F9);
            QCOMPARE(tracker->runningRecording()->markerCount, ++count);
        }
    }
    QVERIFY(count > 5);
    const auto *status = window.findChild<QLabel *>("recordingStatus");
    QTRY_VERIFY2(status->text().endsWith(QString("; Marker %1 set").arg(count)), qPrintable(status->text()));
    tracker->stopRecord();
    QCOMPARE(readFile(folder_.filePath("r_events.csv")).count(",0,F9,"), count);
}

void TestMainWindow::wheel_over_a_list_changes_nothing() {
    MainWindow window;
    for (QComboBox *list : trackersOf(window).parentWidget()->findChildren<QComboBox *>()) {
        list->addItem("another entry");
        list->setFocus();
        const QPointF centre = list->rect().center();
        const QPointF global = list->mapToGlobal(list->rect().center());
        QWheelEvent turn(centre, global, QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                         false);
        QCoreApplication::sendEvent(list, &turn);
        QCOMPARE(list->currentIndex(), 0);
    }
}

void TestMainWindow::failing_autorun_is_shown_and_switched_back() {
    MainWindow window;  // loading the settings must not change the autostart list, so there is no warning
    settingsOf(window).setLanguage("ru_RU");
    settingsOf(window).setAutoRun(false);
    // The program is not in the folder of this test, so adding it fails with a warning.
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot add to autostart .*Ocela"));
    settingsOf(window).setAutoRun(true);
    QStringList box;
    acceptBox(box);
    QTRY_VERIFY(!box.isEmpty());
    const QString text = box.value(1);
    const QString program = QDir::toNativeSeparators(QCoreApplication::applicationDirPath() + "/Ocela");
    QVERIFY2(text.startsWith("Не удалось изменить «Запускать вместе с системой»:\n" + program), qPrintable(text));
    QVERIFY2(text.endsWith(": " + qt_error_string(ENOENT)), qPrintable(text));
    QVERIFY(!settingsOf(window).getAutoRun());
    QVERIFY(readFile(Settings::defaultFilePath()).contains("\"AutoRun\">false"));
}

void TestMainWindow::access_settings_apply_immediately() {
    store("gazepoint", "<property name=\"AllowOtherComputers\">false</property>");
    MainWindow window;
    // Only a server that listens on all interfaces accepts connections to this address.
    const auto acceptsOthers = [] {
        QTcpSocket client;
        client.connectToHost("127.0.0.2", OcelaHTTPExchange::port);
        return client.waitForConnected(test_support::longWaitMs);
    };
    const auto rights = [] { return OcelaHTTPExchange::instance().access().rights(); };
    auto *button = window.findChild<QToolButton *>("access");
    QVERIFY(!acceptsOthers());
    QCOMPARE(button->text(), QString("Only this computer can reach Ocela"));
    settingsOf(window).setAllowOtherComputers(true);
    QVERIFY(acceptsOthers());
    QCOMPARE(button->text(), QString("Other computers can reach Ocela"));

    const AccessRights before = rights();
    QVERIFY(before.foreignPages && before.anyFile && before.allowedOrigins.isEmpty());
    settingsOf(window).setAllowForeignPages(false);
    settingsOf(window).setServeAnyFile(false);
    settingsOf(window).setRecordsPath(QDir::tempPath());
    settingsOf(window).setAllowedOrigins("lab.example https://lab.example");
    const AccessRights after = rights();
    QVERIFY(!after.foreignPages && !after.anyFile);
    QCOMPARE(after.allowedOrigins, QStringList("https://lab.example"));
    QCOMPARE(after.recordsFolder, QDir::tempPath());

    button->click();
    const QWidget &page = *window.centralWidget();
    const auto *problem = page.findChild<QLabel *>("originProblem");
    QVERIFY(page.findChild<QWidget *>("AllowedOrigins")->isVisible() && problem->isVisible());
    QVERIFY2(problem->text().contains("ignored: lab.example. "), qPrintable(problem->text()));
    settingsOf(window).setAllowedOrigins(QString());
    QVERIFY(!problem->isVisible());
}

void TestMainWindow::missing_lsl_library_is_shown_on_every_page() {
    MainWindow window;
    window.show();
    const auto *problem = window.findChild<QLabel *>("problem");
    QVERIFY(!problem->isVisible());
    settingsOf(window).setLslStreams(true);
    QTRY_VERIFY(problem->isVisible());
    QVERIFY2(problem->text().startsWith("LSL streams need the library liblsl"), qPrintable(problem->text()));
    settingsOf(window).setLslStreams(false);
    QTRY_VERIFY(!problem->isVisible());
}

void TestMainWindow::unread_settings_are_explained_inside_the_window() {
    QVERIFY(QFile::remove(Settings::defaultFilePath()));
    QVERIFY(QDir().mkdir(Settings::defaultFilePath()));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot be read: it is not a regular file;"));
    const ShownWindows shown;
    MainWindow window;
    QVERIFY(QDir().rmdir(Settings::defaultFilePath()));
    QVERIFY(shown.names.contains("MainWindow") && !shown.names.contains("SettingsNotice"));
    settingsOf(window).setLanguage("ru_RU");
    const auto *notice = window.findChild<SettingsNotice *>();
    QTRY_VERIFY2(notice->text().contains("OcelaSettings.xml: это не обычный файл"), qPrintable(notice->text()));
}

OCELA_TEST(TestMainWindow)
#include "tst_main_window.moc"
