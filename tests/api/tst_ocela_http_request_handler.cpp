#include "api/api_client.h"
#include "api/ocela_http_exchange.h"
#include "api/special_files.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

/// The responses around documents and files.
class TestOcelaHttpRequestHandler : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    // Else Windows does not let the folder go.
    void cleanupTestCase() { QVERIFY(QDir::setCurrent(QDir::tempPath())); }

    void files_data();
    void files();
    void changed_file_is_sent_as_it_is_now();
    void what_is_no_file_to_send_gets_the_document_data();
    void what_is_no_file_to_send_gets_the_document();

private:
    void write(const QString &name, const QByteArray &contents);

    QTemporaryDir folder_;
    OcelaHTTPExchange exchange_{nullptr};
    ApiClient client_;
};

void TestOcelaHttpRequestHandler::initTestCase() {
    QVERIFY(QDir(folder_.path()).mkpath("http/sub"));
    QVERIFY(QDir::setCurrent(folder_.path()));
    QFile huge("http/huge");
    QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize(Q_INT64_C(5'000'000'000)));
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
    row("picture in a folder", "http/sub/a.png", "x", "/sub/a.png", "Content-Length: 1\r\nContent-Type: image/png\r\n");
    row("bars for slashes", "http/sub/b.png", "x", "/sub|b.png", "Content-Length: 1\r\nContent-Type: image/png\r\n");
    row("name in Cyrillic", QString::fromUtf8("http/имя.png"), "x", "/%D0%B8%D0%BC%D1%8F.png",
        "Content-Length: 1\r\nContent-Type: image/png\r\n");
    row("type by the content", "http/picture", "\x89PNG\r\n\x1a\n", "/picture",
        "Content-Length: 8\r\nContent-Type: image/png\r\n");
    row("any bytes", "http/a.any", QByteArray("\0\r\n\r\n\xFF", 6), "/a.any",
        "Content-Length: 6\r\nContent-Type: application/octet-stream\r\n");
    row("anywhere on the machine", "a.css", "x", "/ROOT/" + folder_.filePath("a.css").toUtf8(),
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
    // Sorted by name, and one stands before all others.
    const int first = headers.startsWith("Accept") ? headers.indexOf("\r\n") + 2 : 0;
    QCOMPARE(reply.head, "HTTP/1.1 200 OK\r\n" + headers.left(first) + "Access-Control-Allow-Origin: *\r\n" +
                             headers.mid(first) + "\r\n");
}

void TestOcelaHttpRequestHandler::changed_file_is_sent_as_it_is_now() {
    write("http/changing", "<html></html>");
    QFile file(folder_.filePath("http/changing"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    const auto setAge = [&](int seconds) {
        return file.setFileTime(QDateTime::currentDateTime().addSecs(-seconds), QFileDevice::FileModificationTime);
    };
    QVERIFY(setAge(60));
    for (int i = 0; i < 2; ++i)
        QVERIFY(client_.get("/changing").head.contains("Content-Type: text/html;"));
    QCOMPARE(file.write("plain old txt"), 13);
    QVERIFY(file.flush() && setAge(30));
    const ApiClient::Reply reply = client_.get("/changing");
    QVERIFY2(reply.head.contains("Content-Type: text/plain\r\n"), reply.head);
    QCOMPARE(reply.body, QByteArray("plain old txt"));
}

void TestOcelaHttpRequestHandler::what_is_no_file_to_send_gets_the_document_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("warning");
    QTest::newRow("folder") << QByteArray("/sub") << true << "Cannot send http/sub: not a regular file";
    QTest::newRow("more than fits into memory") << QByteArray("/huge") << true << "Cannot send http/huge: too large .*";
    QTest::newRow("nothing at all") << QByteArray("/ROOT/") << false << "";
    addSpecialFileRows();
}

void TestOcelaHttpRequestHandler::what_is_no_file_to_send_gets_the_document() {
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

OCELA_TEST(TestOcelaHttpRequestHandler)
#include "tst_ocela_http_request_handler.moc"
