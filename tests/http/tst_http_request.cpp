#include "http/byte_text.h"
#include "http/http_request.h"
#include "http/http_request_handler.h"
#include "http/http_response.h"
#include "http/multipart_form.h"
#include "http/url_encoding.h"
#include "support/recording_output.h"
#include "support/request_outcome.h"
#include "support/test_main.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryFile>
#include <QTest>

/// What a request becomes, however the network cuts it.
class TestHttpRequest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requests_data();
    void requests();
    void limits_data();
    void limits();
    void forms_data();
    void forms();
    void tooManyParts();
    void noRoomForFiles();
    void decoding_data();
    void decoding();
    void handlerThatIsNotOverridden();
};

namespace {

using Lines = QList<QByteArray>;

using Check = std::function<void(const HttpRequest &, const QByteArray &rest)>;

/// Checks what `input` becomes, and what is left of it, under all the ways of cutting it. `warning` is expected in
/// each.
void withAllCuts(const QByteArray &input, const RequestLimits &limits, const QByteArray &warning, const Check &check) {
    QRandomGenerator random(1);
    const std::function<std::size_t()> cuts[] = {
        [] { return std::string_view::npos; },
        [] { return std::size_t(1); },
        [&random] { return std::size_t(random.bounded(1, 7)); },
        [&random] { return std::size_t(random.bounded(1, 60)); },
    };
    for (const auto &cut : cuts) {
        if (!warning.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, "HttpRequest: " + warning);
        HttpRequest request(limits.settings());
        check(request, byte_text::copy(feed(request, byte_text::view(input), cut)));
    }
}

QByteArray post(const QByteArray &contentType, const QByteArray &body) {
    return "POST / HTTP/1.1\r\nContent-Type: " + contentType +
           "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QByteArray part(const QByteArray &disposition, const QByteArray &content) {
    return "--xyz\r\nContent-Disposition: form-data;" + disposition + "\r\n\r\n" + content + "\r\n";
}

}  // namespace

void TestHttpRequest::requests_data() {
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<Lines>("expected");
    QTest::addColumn<QByteArray>("rest");
    const auto row = [](const char *name, const QByteArray &input, const Lines &expected, const QByteArray &rest = {}) {
        QTest::newRow(name) << input << expected << rest;
    };
    row("query, with a broken escape and a name alone", "GET /a%20b?x=1&y=%zz&flag HTTP/1.1\r\n\r\n",
        {"complete", "GET /a b HTTP/1.1", "flag=", "x=1", "y=%zz"});
    row("parameters are trimmed before they are decoded; a repeated one comes last first",
        "GET /?&a=1&&a=%202+&=v&b=c=d&%41?=\t1\t HTTP/1.1\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "=v", "A?=1", "a= 2 ", "a=1", "b=c=d"});
    row("blank lines before a request", "\r\n \r\n\r\nGET / HTTP/1.0\r\n\r\n", {"complete", "GET / HTTP/1.0"});
    row("a second request stays in the input", "GET /1 HTTP/1.1\r\n\r\nGET /2 HTTP/1.1\r\n\r\n",
        {"complete", "GET /1 HTTP/1.1"}, "GET /2 HTTP/1.1\r\n\r\n");
    row("names in any case, values trimmed, further colons part of the value",
        "GET / HTTP/1.1\r\nHOST:  a:80 \r\nX : 1\r\nhost: b\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "host: b", "host: a:80", "x : 1"});
    row("a bare line feed does not end a line", "GET / HTTP/1.1\r\nA: 1\nB: 2\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "a: 1\nB: 2"});
    row("a continued header becomes a further value", "GET / HTTP/1.1\r\nX-Long: a\r\n b\r\n :c\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "x-long: a b :c", "x-long: a b", "x-long: a"});
    row("nothing to continue", "GET / HTTP/1.1\r\n: b\r\nc\r\n\r\n", {"complete", "GET / HTTP/1.1"});
    row("cookies, a later one of a name replaces an earlier",
        "GET / HTTP/1.1\r\nCookie: a=0;a=1; b=\"2;3\"; c; =d\r\nCookie: e = 5=6;a=7\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "cookie: e = 5=6;a=7", "cookie: a=0;a=1; b=\"2;3\"; c; =d", "cookie =c",
         "cookie =d=", "cookie a=7", "cookie b=2;3", "cookie e=5=6"});
    row("no body without a length", "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n5",
        {"complete", "POST / HTTP/1.1", "transfer-encoding: chunked"}, "5");
    for (const char *length : {"0", "", "-1", "+3", "3 4", "0x3", "three"})
        row(qPrintable(QString("no body with the length '%1'").arg(length)),
            QByteArray("POST / HTTP/1.1\r\nContent-Length: ") + length + "\r\n\r\nabc",
            {"complete", "POST / HTTP/1.1", QByteArray("content-length: ") + length}, "abc");
    row("a form in query and body", "POST /?a=1 HTTP/1.1\r\nContent-Length: 5\r\n\r\na=2&b",
        {"complete", "POST / HTTP/1.1", "content-length: 5", "a=2", "a=1", "b=", "body a=2&b"});
    row("a body of another type is no form", post("text/plain", "a=2"),
        {"complete", "POST / HTTP/1.1", "content-length: 3", "content-type: text/plain", "body a=2"});
    row("an empty boundary is none", post("multipart/form-data; boundary=", "a"),
        {"complete", "POST / HTTP/1.1", "content-length: 1", "content-type: multipart/form-data; boundary=", "body a"});
    row("not all has arrived", "POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\nab",
        {"body", "POST / HTTP/1.1", "content-length: 5", "body ab"});
}

void TestHttpRequest::requests() {
    QFETCH(const QByteArray, input);
    withAllCuts(input, {1000, 1000}, {}, [](const HttpRequest &request, const QByteArray &left) {
        QTEST(describe(request), "expected");
        QTEST(left, "rest");
        QCOMPARE(request.getPeerAddress(), QHostAddress(QHostAddress::LocalHost));
    });
}

void TestHttpRequest::limits_data() {
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("formLimit");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("warning");
    const auto row = [](const QByteArray &name, const QByteArray &input, int limit, const QByteArray &status,
                        const QByteArray &warning, int formLimit = 1000) {
        QTest::newRow(name) << input << limit << formLimit << status << warning;
    };
    for (const char *line : {"GET /", "GET  HTTP/1.1", "GET  / HTTP/1.1", "GET / x HTTP/1.1", "GET / FTP/1.1", "GET"})
        row(QByteArray("first line ") + line, QByteArray(line) + "\r\n", 100, "broken",
            "received broken HTTP request, invalid first line");

    const QByteArray request = "GET / HTTP/1.1\r\nA: 12345678\r\n\r\n";
    const QByteArray tooMany = "received too many bytes";
    row("exactly the limit", request, request.size(), "complete", {});
    row("a byte more than the limit", request, request.size() - 1, "too large", tooMany);
    row("a first line without end", QByteArray(200, 'x'), 100, "too large", tooMany);
    row("a limit of nothing", request, 0, "too large", tooMany);
    row("a limit below nothing", request, -2000000000, "too large", tooMany);
    row("continued lines that grow with the square",
        "GET / HTTP/1.1\r\nA: b\r\n" + QByteArray("c\r\n").repeated(20) + "\r\n", 100, "too large", tooMany);

    const QByteArray header = "POST / HTTP/1.1\r\nContent-Length: ";
    const QByteArray tooLarge = "expected body is too large";
    row("a body that just fits", header + "2\r\n\r\nab", header.size() + 7, "complete", {});
    row("a body that just does not fit", header + "3\r\n\r\nabc", header.size() + 7, "too large", tooLarge);
    for (const char *length : {"2147483647", "4294967297", "99999999999999999999"})
        row(QByteArray("announces bytes: ") + length, header + length + "\r\n\r\n", 2147483647, "too large", tooLarge);
    const QByteArray form = post("multipart/form-data; boundary=xyz", QByteArray(200, 'x'));
    row("a form that just fits", form, 100, "complete", {}, 201);
    row("a form of exactly its limit", form, 100, "too large", "received too many multipart bytes", 200);
    row("a form beyond its limit", form, 100, "too large", "expected multipart body is too large", 199);
    row("more entries than memory is for", "GET /?" + QByteArray(20000, '&') + " HTTP/1.1\r\n\r\n", 1000000,
        "too large", "received too many parameters or cookies");
}

void TestHttpRequest::limits() {
    QFETCH(const QByteArray, input);
    QFETCH(const int, limit);
    QFETCH(const int, formLimit);
    QFETCH(const QByteArray, warning);
    withAllCuts(input, {limit, formLimit}, warning,
                [](const HttpRequest &request, const QByteArray &) { QTEST(describe(request).first(), "status"); });
}

void TestHttpRequest::forms_data() {
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<Lines>("expected");
    QTest::addColumn<QByteArray>("warning");
    const auto row = [](const char *name, const QByteArray &body, const Lines &expected,
                        const QByteArray &warning = {}) { QTest::newRow(name) << body << expected << warning; };
    const QByteArray content = "1\n\r\n--xy\r\n\r\n" + QByteArray(70000, 'b');
    row("a field and a file",
        part(" name=\"a\"", "1\r\n2") + part(" name=\"f\"; filename=\"n.txt\"", content) + "--xyz--\r\n",
        {"a=1\r\n2", "f=n.txt", "file f: " + content});
    row("empty field, empty file", part(" name=\"a\"", "") + part(" name=\"f\"; filename=\"n\"", "") + "--xyz--",
        {"a=", "f=n", "file f: "});
    row("the last file of a field stays, what follows the end does not count",
        part(" name=\"f\"; filename=\"n1\"", "1") + part(" name=\"f\"; filename=\"n2\"", "2") + "--xyz--\r\n" +
            part(" name=\"a\"", "1") + "--xyz",
        {"f=n2", "f=n1", "file f: 2"});
    row("no name, an empty one, one without its end, another disposition",
        part("", "1") + part(" name=\"\"", "2") + part(" name=\"a", "3") +
            "--xyz\r\nContent-Disposition: inline; name=\"a\"\r\n\r\n4\r\n--xyz--",
        {});
    row("an empty file name is a field", part(" name=\"a\"; filename=\"\"", "1") + "--xyz--", {"a=1"});
    row("a part without its end does not count", part(" name=\"a\"", "1") + part(" name=\"b\"", "2"), {"a=1"});
    row("the headers of a part do not end", "--xyz\r\nContent-Disposition: form-data; name=\"a\"", {});
    row("no boundary anywhere", QByteArray(3, '\n'), {});
    row("a file that ends before its first line",
        "--xyz\r\nContent-Disposition: form-data; name=\"f\"; filename=\"n\"\r\n\r\n--xyz--", {},
        "format error, unexpected end of file data");
}

void TestHttpRequest::forms() {
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArray, warning);
    withAllCuts(post("multipart/form-data; boundary=\"xyz\"", body), {1000, 1000000}, warning,
                [](const HttpRequest &request, const QByteArray &rest) {
                    const int linesBeforeTheForm = 4;
                    QCOMPARE(request.getStatus(), HttpRequest::complete);
                    QTEST(describe(request).mid(linesBeforeTheForm), "expected");
                    QCOMPARE(rest, QByteArray());
                });
}

void TestHttpRequest::tooManyParts() {
    const QByteArray body = part(" name=\"f\"; filename=\"n\"", "1").repeated(101);
    withAllCuts(post("multipart/form-data; boundary=xyz", body + "--xyz--"), {1000, 1000000},
                "received too many fields or files", [](const HttpRequest &request, const QByteArray &) {
                    QCOMPARE(describe(request).first(), QByteArray("too large"));
                });
}

void TestHttpRequest::noRoomForFiles() {
    const QByteArray body = part(" name=\"f\"; filename=\"n\"", "1") + "--xyz--";
    const RequestLimits limits(1000, 1000);
    QTemporaryFile noFolder;
    QVERIFY(noFolder.open());
    const auto restore = qScopeGuard([unixes = qgetenv("TMPDIR"), windows = qgetenv("TMP")] {
        qputenv("TMPDIR", unixes);
        qputenv("TMP", windows);
    });
    for (const char *name : {"TMPDIR", "TMP"})
        qputenv(name, noFolder.fileName().toLocal8Bit());
    QTest::ignoreMessage(QtCriticalMsg, "HttpRequest: Error writing temp file for multipart body");
    HttpRequest request(limits.settings());
    feed(request, byte_text::view(post("multipart/form-data; boundary=xyz", body)), [] { return std::size_t(50); });
    QCOMPARE(request.getStatus(), HttpRequest::abortBroken);

    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("HttpRequest: error writing temp file, .+"));
    QCOMPARE(MultipartParser("xyz").parse(byte_text::view(body)), MultipartParser::Result::fileError);
}

void TestHttpRequest::decoding_data() {
    QTest::addColumn<QByteArray>("decoded");
    for (const auto &[text, decoded] : {
             std::pair("a+b%2b%2B", "a b++"),
             std::pair("%2525", "%25"),
             std::pair("%%41", "%A"),
             std::pair("%", "%"),
             std::pair("%4", "%4"),
             std::pair("%+1% 1%-1", "% 1% 1%-1"),
             std::pair("%0x1%x0%g0%0g", "%0x1%x0%g0%0g"),
             std::pair("%c3%A9", "\xc3\xa9"),
         })
        QTest::newRow(text) << QByteArray(decoded);
}

void TestHttpRequest::decoding() {
    QTEST(url_encoding::decode(QTest::currentDataTag()), "decoded");
}

void TestHttpRequest::handlerThatIsNotOverridden() {
    const RequestLimits limits(1000, 1000);
    HttpRequest request(limits.settings());
    RecordingOutput output;
    HttpResponse response(&output);
    QTest::ignoreMessage(QtCriticalMsg, "HttpRequestHandler: you need to override the service() function");
    HttpRequestHandler().service(request, response);
    QCOMPARE(output.writes, Lines{"HTTP/1.1 501 not implemented\r\nContent-Length: 19\r\n\r\n501 not implemented"});
}

OCELA_TEST(TestHttpRequest)
#include "tst_http_request.moc"
