#include "http/http_request.h"
#include "request_builder.h"
#include "support/test_main.h"

#include <QLoggingCategory>
#include <QScopeGuard>

using namespace byte_text;
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
    void memoryOfAllRequests_data();
    void memoryOfAllRequests();
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
        "GET / HTTP/1.1\r\nHOST:  a:80 \r\nX:\r\nhost: b\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "host: b", "host: a:80", "x: "});
    row("a bare line feed does not end a line", "GET / HTTP/1.1\r\nA: 1\n\n", {"headers", "GET / HTTP/1.1"});
    row("a continuation line adds a further value", "GET / HTTP/1.1\r\nX-Long: a\r\n b\r\n :c\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "x-long: a b :c", "x-long: a b", "x-long: a"});
    row("a later cookie replaces an earlier one of the same name",
        "GET / HTTP/1.1\r\nCookie: a=0;a=1; b=\"2;3\"; c; =d\r\nCookie: e = 5=6;a=7\r\n\r\n",
        {"complete", "GET / HTTP/1.1", "cookie: e = 5=6;a=7", "cookie: a=0;a=1; b=\"2;3\"; c; =d", "cookie =c",
         "cookie =d=", "cookie a=7", "cookie b=2;3", "cookie e=5=6"});
    const QByteArray post = "POST / HTTP/1.1\r\n";
    row("without a content length there is no body", post + "\r\n5", {"complete", "POST / HTTP/1.1"}, "5");
    for (const char *length : {"0", "", "three"})
        row(qPrintable(QString("no body with the content length '%1'").arg(length)),
            post + "Content-Length: " + length + "\r\n\r\nabc",
            {"complete", "POST / HTTP/1.1", QByteArray("content-length: ") + length}, "abc");
    row("equal content lengths", post + "Content-Length: 2\r\nContent-Length: 2, 02\r\n\r\nabc",
        {"complete", "POST / HTTP/1.1", "content-length: 2, 02", "content-length: 2", "ab=", "body ab"}, "c");
    const QByteArray chunked = post + "Transfer-Encoding: Chunked\r\n\r\n";
    const Lines chunkedHead{"complete", "POST / HTTP/1.1", "transfer-encoding: Chunked"};
    row("chunks with extensions and trailers",
        chunked + "3;a=b\r\na=1\r\n0000B \t;x\r\n\r\n0123456\r\n\r\n0\r\nA: 1\r\n: 2\r\n\r\nGET",
        chunkedHead + Lines{"a=1\r\n0123456", "body a=1\r\n0123456\r\n"}, "GET");
    row("chunks without data", chunked + "0\r\n\r\n5", chunkedHead, "5");
    row("an incomplete chunk", chunked + "4\r\nab",
        {"body", "POST / HTTP/1.1", "transfer-encoding: Chunked", "body ab"});
    const QByteArray formStart = "--x\r\nContent-Disposition: form-data; name=\"";
    const QByteArray formEnd = "a\"\r\n\r\nvalue\r\n--x--\r\n";
    const auto chunk = [](const QByteArray &data) {
        return QByteArray::number(data.size(), 16) + "\r\n" + data + "\r\n";
    };
    row("a form in chunks",
        "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\nContent-Type: multipart/form-data; boundary=x\r\n\r\n" +
            chunk(formStart) + chunk(formEnd) + chunk(""),
        {"complete", "POST / HTTP/1.1", "content-type: multipart/form-data; boundary=x", "transfer-encoding: chunked",
         "a=value"});
    row("parameters in the query and the body", "POST /?a=1 HTTP/1.1\r\nContent-Length: 5\r\n\r\na=2&b",
        {"complete", "POST / HTTP/1.1", "content-length: 5", "a=2", "a=1", "b=", "body a=2&b"});
    const QByteArray urlEncoded = "application/x-www-form-urlencoded; charset=UTF-8";
    row("parameters in a body of the url-encoded type", request_builder::post(urlEncoded, "a=2"),
        {"complete", "POST / HTTP/1.1", "content-length: 3", "content-type: " + urlEncoded, "a=2", "body a=2"});
    row("a body of another type has no parameters", request_builder::post("text/plain", "a=2"),
        {"complete", "POST / HTTP/1.1", "content-length: 3", "content-type: text/plain", "body a=2"});
    row("a form with an empty boundary is a plain body", request_builder::post("multipart/form-data; boundary=", "a"),
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
        "GET / HTTP/1.1\r\nA: b\r\n" + QByteArray(" c\r\n").repeated(20) + "\r\n", 100, "too large", tooMany);

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

    const QByteArray ambiguous = "the end of the body is ambiguous";
    for (const char *lines :
         {"Content-Length: 1\r\nContent-Length: 2", "Content-Length: 1, 2", "Content-Length: 3 4", "Content-Length: +3",
          "Content-Length: -1", "Content-Length: 0x3", "Transfer-Encoding: gzip, chunked",
          "Transfer-Encoding:", "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked",
          "Content-Length: 0\r\nTransfer-Encoding: chunked"})
        row(QByteArray(lines).simplified(), QByteArray("POST / HTTP/1.1\r\n") + lines + "\r\n\r\nabc", 1000, "broken",
            ambiguous);
    const auto brokenHeaders = [&row](const QByteArray &warning, const Lines &cases) {
        for (const QByteArray &lines : cases)
            row("headers " + lines.toPercentEncoding(" :"), "GET / HTTP/1.1\r\n" + lines + "\r\n\r\n", 1000, "broken",
                warning);
    };
    brokenHeaders("received a header without a valid name",
                  {"Content-Length : 3", "A\t: 1", "A B: 1", "\vA: 1", ": 1", "A: 1\r\n:", "A", "A: 1\r\nB"});
    brokenHeaders("received a header with a line break or a NUL",
                  {"A: 1\nContent-Length: 3", "A: 1\rB: 2", QByteArray("A: 1\0", 5), "A\n: 1", "\r", "\n", "A: 1\n"});
    brokenHeaders("received an ambiguous continuation line",
                  {" ", "\t", "A: 1\r\n ", " A: 1", " a", "A: 1\r\n B: 2", "Content-Length: 1\r\n 2",
                   "Content-Length: 1\r\n :", "Transfer-Encoding:\r\n chunked"});
    for (const char *line : {"GET /\nA HTTP/1.1", "GET / HTTP/1.1\nA: 1", "GET / HTTP/1.1\r", "\nGET / HTTP/1.1", "\n"})
        row("first line " + QByteArray(line).toPercentEncoding(" /"), QByteArray(line) + "\r\n", 100, "broken",
            "received broken HTTP request, invalid first line");
    row("first line with a NUL", QByteArray("GET /\0 HTTP/1.1\r\n", 17), 100, "broken",
        "received broken HTTP request, invalid first line");
    const QByteArray chunked = "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (const char *chunk : {"x", "\r\n", "-1\r\n", "+1\r\n", " 1\r\n", "0x1\r\n", "1 2\r\n", "1\nab\r\n",
                              "1\r\nab\r\n", "1\r\na\n", "1\r\na\r\r", ";\r\n", "0\r\n\n\r\n"})
        row("invalid chunk " + QByteArray(chunk).toPercentEncoding(), chunked + chunk + "\r\n", 1000, "broken",
            "received an invalid chunk");
    row("a chunk line that is too long", chunked + "1;" + QByteArray(ChunkedBody::maxLineBytes, 'x'), 100000, "broken",
        "received an invalid chunk");
    row("chunks up to the limit", chunked + "5\r\nabcde\r\n0\r\n\r\n", chunked.size() + 15, "complete", {});
    row("the framing of chunks counts", chunked + "5\r\nabcde\r\n0\r\n\r\n", chunked.size() + 14, "too large", tooMany);
    row("endless trailers", chunked + "0\r\n" + QByteArray("a: b\r\n").repeated(100), 200, "too large", tooMany);
    for (const char *size : {"1001", "7fffffffffffffff", "fffffffffffffffff"})
        row(QByteArray("a chunk of ") + size, chunked + size + "\r\n", 1000, "too large", tooLarge);
    row("a form in chunks exactly at its limit",
        "POST / HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=x\r\nTransfer-Encoding: chunked\r\n\r\n"
        "64\r\n" +
            QByteArray(100, 'x'),
        1000, "too large", "received too many multipart bytes", 100);

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
    row("too many headers", repeated("A: 1\r\n", maxEntryCount + 1), 100000, "too large", "received too many headers");
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

void TestHttpRequest::memoryOfAllRequests_data() {
    QTest::addColumn<QByteArray>("input");
    const auto row = [](const char *name, const QByteArray &input) { QTest::newRow(name) << input; };
    const QByteArray large(60000, 'x');
    row("first line", "GET /" + large + " HTTP/1.1\r\n\r\n");
    row("headers", "GET / HTTP/1.1\r\nA: " + large + "\r\nB: " + large + "\r\n\r\n");
    row("many headers", "GET / HTTP/1.1\r\n" + QByteArray("a:\r\n").repeated(1000) + "\r\n");
    row("cookies", "GET / HTTP/1.1\r\nCookie: " + QByteArray(1000, ';') + "\r\n\r\n");
    row("parameters", "GET /?" + QByteArray("a&").repeated(1000) + " HTTP/1.1\r\n\r\n");
    row("body", post("text/plain", large + large));
    row("url-encoded body", post("", large.left(50000)));
    row("field of a form", form(part(" name=\"a\"", large.repeated(2))));
    row("many fields of a form", form(part(" name=\"a\"", "1").repeated(1000)));
}

void TestHttpRequest::memoryOfAllRequests() {
    // Part of the buffer that a form is read with.
    const int formBytes = QByteArray(QTest::currentDataTag()).contains("form") ? 131072 : 0;
    QFETCH(const QByteArray, input);
    const RequestLimits limits(1000000, 1000000);
    QLoggingCategory::setFilterRules("ocela.http.debug=false");
    const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules({}); });
    {
        MemoryBudget enough(1000000);
        HttpRequest request(limits.settings(), &enough);
        feed(request, view(input));
        QVERIFY(request.getStatus() <= HttpRequest::complete);
        QVERIFY(enough.usedBytes() > 100000);
    }
    MemoryBudget small(100000 + formBytes);
    {
        QTest::ignoreMessage(QtWarningMsg, "HttpRequest: the memory for requests is in use");
        HttpRequest request(limits.settings(), &small);
        feed(request, view(input));
        QCOMPARE(request.getStatus(), HttpRequest::abortBusy);
        QVERIFY(small.usedBytes() <= 100000 + formBytes);
    }
    QCOMPARE(small.usedBytes(), qint64(0));
}

OCELA_TEST(TestHttpRequest)
#include "tst_http_request.moc"
