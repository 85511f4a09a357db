#include "api/api_client.h"
#include "api/hanging_files.h"
#include "api/ocela_http_exchange.h"
#include "core/markers.h"
#include "http/http_listener.h"
#include "support/fake_tracker.h"
#include "support/test_main.h"

#include <QDir>
#include <QGuiApplication>
#include <QJsonArray>
#include <QScreen>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

class TestOcelaHttpExchange : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    // Windows cannot remove the current directory.
    void cleanupTestCase() { QVERIFY(QDir::setCurrent(QDir::tempPath())); }

    void endpoints_data();
    void endpoints();
    void calls_from_other_threads_are_queued_up_to_a_limit();
    void recording_is_written_to_the_requested_path();
    void documents_have_the_same_content_as_the_text();
    void answers_are_consistent_while_trackers_deliver_and_change();
    void handler_creates_a_missing_exchange();
    void requests_that_hang_may_outlive_everything();
    void port_of_another_program_is_reported();

private:
    std::unique_ptr<FakeTracker> tracker_;
    std::unique_ptr<OcelaHTTPExchange> exchange_;
    QTemporaryDir folder_;
};

namespace {

const QByteArray missing = R"({"action":"/%1","error":"File http/%1doesn't exist","result":false})";

QByteArray answerAbout(const QByteArray &file) {
    return QByteArray(missing).replace("%1", file);
}

EyeTrackingSample numbered(int number) {
    EyeTrackingSample sample;
    sample.timestamp = number;
    sample.x = static_cast<float>(number);
    sample.r_pupil_y = number;
    return sample;
}

constexpr int stepMs = 20;

bool isConsistent(const QJsonObject &sample) {
    return sample["x"] == sample["timestamp"] && sample["r_pupil_y"] == sample["timestamp"];
}

/// Returns whether an answer has consistent samples without a gap, or says that no tracker is selected.
bool isConsistentAnswer(const QJsonObject &answer) {
    if (!answer["result"].toBool())
        return answer.keys() == QStringList("result");
    const QJsonArray samples = answer["samples"].toArray();
    int expected = samples.first()["timestamp"].toInt();
    for (const QJsonValue sample : samples) {
        if (!isConsistent(sample.toObject()) || sample["timestamp"] != expected)
            return false;
        expected += stepMs;
    }
    return answer["sampleCount"] == samples.size();
}

void inThreads(int count, const std::function<void()> &work) {
    std::vector<std::thread> threads(static_cast<std::size_t>(count));
    for (std::thread &thread : threads)
        thread = std::thread(work);
    for (std::thread &thread : threads)
        thread.join();
}

}  // namespace

void TestOcelaHttpExchange::init() {
    QVERIFY(QDir::setCurrent(folder_.path()));
    exchange_.reset();  // releases the port
    tracker_ = std::make_unique<FakeTracker>();
    exchange_ = std::make_unique<OcelaHTTPExchange>(nullptr);
    connect(tracker_.get(), &FakeTracker::recordStarted, this, [this] { tracker_->calls << "record"; });
    connect(tracker_.get(), &FakeTracker::recordStopped, this,
            [this](const QString &path) { tracker_->calls << path; });
}

void TestOcelaHttpExchange::endpoints_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("withTracker");
    QTest::addColumn<QByteArray>("withoutTracker");
    QTest::addColumn<QStringList>("calls");
    const auto row = [](const char *name, const QByteArray &path, const QByteArray &withTracker,
                        const QByteArray &withoutTracker, const QStringList &calls) {
        QTest::newRow(name) << path << withTracker << withoutTracker << calls;
    };
    const QByteArray done = R"({"result":true})";
    const QByteArray undone = R"({"result":false})";
    const QByteArray sample = QJsonDocument(EyeTrackingSample().toJson()).toJson(QJsonDocument::Compact);

    row("hello", "/hello", R"({"hello":"there","result":true})", R"({"hello":"there","result":true})", {});
    row("hello must match exactly", "/hello2", answerAbout("hello2"), answerAbout("hello2"), {});
    row("record to the default path", "/startrecord", done, undone, {"record"});
    row("no recording to stop", "/stoprecord", done, undone, {});
    row("no samples", "/lastsamples", R"({"result":true,"sampleCount":0,"samples":[]})", undone, {});
    row("no sample", "/lastsample", R"({"result":true,"sample":)" + sample + "}", undone, {});
    row("calibrate with a suffix", "/calibrateXYZ", done, undone, {"calibrate"});
    row("calibrate the first screen", "/calibrate&screen=1", done, undone, {"calibrate"});
    row("calibrate a missing screen", "/calibrate&screen=2", done, undone, {});
    row("screens count from 1", "/calibrate&screen=0", done, undone, {});
    row("a screen that is not a number", "/calibrate&screen=abc", done, undone, {});
    row("the minimum integer", "/calibrate&screen=-2147483648", done, undone, {});
    row("stop the calibration", "/stopcalibration", done, undone, {"stopCalibration"});
    row("state", "/status", R"({"result":true,"todo":"TODO: Fill in the state"})",
        R"({"result":true,"todo":"TODO: Fill in the state"})", {});
    row("no start page", "/", answerAbout("index.html"), answerAbout("index.html"), {});
    const QByteArray tooLong = R"({"error":"The path is too long","result":false})";
    const QByteArray longest(32766, 'x');
    row("a path of the maximum length", "/" + longest, answerAbout(longest), answerAbout(longest), {});
    row("a path that is too long", "/" + QByteArray(32767, 'x'), tooLong, tooLong, {});
    row("bars are slashes", "/a|b|c", answerAbout("a/b/c"), answerAbout("a/b/c"), {});
    const QByteArray absolute = R"({"action":"/ROOT//none/ROOT/a","error":"File /noneadoesn't exist","result":false})";
    row("an absolute path", "/ROOT|/none/ROOT/a", absolute, absolute, {});
    const QByteArray quoted =
        R"({"action":"/\"\\\u0001é","error":"File http/\"\\\u0001édoesn't exist","result":false})";
    row("quotes, control characters and accents", "/%22%5C%01é", quoted, quoted, {});
    const QByteArray broken = answerAbout("\xEF\xBF\xBD");
    row("invalid UTF-8", "/%FF", broken, broken, {});
}

void TestOcelaHttpExchange::endpoints() {
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, withTracker);
    QFETCH(const QByteArray, withoutTracker);
    QFETCH(const QStringList, calls);
    ApiClient client;
    const auto answer = [&] {
        const ApiClient::Reply reply = client.get(path);
        return reply.isDocument() ? QJsonDocument(reply.answer()).toJson(QJsonDocument::Compact) : reply.head;
    };
    QCOMPARE(answer(), withoutTracker);
    exchange_->setTracker(tracker_.get());
    QCOMPARE(answer(), withTracker);
    QCOMPARE(tracker_->calls, calls);
    if (calls.contains("calibrate"))
        QCOMPARE(tracker_->lastArea, QGuiApplication::primaryScreen()->geometry());
    exchange_->setTracker(nullptr);
    QCOMPARE(answer(), withoutTracker);
}

void TestOcelaHttpExchange::calls_from_other_threads_are_queued_up_to_a_limit() {
    exchange_->setTracker(tracker_.get());
    int accepted = 0;
    const auto ask = [&] {
        ApiClient client;
        for (int i = 0; i < OcelaHTTPExchange::maxPendingCalls + 10; ++i)
            accepted += client.get("/stopcalibration").answer()["result"].toBool();
    };
    for (int round = 1; round <= 2; ++round) {
        inThreads(1, ask);
        QCOMPARE(accepted, round * OcelaHTTPExchange::maxPendingCalls);
        QCOMPARE(tracker_->calls.size(), (round - 1) * OcelaHTTPExchange::maxPendingCalls);
        QCoreApplication::processEvents();
        QCOMPARE(tracker_->calls.size(), round * OcelaHTTPExchange::maxPendingCalls);
    }
}

void TestOcelaHttpExchange::recording_is_written_to_the_requested_path() {
    exchange_->setTracker(tracker_.get());
    const QString path = folder_.filePath(QString::fromUtf8("a b&\u00e4.csv"));
    ApiClient client;
    QVERIFY(client.get("/startrecord&path=" + path.toUtf8().toPercentEncoding()).answer()["result"].toBool());
    QVERIFY(client.get("/stoprecord").answer()["result"].toBool());
    QCOMPARE(tracker_->calls, QStringList({"record", path}));
    QVERIFY(QFileInfo::exists(path));
}

void TestOcelaHttpExchange::documents_have_the_same_content_as_the_text() {
    exchange_->setTracker(tracker_.get());
    for (const int number : {1, 2, 3})
        tracker_->addSample(numbered(number));
    ApiClient client;
    for (const char *path : {"/hello", "/lastsample", "/lastsamples", "/missing"}) {
        const ApiClient::ProcessedRequest processed = client.process(*exchange_, path);
        QCOMPARE(processed.answer, client.get(path).answer());
        QCOMPARE(processed.filePath, QString());
    }
}

void TestOcelaHttpExchange::answers_are_consistent_while_trackers_deliver_and_change() {
    FakeTracker other;
    std::atomic<int> inconsistentCount{0};
    std::atomic<bool> asking{true};
    std::thread devices([&] {
        for (int number = 0; asking; number += stepMs) {
            tracker_->addSample(numbered(number));
            other.addSample(numbered(number));
        }
    });
    std::thread choice([&] {
        for (int i = 0; asking; ++i)
            exchange_->setTracker(i % 3 == 0 ? tracker_.get() : i % 3 == 1 ? &other : nullptr);
    });
    inThreads(4, [&] {
        ApiClient client;
        for (int i = 0; i < 100; ++i) {
            const QJsonObject last = client.get("/lastsample").answer();
            inconsistentCount +=
                last["result"].toBool() != last.contains("sample") || !isConsistent(last["sample"].toObject());
            inconsistentCount += !isConsistentAnswer(client.get("/lastsamples").answer());
        }
    });
    asking = false;
    devices.join();
    choice.join();
    QCOMPARE(inconsistentCount.load(), 0);
}

void TestOcelaHttpExchange::handler_creates_a_missing_exchange() {
    exchange_.reset();
    inThreads(4, [] { QCOMPARE(ApiClient().get("/hello").answer()["hello"].toString(), QString("there")); });
    exchange_.reset(&OcelaHTTPExchange::instance());
    QCOMPARE(exchange_->thread(), thread());
    QCoreApplication::processEvents();  // creates the listener
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", 3735);
    QTRY_COMPARE(socket.state(), QAbstractSocket::ConnectedState);
}

void TestOcelaHttpExchange::requests_that_hang_may_outlive_everything() {
    if (!hanging_files::isSupported())
        QSKIP("needs a file system that hangs");
    const QString share = folder_.filePath("share");
    QVERIFY(QDir().mkpath(share));
    exchange_->setAccessRights({true, true, false, {}, share});
    auto markers = std::make_unique<Markers>(nullptr);
    exchange_->openProgramApi({tracker_.get()}, *markers, "journals");
    exchange_->setTracker(tracker_.get());
    const QByteArray path = share.toUtf8() + "/new.csv";
    const QByteArray body = R"({"path":")" + path + R"("})";
    const QByteArray requests[] = {
        "GET /startrecord&path=" + path + " HTTP/1.1\r\n\r\n",
        "POST /api/v1/recording HTTP/1.1\r\nContent-Type: application/json\r\nContent-Length: " +
            QByteArray::number(body.size()) + "\r\n\r\n" + body,
    };
    auto hang = std::make_unique<hanging_files::Hang>("/share");
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (const QByteArray &request : requests) {
        clients.push_back(std::make_unique<QTcpSocket>());
        clients.back()->connectToHost("127.0.0.1", OcelaHTTPExchange::port);
        clients.back()->write(request);
        QTest::ignoreMessage(QtWarningMsg, "HttpConnectionHandler: a request is still running and is left behind");
    }
    const int count = static_cast<int>(clients.size());
    QTRY_COMPARE(hang->blockedThreadCount(), count);
    exchange_.reset();
    markers.reset();
    tracker_.reset();
    QCOMPARE(HttpListener::leftThreadCount(), count);
    hang.reset();
    QTRY_COMPARE(HttpListener::leftThreadCount(), 0);
}

void TestOcelaHttpExchange::port_of_another_program_is_reported() {
    QCOMPARE(exchange_->listenProblem(), QString());
    exchange_.reset();
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, OcelaHTTPExchange::port));
    exchange_ = std::make_unique<OcelaHTTPExchange>(nullptr);
    QCOMPARE(exchange_->listenProblem(), QString("Port 3735 is used by another program"));
}

OCELA_TEST(TestOcelaHttpExchange)
#include "tst_ocela_http_exchange.moc"
