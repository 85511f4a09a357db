#include "http/http_response.h"
#include "support/recording_output.h"
#include "support/test_main.h"

#include <QTest>
#include <functional>

/// Tests the bytes that responses send.
class TestHttpResponse : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writes_data();
    void writes();
    void cookieWithAllAttributes();
};

using Handler = std::function<void(HttpResponse &)>;
Q_DECLARE_METATYPE(Handler)

void TestHttpResponse::writes_data() {
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<QList<QByteArray>>("expected");
    const auto row = [](const char *name, const Handler &handler, const QList<QByteArray> &expected) {
        QTest::newRow(name) << handler << expected;
    };

    row("a body in one part is sent together with the headers", [](HttpResponse &r) { r.write("hello", true); },
        {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"});
    row("a part may consist of several pieces",
        [](HttpResponse &r) {
            r.write(QVector<QByteArray>{"hel", "", "lo"}, true);
        },
        {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"});
    row("an empty response has a content length", [](HttpResponse &r) { r.write("", true); },
        {"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"});
    for (const int status : {204, 304})
        row(qPrintable(QString("a response %1 has neither body nor length").arg(status)),
            [status](HttpResponse &r) {
                r.setStatus(status, "x");
                r.write("", true);
            },
            {"HTTP/1.1 " + QByteArray::number(status) + " x\r\n\r\n"});
    row("several parts are sent as chunks",
        [](HttpResponse &r) {
            r.write("ab");
            r.write("c", true);
        },
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n", "1\r\nc\r\n0\r\n\r\n"});
    row("chunk sizes are lower-case hexadecimal", [](HttpResponse &r) { r.write(QByteArray(26, 'x')); },
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1a\r\n" + QByteArray(26, 'x') + "\r\n"});
    row("an empty first part sends the headers, an empty last part the last chunk",
        [](HttpResponse &r) {
            r.write("");
            r.write("");
            r.write("", true);
        },
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n", "0\r\n\r\n"});
    row("parts are not framed if the connection is to be closed",
        [](HttpResponse &r) {
            r.setHeader("connection", "Close");
            r.write("ab");
            r.write("c", true);
        },
        {"HTTP/1.1 200 OK\r\nconnection: Close\r\n\r\nab", "c"});
    row("headers are sorted and sent once; headers that are set after the first part are not sent",
        [](HttpResponse &r) {
            r.setStatus(404, "not found");
            r.setHeader("Content-Type", "text/plain");
            r.setHeader("X-Count", 1);
            r.setHeader("X-Count", -12);
            r.setHeader("Content-Length", 99);
            r.setHeader("Connection", "keep-alive");
            r.write("x", true);
            r.setHeader("X-Late", "1");
        },
        {"HTTP/1.1 404 not found\r\nConnection: keep-alive\r\nContent-Length: 1\r\nContent-Type: text/plain\r\n"
         "X-Count: -12\r\n\r\nx"});
    row("cookies follow the headers, one per name",
        [](HttpResponse &r) {
            r.setCookie({"b", "2"});
            r.setCookie({"a", "0"});
            r.setCookie({"a", "1"});
            r.write("", true);
        },
        {"HTTP/1.1 200 OK\r\nContent-Length: 0\r\nSet-Cookie: a=1; Version=0\r\nSet-Cookie: b=2; Version=0\r\n\r\n"});
}

void TestHttpResponse::writes() {
    QFETCH(const Handler, handler);
    RecordingOutput output;
    HttpResponse response(&output);
    handler(response);
    QTEST(output.writes, "expected");
}

void TestHttpResponse::cookieWithAllAttributes() {
    const HttpCookie cookie{"n", "v", "why", "example.org", 60, "/p", true, true, "Lax", 2};
    QCOMPARE(cookie.toByteArray(),
             QByteArray("n=v; Comment=why; Domain=example.org; Max-Age=60; Path=/p; Secure; HttpOnly; SameSite=Lax; "
                        "Version=2"));
}

OCELA_TEST(TestHttpResponse)
#include "tst_http_response.moc"
