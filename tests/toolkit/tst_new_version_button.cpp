#include "support/test_main.h"
#include "toolkit/new_version_button.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QLoggingCategory>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryFile>
#include <QTest>

namespace {

/// A button in a shown window, and the file that it asks.
struct Scene {
    explicit Scene(const QByteArray &answer) {
        if (!file.open() || file.write(answer) != answer.size() || !file.flush())
            qFatal("cannot write a temporary file");
        button = new NewVersionButton("Newer", QUrl::fromLocalFile(file.fileName()).toString(), &window);
        window.show();
    }

    bool waitForAnswer() {
        auto *reply = button->findChild<QNetworkReply *>();
        return reply && QSignalSpy(reply, &QNetworkReply::finished).wait();
    }

    QTemporaryFile file;
    QWidget window;
    NewVersionButton *button = nullptr;
};

QByteArray release(const QByteArray &version, const QByteArray &page = "https://example.org/ocela") {
    return R"({"version": ")" + version + R"(", "page": ")" + page + R"("})";
}

}  // namespace

class TestNewVersionButton : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void openPage(const QUrl &url) { opened_ << url; }

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init() { opened_.clear(); }
    void shows_itself_for_a_newer_release_data();
    void shows_itself_for_a_newer_release();
    void asks_only_addresses_that_it_knows();
    void opens_only_web_pages_data();
    void opens_only_web_pages();
    void stops_reading_an_endless_answer();
    void may_go_while_a_request_runs();

private:
    QString versionBefore_;
    QList<QUrl> opened_;
};

void TestNewVersionButton::initTestCase() {
    versionBefore_ = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationVersion("1.3.0");
    QLoggingCategory::setFilterRules("ocela.toolkit.debug=true");
    for (const char *scheme : {"https", "file"})
        QDesktopServices::setUrlHandler(scheme, this, "openPage");
}

void TestNewVersionButton::cleanupTestCase() {
    for (const char *scheme : {"https", "file"})
        QDesktopServices::unsetUrlHandler(scheme);
    QLoggingCategory::setFilterRules({});
    QCoreApplication::setApplicationVersion(versionBefore_);
}

void TestNewVersionButton::shows_itself_for_a_newer_release_data() {
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("shown");
    QTest::newRow("newer") << release("1.4.0") << true;
    QTest::newRow("numbers are compared, not texts") << release("1.10.0") << true;
    QTest::newRow("same") << release("1.3.0") << false;
    QTest::newRow("older") << release("1.2.9") << false;
    QTest::newRow("no JSON") << QByteArray("<html>404</html>") << false;
    QTest::newRow("a number for the version") << QByteArray(R"({"version": 14})") << false;
    QTest::newRow("no number in the version") << release("newest") << false;
    QTest::newRow("too long") << release("1.4.0").leftJustified(64 * 1024 + 1) << false;
}

void TestNewVersionButton::shows_itself_for_a_newer_release() {
    QFETCH(QByteArray, answer);
    Scene scene(answer);
    QVERIFY2(!scene.button->isVisible(), "hidden until the answer is there");
    QVERIFY(scene.waitForAnswer());
    QTEST(scene.button->isVisible(), "shown");
}

void TestNewVersionButton::asks_only_addresses_that_it_knows() {
    for (const char *address : {"ftp://example.org/release.json", "release.json"}) {
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("not an http, https or file address"));
        const NewVersionButton button("Newer", address);
        QVERIFY(!button.findChild<QNetworkReply *>());
    }
}

void TestNewVersionButton::opens_only_web_pages_data() {
    QTest::addColumn<QByteArray>("page");
    QTest::addColumn<QList<QUrl>>("opened");
    QTest::newRow("https") << QByteArray("https://example.org/a") << QList<QUrl>{QUrl("https://example.org/a")};
    QTest::newRow("a local program") << QByteArray("file:///usr/bin/xterm") << QList<QUrl>{};
}

void TestNewVersionButton::opens_only_web_pages() {
    QFETCH(QByteArray, page);
    Scene scene(release("2.0", page));
    QVERIFY(scene.waitForAnswer());
    QVERIFY(scene.button->isVisible());
    QTest::mouseClick(scene.button, Qt::LeftButton);
    QTEST(opened_, "opened");
}

void TestNewVersionButton::stops_reading_an_endless_answer() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    bool hungUp = false;
    connect(&server, &QTcpServer::newConnection, &server, [&] {
        QTcpSocket *client = server.nextPendingConnection();
        connect(client, &QTcpSocket::disconnected, &server, [&] { hungUp = true; });
        const auto feed = [client] { client->write(QByteArray(16 * 1024, ' ')); };
        connect(client, &QTcpSocket::bytesWritten, client, feed);
        client->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n");
    });
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("the answer is too long"));
    const NewVersionButton button("Newer", QString("http://127.0.0.1:%1/").arg(server.serverPort()));
    QTRY_VERIFY_WITH_TIMEOUT(hungUp, 20000);
    QVERIFY(button.isHidden());
}

void TestNewVersionButton::may_go_while_a_request_runs() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    auto button = std::make_unique<NewVersionButton>("Newer", QString("http://127.0.0.1:%1/").arg(server.serverPort()));
    QVERIFY(server.waitForNewConnection(20000) || server.hasPendingConnections());
    QTcpSocket *client = server.nextPendingConnection();
    QTRY_VERIFY(client->bytesAvailable() > 0);
    button.reset();
    QTRY_COMPARE(client->state(), QAbstractSocket::UnconnectedState);
}

OCELA_TEST(TestNewVersionButton)
#include "tst_new_version_button.moc"
