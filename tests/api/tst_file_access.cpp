#include "api/api_client.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

/// Tests which files clients may read and write while only the folder http and the records folder are open to them.
class TestFileAccess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    // Windows cannot remove the current directory.
    void cleanupTestCase() { QVERIFY(QDir::setCurrent(QDir::tempPath())); }

    void files_data();
    void files();
    void recordings_data();
    void recordings();

private:
    void write(const QString &name) const;
    [[nodiscard]] QByteArray absolute(const QString &name) const { return folder_.filePath(name).toUtf8(); }

    QTemporaryDir folder_;
    FakeTracker tracker_;
    OcelaHTTPExchange exchange_{nullptr};
    ApiClient client_;
    AccessRights confined_;
    bool hasLinks_ = false;  ///< whether the test can create links
};

void TestFileAccess::initTestCase() {
    for (const char *folder : {"http/sub", "http2", "secret", "records/sub", "records2"})
        QVERIFY(QDir(folder_.path()).mkpath(folder));
    QVERIFY(QDir::setCurrent(folder_.path()));
    for (const char *name : {"http/a.txt", "http/sub/b.txt", "http/..c.txt", "http2/d.txt", "secret/e.txt"})
        write(name);
    hasLinks_ = QFile::link(folder_.filePath("secret"), "http/folder-link") &&
                QFileInfo("http/folder-link").isSymbolicLink() && QFile::link("../secret/e.txt", "http/file-link") &&
                QFile::link("sub/b.txt", "http/inner-link") &&
                QFile::link(folder_.filePath("secret"), "records/folder-link") &&
                QFile::link("../secret/new.csv", "records/file-link.csv") &&
                QFile::link("sub/new.csv", "records/inner-link.csv");
    confined_.anyFile = false;
    confined_.recordsFolder = folder_.filePath("records");
    exchange_.setTracker(&tracker_);
}

/// Each file contains its own name.
void TestFileAccess::write(const QString &name) const {
    QFile file(folder_.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(name.toUtf8()), name.size());
}

void TestFileAccess::files_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<bool>("confinedToo");
    const auto row = [](const QByteArray &path, const QByteArray &contents, bool confinedToo) {
        QTest::newRow(path) << path << contents << confinedToo;
    };
    row("/a.txt", "http/a.txt", true);
    row("/sub/../a.txt", "http/a.txt", true);
    row("/../http/a.txt", "http/a.txt", true);
    row("/..c.txt", "http/..c.txt", true);
    row("/../secret/e.txt", "secret/e.txt", false);
    row("/sub/../../secret/e.txt", "secret/e.txt", false);
    row("/%2e%2e%2fsecret%2fe.txt", "secret/e.txt", false);
    row("/..|secret|e.txt", "secret/e.txt", false);
    row("/../http2/d.txt", "http2/d.txt", false);
    QTest::newRow("absolute") << "/ROOT/" + absolute("secret/e.txt") << QByteArray("secret/e.txt") << false;
    QTest::newRow("absolute, inside") << "/ROOT/" + absolute("http/a.txt") << QByteArray("http/a.txt") << true;
    if (!hasLinks_)
        return;
    row("/inner-link", "http/sub/b.txt", true);
    row("/file-link", "secret/e.txt", false);
    row("/folder-link/e.txt", "secret/e.txt", false);
}

void TestFileAccess::files() {
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, contents);
    QFETCH(const bool, confinedToo);
    exchange_.setAccessRights({});
    QCOMPARE(client_.get(path).body, contents);

    exchange_.setAccessRights(confined_);
    if (!confinedToo && path.contains("link"))
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot send .*: outside the folder http$"));
    const ApiClient::Reply reply = client_.get(path);
    QCOMPARE(reply.isDocument(), !confinedToo);
    if (confinedToo)
        QCOMPARE(reply.body, contents);
    else
        QVERIFY(!reply.body.contains(contents));
    if (!confinedToo && !path.contains("link")) {
        // A missing file has the same answer, so that clients cannot find out which files exist.
        const ApiClient::Reply missing = client_.get(QByteArray(path).replace(".txt", ".csv"));
        QCOMPARE(missing.answer(), reply.answer());
        QVERIFY(reply.answer()["error"].toString().contains("settings"));
    }
}

void TestFileAccess::recordings_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("accepted");
    const QString records = folder_.filePath("records");
    const auto row = [&](const QString &name, bool accepted) {
        QTest::newRow(qPrintable(name)) << records + name << accepted;
    };
    QTest::newRow("default") << QString() << true;
    row("/a.csv", true);
    row("/sub/a.csv", true);
    row("/../records/a.csv", true);
    row("/missing/a.csv", false);
    row("/../secret/a.csv", false);
    row("2/a.csv", false);
    row("/../a.csv", false);
    row("", false);
    QTest::newRow("relative") << "a.csv" << false;
    QTest::newRow("relative, inside") << "records/a.csv" << true;
    if (!hasLinks_)
        return;
    row("/inner-link.csv", true);
    row("/file-link.csv", false);
    row("/folder-link/a.csv", false);
}

void TestFileAccess::recordings() {
    QFETCH(const QString, path);
    QFETCH(const bool, accepted);
    const QByteArray request = path.isEmpty() ? "/startrecord" : "/startrecord&path=" + QUrl::toPercentEncoding(path);
    for (const AccessRights &rights : {confined_, AccessRights()}) {
        exchange_.setAccessRights(rights);
        const QJsonObject answer = client_.get(request).answer();
        const bool isAccepted = accepted || rights.anyFile;
        QCOMPARE(answer["result"].toBool(), isAccepted);
        QCOMPARE(answer["error"].toString().contains("settings"), !isAccepted);
        QCOMPARE(tracker_.isRecording(), isAccepted);
        tracker_.discardRecord();
    }
}

OCELA_TEST(TestFileAccess)
#include "tst_file_access.moc"
