#include "http/multipart_form.h"
#include "request_builder.h"
#include "support/test_main.h"

#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTemporaryFile>
#include <QTest>
#include <memory>

using namespace request_builder;
using namespace request_outcome;

/// Tests requests whose body is a multipart form.
class TestMultipartForm : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Qt Test ignores all messages after the first 2000, and each part logs some.
    void initTestCase() { QLoggingCategory::setFilterRules("ocela.http.debug=false"); }
    void cleanupTestCase() { QLoggingCategory::setFilterRules({}); }

    void forms_data();
    void forms();
    void limits();
    void temporaryFilesThatCannotBeWritten();
};

namespace {

using Lines = QList<QByteArray>;

const QByteArray field = part(" name=\"a\"", "1");

QByteArray files(int count) {
    QByteArray parts;
    for (int i = 0; i < count; ++i)
        parts += part(" name=\"f" + QByteArray::number(i) + "\"; filename=\"n\"", "1");
    return parts;
}

std::unique_ptr<HttpRequest> requestWith(const QByteArray &input) {
    const RequestLimits limits(10000000, 10000000);
    auto request = std::make_unique<HttpRequest>(limits.settings());
    feed(*request, byte_text::view(input));
    return request;
}

/// Prevents the creation of temporary files until it is destroyed.
class NoTemporaryFolder {
public:
    NoTemporaryFolder() {
        if (!noFolder_.open())
            qFatal("no temporary file");
        for (const char *name : names)
            qputenv(name, noFolder_.fileName().toLocal8Bit());
    }
    ~NoTemporaryFolder() {
        for (int i = 0; i < 2; ++i)
            qputenv(names[i], previous_[i]);
    }

private:
    static constexpr const char *names[] = {"TMPDIR", "TMP"};
    const QByteArray previous_[2] = {qgetenv(names[0]), qgetenv(names[1])};
    QTemporaryFile noFolder_;
};

}  // namespace

void TestMultipartForm::forms_data() {
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<Lines>("expected");
    QTest::addColumn<QByteArray>("warning");
    const auto row = [](const char *name, const QByteArray &body, const Lines &expected,
                        const QByteArray &warning = {}) { QTest::newRow(name) << body << expected << warning; };
    const QByteArray content = "1\n\r\n--xy\r\n\r\n" + QByteArray(70000, 'b');
    row("a field and a file",
        part(" name=\"a\"", "1\r\n2") + part(" name=\"f\"; filename=\"n.txt\"", content) + "--xyz--\r\n",
        {"a=1\r\n2", "f=n.txt", "file f: " + content});
    row("an empty field and an empty file",
        part(" name=\"a\"", "") + part(" name=\"f\"; filename=\"n\"", "") + "--xyz--", {"a=", "f=n", "file f: "});
    row("the last file of a field is kept; parts after the closing boundary are ignored",
        part(" name=\"f\"; filename=\"n1\"", "1") + part(" name=\"f\"; filename=\"n2\"", "2") + "--xyz--\r\n" +
            part(" name=\"a\"", "1") + "--xyz",
        {"f=n2", "f=n1", "file f: 2"});
    row("parts without a usable field name are ignored",
        part("", "1") + part(" name=\"\"", "2") + part(" name=\"a", "3") +
            "--xyz\r\nContent-Disposition: inline; name=\"a\"\r\n\r\n4\r\n--xyz--",
        {});
    row("a part with an empty file name is a field", part(" name=\"a\"; filename=\"\"", "1") + "--xyz--", {"a=1"});
    row("a part without a boundary after it is ignored", part(" name=\"a\"", "1") + part(" name=\"b\"", "2"), {"a=1"});
    row("part headers without an empty line after them", "--xyz\r\nContent-Disposition: form-data; name=\"a\"", {});
    row("no boundary", QByteArray(3, '\n'), {});
    row("a file part without any line",
        "--xyz\r\nContent-Disposition: form-data; name=\"f\"; filename=\"n\"\r\n\r\n--xyz--", {},
        "format error, unexpected end of file data");
}

void TestMultipartForm::forms() {
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArray, warning);
    feedInPieces(post("multipart/form-data; boundary=\"xyz\"", body), {1000, 1000000}, warning,
                 [](const HttpRequest &request, const QByteArray &rest) {
                     const int linesBeforeTheForm = 4;
                     QCOMPARE(request.getStatus(), HttpRequest::complete);
                     QTEST(describe(request).mid(linesBeforeTheForm), "expected");
                     QCOMPARE(rest, QByteArray());
                 });
}

void TestMultipartForm::limits() {
    const auto check = [](const QByteArray &parts, HttpRequest::RequestStatus status) {
        if (status == HttpRequest::abortSize)
            QTest::ignoreMessage(QtWarningMsg, "HttpRequest: received too many fields or files");
        QCOMPARE(requestWith(form(parts))->getStatus(), status);
    };
    check(field.repeated(MultipartParser::maxPartCount), HttpRequest::complete);
    check(field.repeated(MultipartParser::maxPartCount + 1), HttpRequest::abortSize);
    check(files(MultipartParser::maxFileCount + 1), HttpRequest::abortSize);
    std::vector<std::unique_ptr<HttpRequest>> requests;
    for (int count = 0; count < MultipartParser::maxProcessFileCount; count += MultipartParser::maxFileCount) {
        requests.push_back(requestWith(form(files(MultipartParser::maxFileCount))));
        QCOMPARE(requests.back()->getStatus(), HttpRequest::complete);
    }
    check(files(1), HttpRequest::abortSize);
    requests.pop_back();
    check(files(1), HttpRequest::complete);
}

void TestMultipartForm::temporaryFilesThatCannotBeWritten() {
    const QByteArray input = form(files(1));
    {
        const NoTemporaryFolder noFolder;
        // Qt on Windows also warns about the name that it could not create.
        if (QSysInfo::kernelType() == "winnt")
            QTest::ignoreMessage(QtWarningMsg, "Empty filename passed to function");
        QTest::ignoreMessage(QtCriticalMsg, "HttpRequest: Error writing temp file for multipart body");
        QCOMPARE(requestWith(input)->getStatus(), HttpRequest::abortBroken);
    }
    // Here the file for the body can be created, but not the file for the form's field.
    const auto request = requestWith(input.left(input.size() - 1));
    QCOMPARE(request->getStatus(), HttpRequest::waitForBody);
    const NoTemporaryFolder noFolder;
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("HttpRequest: error writing temp file, .+"));
    HttpInput last(byte_text::view(input).substr(std::size_t(input.size()) - 1));
    request->readFromSocket(last);
    QCOMPARE(request->getStatus(), HttpRequest::abortBroken);
}

OCELA_TEST(TestMultipartForm)
#include "tst_multipart_form.moc"
