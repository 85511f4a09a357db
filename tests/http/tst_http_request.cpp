#include "http/http_request.h"
#include "request_builder.h"
#include "support/test_main.h"

using namespace request_builder;
using namespace request_outcome;

/// Tests the parsing of requests, which must not depend on the pieces in which they arrive.
class TestHttpRequest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requests_data();
    void requests();
    void accessors();
    void limits_data();
    void limits();
    void defaultLimits();
};

namespace {

using Lines = QList<QByteArray>;

}  // namespace

void TestHttpRequest::requests_data() {
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<Lines>("expected");
    QTest::addColumn<QByteArray>("rest");
    const auto row = [](const char *name, const QByteArray &input, const Lines &expected, const QByteArray &rest = {}) {
        QTest::newRow(name) << input << expected << rest;
    };
    row("query with an invalid escape and a name without a value", "GET /a%20b?x=1&y=%zz&flag HTTP/1.1\r\n\r\n",
        {"complete", "GET /a b HTTP/1.1", "flag=", "x=1", "y=%zz"});
    row("an escape has two hexadecimal digits and is decoded once",
        "GET /?a=a+b%2b%2B&b=%2525&c=%%41&d=%&e=%4&f=%+1%-1&g=%0x1%x0%g0%0g&h=%c3%A9 HTTP/1.1\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "a=a b++", "b=%25", "c=%A", "d=%", "e=%4", "f=% 1%-1", "g=%0x1%x0%g0%0g",
         "h=\xc3\xa9"});
    row("parameters are trimmed before they are decoded", "GET /?&a=1&&a=%202+&=v&b=c=d&%41?=\t1\t HTTP/1.1\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "=v", "A?=1", "a= 2 ", "a=1", "b=c=d"});
    row("blank lines before a request", "\r\n \r\n\r\nGET / HTTP/1.0\r\n\r\n", {"complete", "GET / HTTP/1.0"});
    row("a second request stays in the input", "GET /1 HTTP/1.1\r\n\r\nGET /2 HTTP/1.1\r\n\r\n",
        {"complete", "GET /1 HTTP/1.1"}, "GET /2 HTTP/1.1\r\n\r\n");
    row("header names are lower-cased, values trimmed; further colons belong to the value",
        "GET / HTTP/1.1\r\nHOST:  a:80 \r\nX : 1\r\nhost: b\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "host: b", "host: a:80", "x : 1"});
    row("a bare line feed does not end a line", "GET / HTTP/1.1\r\nA: 1\nB: 2\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "a: 1\nB: 2"});
    row("a continuation line adds a further value", "GET / HTTP/1.1\r\nX-Long: a\r\n b\r\n :c\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "x-long: a b :c", "x-long: a b", "x-long: a"});
    row("a continuation line without a header before it", "GET / HTTP/1.1\r\n: b\r\nc\r\n\r\n",
        {"complete", "GET / HTTP/1.1"});
    row("a later cookie replaces an earlier one of the same name",
        "GET / HTTP/1.1\r\nCookie: a=0;a=1; b=\"2;3\"; c; =d\r\nCookie: e = 5=6;a=7\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "cookie: e = 5=6;a=7", "cookie: a=0;a=1; b=\"2;3\"; c; =d", "cookie =c",
         "cookie =d=", "cookie a=7", "cookie b=2;3", "cookie e=5=6"});
    row("without a content length there is no body", "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n5",
        {"complete", "POST / HTTP/1.1", "transfer-encoding: chunked"}, "5");
    for (const char *length : {"0", "", "-1", "+3", "3 4", "0x3", "three"})
        row(qPrintable(QString("no body with the content length '%1'").arg(length)),
            QByteArray("POST / HTTP/1.1\r\nContent-Length: ") + length + "\r\n\r\nabc",
            {"complete", "POST / HTTP/1.1", QByteArray("content-length: ") + length}, "abc");
    row("parameters in the query and the body", "POST /?a=1 HTTP/1.1\r\nContent-Length: 5\r\n\r\na=2&b",
        {"complete", "POST / HTTP/1.1", "content-length: 5", "a=2", "a=1", "b=", "body a=2&b"});
    const QByteArray urlEncoded = "application/x-www-form-urlencoded; charset=UTF-8";
    row("parameters in a body of the url-encoded type", post(urlEncoded, "a=2"),
        {"complete", "POST / HTTP/1.1", "content-length: 3", "content-type: " + urlEncoded, "a=2", "body a=2"});
    row("a body of another type has no parameters", post("text/plain", "a=2"),
        {"complete", "POST / HTTP/1.1", "content-length: 3", "content-type: text/plain", "body a=2"});
    row("a form with an empty boundary is a plain body", post("multipart/form-data; boundary=", "a"),
        {"complete", "POST / HTTP/1.1", "content-length: 1", "content-type: multipart/form-data; boundary=", "body a"});
    row("an incomplete body", "POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\nab",
        {"body", "POST / HTTP/1.1", "content-length: 5", "body ab"});
}

void TestHttpRequest::requests() {
    QFETCH(const QByteArray, input);
    feedInPieces(input, {1000, 1000}, {}, [](const HttpRequest &request, const QByteArray &left) {
        QTEST(describe(request), "expected");
        QTEST(left, "rest");
        QCOMPARE(request.getPeerAddress(), QHostAddress(QHostAddress::LocalHost));
    });
}

void TestHttpRequest::accessors() {
    const RequestLimits limits(1000, 1000);
    HttpRequest request(limits.settings());
    feed(request, "GET /a%20b?X=1&X=2&x=3 HTTP/1.1\r\nA: 1\r\na: 2\r\nCookie: C=4\r\n\r\n");
    QCOMPARE(request.getRawPath(), QByteArray("/a%20b?X=1&X=2&x=3"));
    QCOMPARE(request.getHeader("A"), QByteArray("2"));
    QCOMPARE(request.getHeaders("A"), (Lines{"2", "1"}));
    QCOMPARE(request.getParameter("X"), QByteArray("2"));
    QCOMPARE(request.getParameters("X"), (Lines{"2", "1"}));
    QCOMPARE(request.getCookie("C"), QByteArray("4"));
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
    row("one byte over the limit", request, request.size() - 1, "too large", tooMany);
    row("a first line without a line end", QByteArray(200, 'x'), 100, "too large", tooMany);
    row("a limit of 0", request, 0, "too large", tooMany);
    row("a negative limit", request, -2000000000, "too large", tooMany);
    row("continuation lines that multiply the stored size",
        "GET / HTTP/1.1\r\nA: b\r\n" + QByteArray("c\r\n").repeated(20) + "\r\n", 100, "too large", tooMany);

    const QByteArray header = "POST / HTTP/1.1\r\nContent-Length: ";
    const QByteArray tooLarge = "expected body is too large";
    row("a body up to the limit", header + "2\r\n\r\nab", header.size() + 7, "complete", {});
    row("a body one byte over the limit", header + "3\r\n\r\nabc", header.size() + 7, "too large", tooLarge);
    for (const char *length : {"2147483647", "4294967297", "99999999999999999999"})
        row(QByteArray("content length ") + length, header + length + "\r\n\r\n", 2147483647, "too large", tooLarge);
    const QByteArray body = post("multipart/form-data; boundary=xyz", QByteArray(200, 'x'));
    row("a form one byte below its limit", body, 100, "complete", {}, 201);
    row("a form exactly at its limit", body, 100, "too large", "received too many multipart bytes", 200);
    row("a form over its limit", body, 100, "too large", "expected multipart body is too large", 199);

    const int maxEntryCount = 10000;
    const QByteArray tooManyEntries = "received too many parameters or cookies";
    const auto query = [](int count) { return "POST /?" + QByteArray(count, '&') + " HTTP/1.1\r\n"; };
    const QByteArray twoPairs = "Content-Length: 1\r\n\r\n&";
    row("the maximum number of parameters", query(maxEntryCount - 1) + twoPairs, 100000, "complete", {});
    row("too many parameters in query and body", query(maxEntryCount) + twoPairs, 100000, "too large", tooManyEntries);
    const auto repeated = [](const QByteArray &line, int count) {
        return "GET / HTTP/1.1\r\n" + line.repeated(count) + "\r\n";
    };
    row("the maximum number of headers", repeated("A: 1\r\n", maxEntryCount), 100000, "complete", {});
    row("too many headers", repeated("A: 1\r\n", maxEntryCount + 1), 100000, "too large", tooMany);
    const QByteArray cookies = "Cookie: " + QByteArray(maxEntryCount / 2, ';') + "\r\n";
    row("the maximum number of cookies", repeated(cookies, 2), 100000, "complete", {});
    row("too many cookies", repeated(cookies, 3), 100000, "too large", tooManyEntries);
}

void TestHttpRequest::limits() {
    QFETCH(const QByteArray, input);
    QFETCH(const int, limit);
    QFETCH(const int, formLimit);
    QFETCH(const QByteArray, warning);
    feedInPieces(input, {limit, formLimit}, warning,
                 [](const HttpRequest &request, const QByteArray &) { QTEST(describe(request).first(), "status"); });
}

void TestHttpRequest::defaultLimits() {
    const auto check = [](const QByteArray &headers, const QByteArray &status, const QByteArray &warning = {}) {
        feedInPieces("POST / HTTP/1.1\r\n" + headers + "\r\n\r\n", {}, warning,
                     [&](const HttpRequest &request, const QByteArray &) { QCOMPARE(describe(request)[0], status); });
    };
    // The size of the headers counts as well, except for a form.
    check("Content-Length: 49999900", "body");
    check("Content-Length: 50000000", "too large", "expected body is too large");
    const QByteArray formHeaders = "Content-Type: multipart/form-data; boundary=xyz\r\nContent-Length: ";
    check(formHeaders + "50000000", "body");
    check(formHeaders + "50000001", "too large", "expected multipart body is too large");
}

OCELA_TEST(TestHttpRequest)
#include "tst_http_request.moc"
