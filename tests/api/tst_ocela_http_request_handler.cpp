#include "api/api_client.h"
#include "api/file_path_rules.h"
#include "api/ocela_http_exchange.h"
#include "api/special_files.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class TestOcelaHttpRequestHandler : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    // Windows cannot remove the current directory.
    void cleanupTestCase() { QVERIFY(QDir::setCurrent(QDir::tempPath())); }

    void files_data();
    void files();
    void changed_file_is_sent_with_its_new_type_data();
    void changed_file_is_sent_with_its_new_type();
    void file_that_cannot_be_sent_is_answered_with_a_document_data();
    void file_that_cannot_be_sent_is_answered_with_a_document();
    void names_of_files_data();
    void names_of_files();
    void preflight_runs_nothing();

private:
    void write(const QString &name, const QByteArray &contents);

    QTemporaryDir folder_;
    OcelaHTTPExchange exchange_{nullptr};
    ApiClient client_;
};

void TestOcelaHttpRequestHandler::initTestCase() {
    QVERIFY(QDir(folder_.path()).mkpath("http/sub"));
    QVERIFY(QDir::setCurrent(folder_.path()));
}

void TestOcelaHttpRequestHandler::write(const QString &name, const QByteArray &contents) {
    QFile file(folder_.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
}

void TestOcelaHttpRequestHandler::files_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("headers");
    const auto row = [](const char *name, const QString &file, const QByteArray &contents, const QByteArray &path,
                        const QByteArray &headers) { QTest::newRow(name) << file << contents << path << headers; };

    row("start page", "http/index.html", "<html></html>", "/",
        "Content-Length: 13\r\nContent-Type: text/html; charset=UTF-8\r\n");
    row("script", "http/a.js", "1", "/a.js", "Content-Length: 1\r\nContent-Type: text/javascript; charset=UTF-8\r\n");
    row("bars as slashes", "http/sub/b.png", "x", "/sub|b.png", "Content-Length: 1\r\nContent-Type: image/png\r\n");
    row("Cyrillic name", QString::fromUtf8("http/имя.png"), "x", "/%D0%B8%D0%BC%D1%8F.png",
        "Content-Length: 1\r\nContent-Type: image/png\r\n");
    row("binary content", "http/a.any", QByteArray("\0\r\n\r\n\xFF", 6), "/a.any",
        "Content-Length: 6\r\nContent-Type: application/octet-stream\r\n");
    QByteArray large(3 * OcelaHTTPRequestHandler::maxSmallFileBytes, 'x');
    large.append("end");
    row("large video", "http/large.mp4", large, "/large.mp4",
        "Accept-Ranges: bytes\r\nConnection: keep-alive\r\nContent-Length: 196611\r\n"
        "Content-Range: bytes 0-196610/196611\r\nContent-Type: video/mp4\r\n");
    row("absolute path", "a.css", "x", "/ROOT/" + folder_.filePath("a.css").toUtf8(),
        "Content-Length: 1\r\nContent-Type: text/css\r\n");
    row("video", "http/a.mp4", "1234", "/a.mp4",
        "Accept-Ranges: bytes\r\nConnection: keep-alive\r\nContent-Length: 4\r\nContent-Range: bytes 0-3/4\r\n"
        "Content-Type: video/mp4\r\n");
    row("empty video", "http/b.mp4", "", "/b.mp4",
        "Accept-Ranges: bytes\r\nConnection: keep-alive\r\nContent-Length: 0\r\nContent-Range: bytes 0--1/0\r\n"
        "Content-Type: video/mp4\r\n");
}

void TestOcelaHttpRequestHandler::files() {
    QFETCH(const QString, name);
    QFETCH(const QByteArray, contents);
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, headers);
    write(name, contents);
    const ApiClient::Reply reply = client_.get(path);
    QCOMPARE(reply.body, contents);
    const ApiClient::ProcessedRequest processed = client_.process(exchange_, path);
    QCOMPARE(QFileInfo(processed.filePath), QFileInfo(name));
    QCOMPARE(processed.answer, QJsonObject({{"result", true}}));
    // Headers are sorted by name. Only "Accept-Ranges" comes before "Access-Control-Allow-Origin".
    const int first = headers.startsWith("Accept") ? headers.indexOf("\r\n") + 2 : 0;
    QCOMPARE(reply.head, "HTTP/1.1 200 OK\r\n" + headers.left(first) + "Access-Control-Allow-Origin: *\r\n" +
                             headers.mid(first) + "\r\n");
}

void TestOcelaHttpRequestHandler::changed_file_is_sent_with_its_new_type_data() {
    QTest::addColumn<int>("ageBefore");
    QTest::addColumn<int>("ageAfter");
    QTest::addColumn<QByteArray>("contents");
    // All ages are in seconds.
    QTest::newRow("other time") << 60 << 30 << QByteArray("plain old txt");
    QTest::newRow("other size") << 60 << 60 << QByteArray("plain old text");
    QTest::newRow("same time and size, changed just now") << -60 << -60 << QByteArray("plain old txt");
}

void TestOcelaHttpRequestHandler::changed_file_is_sent_with_its_new_type() {
    QFETCH(const int, ageBefore);
    QFETCH(const int, ageAfter);
    QFETCH(const QByteArray, contents);
    const QDateTime now = QDateTime::currentDateTime();
    const auto change = [&](const QByteArray &bytes, int age) {
        write("http/changing", bytes);
        QFile file(folder_.filePath("http/changing"));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(now.addSecs(-age), QFileDevice::FileModificationTime));
    };
    change("<html></html>", ageBefore);
    for (int i = 0; i < 2; ++i)
        QVERIFY(client_.get("/changing").head.contains("Content-Type: text/html;"));
    change(contents, ageAfter);
    const ApiClient::Reply reply = client_.get("/changing");
    QVERIFY2(reply.head.contains("Content-Type: text/plain\r\n"), reply.head);
    QCOMPARE(reply.body, contents);
}

void TestOcelaHttpRequestHandler::file_that_cannot_be_sent_is_answered_with_a_document_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("warning");
    QTest::newRow("folder") << QByteArray("/sub") << true << "Cannot send http/sub: not a regular file";
    QTest::newRow("empty absolute path") << QByteArray("/ROOT/") << false << "";
    special_files::addRows();
}

void TestOcelaHttpRequestHandler::file_that_cannot_be_sent_is_answered_with_a_document() {
    QFETCH(const QByteArray, path);
    QFETCH(const bool, exists);
    QFETCH(const QString, warning);
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression('^' + warning));
    const ApiClient::Reply reply = client_.get(path);
    QVERIFY2(reply.isDocument(), reply.head);
    QVERIFY(reply.head.contains("\r\nAccess-Control-Allow-Origin: *\r\n"));
    QCOMPARE(reply.answer()["result"].toBool(), exists);
    QCOMPARE(reply.answer().contains("error"), !exists);
}

void TestOcelaHttpRequestHandler::names_of_files_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("localOnWindows");
    QTest::addColumn<bool>("localElsewhere");
    const auto rows = [](const QStringList &names, bool localOnWindows, bool localElsewhere) {
        for (const QString &name : names)
            QTest::newRow(qUtf8Printable(name)) << name << localOnWindows << localElsewhere;
    };
    rows({"http/a", "http//a", "C:/media/a.mp4", "c:a", "/a", "C:\\a\\b", "http/console.html", "http/com10",
          "http/acon", "http/COM", "http/lpt.txt", "", "C:"},
         true, true);
    rows({"//host/share/a", "\\\\host\\share", "/\\host/a", "\\/host/a", "//?/C:/a", "//./COM1"}, false, false);
    rows({"CON", "http/nul", "C:/a/Aux.txt", "prn .html", "http/com1", "C:COM9.x.y", "http/LPT0/a", "http/conin$",
          QString::fromUtf8("http/lpt\u00b3"), "http/a:b", "C:/a.txt:b", "C:/a::$DATA", "/C:/a", "1:/a"},
         false, true);
}

void TestOcelaHttpRequestHandler::names_of_files() {
    QFETCH(const QString, name);
    using file_path_rules::System;
    QTEST(file_path_rules::namesLocalFile(name, System::windows), "localOnWindows");
    QTEST(file_path_rules::namesLocalFile(name, System::other), "localElsewhere");
    // Such a name gets the answer for a missing file, even if the system would find one.
    const QByteArray path = "/ROOT//" + folder_.filePath("a.css").toUtf8();
    QVERIFY(client_.get(path).answer()["error"].toString().endsWith("a.cssdoesn't exist"));
}

void TestOcelaHttpRequestHandler::preflight_runs_nothing() {
    FakeTracker tracker;
    exchange_.setTracker(&tracker);
    const ApiClient::Reply reply =
        client_.send("OPTIONS /stopcalibration HTTP/1.1\r\nAccess-Control-Request-Method: GET\r\n\r\n");
    QVERIFY2(reply.head.startsWith("HTTP/1.1 204 No Content\r\n"), reply.head);
    QVERIFY(reply.head.contains("\r\nAccess-Control-Allow-Origin: *\r\n"));
    QVERIFY(!reply.head.contains("Content-Length"));
    QCOMPARE(reply.body, QByteArray());
    QCOMPARE(tracker.calls, QStringList());
    QVERIFY(client_.send("OPTIONS /stopcalibration HTTP/1.1\r\n\r\n").answer()["result"].toBool());
    QCOMPARE(tracker.calls, QStringList("stopCalibration"));
    exchange_.setTracker(nullptr);
}

OCELA_TEST(TestOcelaHttpRequestHandler)
#include "tst_ocela_http_request_handler.moc"
