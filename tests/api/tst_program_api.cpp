#include "api/program_client.h"
#include "core/eye_tracking_csv.h"
#include "core/markers.h"
#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <memory>
#include <thread>

namespace {

class NamedTracker : public FakeTracker {
public:
    explicit NamedTracker(const QString &name) : name_(name) {}
    [[nodiscard]] QString name() const override { return name_; }
    void calibrate(QRect area) override {
        FakeTracker::calibrate(area);
        Q_EMIT calibrationStarted();
    }

private:
    const QString name_;
};

/// A record file without rows.
QByteArray emptyRecord() {
    QStringList names;
    for (const RecordColumn &column : EyeTrackingCSV::columns())
        names << column.name;
    return names.join(',').toLatin1() + "\r\n";
}

QVector<int> range(int first, int count) {
    QVector<int> numbers;
    for (int number = first; number < first + count; ++number)
        numbers.append(number);
    return numbers;
}

}  // namespace

/// The API for programs, over the network, with trackers that have no device.
class TestProgramApi : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void requests_data();
    void requests();
    void requests_at_the_start_are_refused();
    void request_has_no_effect_after_a_timeout();
    void only_allowed_origins_are_answered();

    void recording_is_started_once_and_saved();
    void recording_that_cannot_be_saved_is_reported();
    void recordings_are_confined_if_the_settings_say_so();
    void record_files_are_listed_and_sent();
    void areas_are_saved_beside_a_record_file();

    void trackers_are_selected_after_the_answer();
    void calibrations_are_followed();
    void markers_are_stamped();
    void samples_without_a_number_are_recent();

    void stream_has_each_sample_once();
    void stream_resumes_data();
    void stream_resumes();
    void stream_follows_the_selected_tracker();
    void selections_are_resumed_data();
    void selections_are_resumed();
    void stalled_reader_is_told_what_it_missed();
    void stream_has_markers_also_after_a_break();
    void stream_shows_changed_rights();
    void streams_are_limited_and_end_with_the_program();

private:
    void addSamples(NamedTracker &tracker, int count, int stepMs = 1);
    /// Executes "A3 +B B2 ...": selects a tracker, or adds samples to it.
    void execute(const QByteArray &steps);
    [[nodiscard]] QByteArray eventId(int number) const {
        return exchange_->programApi().run().id() + ':' + QByteArray::number(number) + ":0";
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<NamedTracker> first_;
    std::unique_ptr<NamedTracker> second_;
    std::unique_ptr<Markers> markers_;
    std::unique_ptr<OcelaHTTPExchange> exchange_;
    qint64 timestamp_ = 0;
    int base_ = 0;  ///< the newest number before the test
};

void TestProgramApi::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    first_ = std::make_unique<NamedTracker>("first");
    second_ = std::make_unique<NamedTracker>("second");
    for (NamedTracker *tracker : {first_.get(), second_.get()})
        tracker->setRecordsFolder(folder_->path());
    markers_ = std::make_unique<Markers>(nullptr);
    markers_->setTrackers({first_.get(), second_.get()});
    markers_->setSelectedTracker(first_.get());
    exchange_ = std::make_unique<OcelaHTTPExchange>(nullptr);
    exchange_->openProgramApi({first_.get(), second_.get()}, *markers_, "journals");
    // Numbers count the samples of the whole process.
    NamedTracker probe("probe");
    probe.addSample({});
    base_ = static_cast<int>(probe.lastNumberedSample().number);
    exchange_->setTracker(first_.get());
}

void TestProgramApi::cleanup() {
    exchange_.reset();
    markers_.reset();
    first_.reset();
    second_.reset();
}

void TestProgramApi::addSamples(NamedTracker &tracker, int count, int stepMs) {
    for (int i = 0; i < count; ++i) {
        EyeTrackingSample sample;
        sample.timestamp = timestamp_ += stepMs;
        tracker.addSample(sample);
    }
}

void TestProgramApi::requests_data() {
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("contained");
    const auto row = [](const char *name, const char *method, const char *target, const QByteArray &body, int status,
                        const char *contained) {
        QTest::newRow(name) << QByteArray(method) << QByteArray(target) << body << status << QByteArray(contained);
    };
    row("state", "GET", "/state", "", 200, R"("name":"first")");
    row("an encoded path", "GET", "/st%61te", "", 200, R"("name":"first")");
    row("a trailing slash", "GET", "/state/", "", 404, "no such path");
    row("the root", "GET", "", "", 404, "no such path");
    row("a path of the simple API", "GET", "/hello", "", 404, "no such path");
    row("an unknown method", "BREW", "/state", "", 405, "Allow: GET, OPTIONS\r\n");
    row("HEAD", "HEAD", "/state", "", 405, "Allow: GET, OPTIONS\r\n");
    row("two methods", "GET", "/recording", "", 405, "Allow: POST, DELETE, OPTIONS\r\n");
    row("a path with a name", "DELETE", "/recordings/a.csv", "", 405, "Allow: GET, PUT, OPTIONS\r\n");
    row("options", "OPTIONS", "/events", "", 204, "Allow: POST, OPTIONS\r\n");
    row("options of nothing", "OPTIONS", "/nothing", "", 404, "no such path");
    row("an empty query", "GET", "/state?", "", 200, "{");
    row("an unknown parameter", "GET", "/state?verbose=1", "", 422, R"(parameter \"verbose\")");
    row("a repeated parameter", "GET", "/samples?limit=1&limit=1", "", 400, "more than once");
    row("a negative number", "GET", "/samples?after=-1", "", 400, "whole number");
    row("an empty number", "GET", "/samples?after=", "", 400, "whole number");
    row("an id that is damaged", "GET", "/stream?after=run:1:", "", 400, "id of an event");
    row("a number that overflows", "GET", "/samples?after=18446744073709551616", "", 422, "must be from");
    row("no samples", "GET", "/samples", "", 200, R"("missed":0,"samples":[]})");
    row("a number of another run", "GET", "/samples?after=999999999", "", 200, R"("missed":null,"samples":[]})");
    row("a parameter in the body", "PUT", "/tracker", R"({"name":"third"})", 422, "no tracker of this name");
    row("a missing key", "PUT", "/tracker", "{}", 422, R"(\"name\" must be a text)");
    row("a missing body", "POST", "/events", "", 422, R"(\"text\" must be a text)");
    row("null", "POST", "/events", R"({"text":null})", 422, R"(\"text\" must be a text)");
    row("an unknown key", "POST", "/events", R"({"text":"a","tiem":1})", 422, "Known are: text, time.");
    row("JSON that ends early", "POST", "/events", R"({"text":"a")", 400, "not JSON");
    row("invalid UTF-8", "POST", "/events", "{\"text\":\"\xFF\"}", 400, "not JSON");
    row("a text instead of an object", "POST", "/events", R"( "a" )", 422, "must be a JSON object");
    row("null instead of an object", "PUT", "/tracker", "null", 422, "must be a JSON object");
    row("a list", "POST", "/events", R"(["a"])", 422, "must be a JSON object");
    row("two values", "POST", "/events", "1,2", 400, "not JSON");
    row("a text without quotes", "POST", "/events", "a", 400, "not JSON");
    const QByteArray longest = QByteArray("\xF0\x9F\x91\x81").repeated(1000);
    row("a marker of the maximum length", "POST", "/events", R"({"text":")" + longest + "\"}", 201, R"("number":0)");
    row("a marker that is too long", "POST", "/events", R"({"text":")" + longest + "x\"}", 422, "1 to 1000 characters");
    row("a body that is too long", "POST", "/events", R"({"text":")" + QByteArray(65536, 'x') + "\"}", 413, "65536");
    row("a time before the start", "POST", "/events", R"({"text":"a","time":0})", 422, "not in the future");
    row("a time in the future", "POST", "/events", R"({"text":"a","time":9e15})", 422, "not in the future");
    row("two targets", "POST", "/recording", R"({"name":"a","path":"/tmp/a"})", 422, "exclude each other");
    const QByteArray missing = QDir::rootPath().toLatin1() + "missing/a.csv";
    row("a missing folder", "POST", "/recording", R"({"path":")" + missing + "\"}", 422, "There is no folder");
    row("a relative path", "POST", "/recording", R"({"path":"a.csv"})", 422, "absolute path");
    row("an invalid name", "POST", "/recording", R"({"name":"../a"})", 422, "name of a file");
    row("no recording", "DELETE", "/recording", "", 409, "not recording");
    row("a tracker that is not connected", "POST", "/calibration", "", 409, "not connected");
    row("no such screen", "POST", "/calibration", R"({"screen":9})", 422, "There is no screen 9");
    row("no calibration", "DELETE", "/calibration", "", 409, "No calibration");
    row("no record file", "GET", "/recordings/a.csv", "", 404, "no record file");
    row("no events file", "GET", "/recordings/a.csv?file=events", "", 404, "beside a record file");
    row("another kind of file", "GET", "/recordings/a.csv?file=journal", "", 422, "record, samples, events or areas");
    row("no areas file", "GET", "/recordings/a.csv?file=areas", "", 404, "beside a record file");
    const QByteArray areas = R"({"format":"Ocela areas","areas":[]})";
    row("areas of no record file", "PUT", "/recordings/a.csv?file=areas", areas, 404, "no record file");
    row("another file to replace", "PUT", "/recordings/a.csv?file=events", areas, 422, "cannot be replaced");
    row("no areas to save", "PUT", "/recordings/a.csv?file=areas", R"({"format":"Ocela areas"})", 422, "an array");
    row("another format", "PUT", "/recordings/a.csv?file=areas", R"({"format":"a","areas":[]})", 422, "areas file");
    row("a description", "GET", "/openapi.json", "", 200, R"("openapi": "3.1.0")");
}

void TestProgramApi::requests() {
    QFETCH(const QByteArray, method);
    QFETCH(const QByteArray, target);
    QFETCH(const QByteArray, body);
    QFETCH(const int, status);
    QFETCH(const QByteArray, contained);
    ProgramClient client;
    const ProgramReply reply = client.ask(method, target, body);
    QCOMPARE(reply.status, status);
    QVERIFY2((reply.head + reply.body).contains(contained), reply.head + reply.body);
    QVERIFY(reply.head.contains("Cache-Control: no-store\r\n"));
    const QByteArray type = status >= 400 ? "application/problem+json" : "application/json";
    QCOMPARE(reply.head.contains("Content-Type: " + type + "\r\n"), status != 204);
    if (status >= 400 && method != "HEAD")
        QCOMPARE(reply.json()["status"].toInt(), status);
    // The connection is still usable.
    QCOMPARE(client.ask("GET", "/state").status, 200);
}

void TestProgramApi::requests_at_the_start_are_refused() {
    exchange_.reset();  // releases the port
    exchange_ = std::make_unique<OcelaHTTPExchange>(nullptr);
    const ProgramReply reply = ProgramClient().ask("GET", "/state");
    QCOMPARE(reply.status, 503);
    QVERIFY(reply.head.contains("Retry-After: 1\r\n"));
}

void TestProgramApi::request_has_no_effect_after_a_timeout() {
    exchange_.reset();  // releases the port
    exchange_ = std::make_unique<OcelaHTTPExchange>(nullptr);
    api_v1::Router &api = exchange_->programApi();
    api_v1::ProgramControl control({first_.get()}, "journals", api.run(), exchange_->access(), api.state(),
                                   std::chrono::milliseconds(500));
    control.setTracker(first_.get());
    api.open(control, *markers_);
    ProgramClient client;
    QCOMPARE(client.ask("GET", "/state").status, 200);
    // This thread is the GUI thread, and executes no call until the answer is there.
    client.send("POST", "/recording", R"({"name":"a"})");
    QVERIFY(client.socket().waitForReadyRead(30000));
    const ProgramReply reply = client.receive();
    QCOMPARE(reply.status, 503);
    QVERIFY(reply.head.contains("Retry-After: 5\r\n"));
    QCOMPARE(client.ask("GET", "/state").json()["recordings"].toArray().size(), 0);
    QCOMPARE(client.ask("POST", "/recording", R"({"name":"b"})").status, 201);
    QCOMPARE(first_->runningRecording()->path, folder_->filePath("b.csv"));
    api.close();
    exchange_.reset();
}

void TestProgramApi::only_allowed_origins_are_answered() {
    AccessRights rights;
    rights.allowedOrigins = QStringList{"https://lab.example"};
    exchange_->setAccessRights(rights);
    ProgramClient client;
    const QByteArray foreign = "Origin: https://elsewhere.example\r\n";
    const ProgramReply refused = client.ask("POST", "/recording", {}, foreign);
    QCOMPARE(refused.status, 403);
    QVERIFY(!refused.head.contains("Access-Control"));
    QVERIFY(!first_->isRecording());
    QVERIFY(refused.head.contains("Connection: close\r\n"));
    QCOMPARE(ProgramClient().ask("OPTIONS", "/recording", {}, foreign).status, 403);

    const QByteArray allowed = "Origin: https://lab.example\r\n";
    const QByteArray named = "Access-Control-Allow-Origin: https://lab.example\r\n";
    ProgramClient page;
    const ProgramReply state = page.ask("GET", "/state", {}, allowed);
    QCOMPARE(state.status, 200);
    QVERIFY(state.head.contains(named) && state.head.contains("Vary: Origin\r\n"));
    QVERIFY(page.ask("GET", "/nothing", {}, allowed).head.contains(named));
    const ProgramReply preflight = page.ask("OPTIONS", "/recording", {}, allowed);
    QVERIFY(preflight.head.contains(named));
    QVERIFY(preflight.head.contains("Access-Control-Allow-Methods: POST, DELETE, OPTIONS\r\n"));
    QVERIFY(preflight.head.contains("Access-Control-Allow-Headers: Content-Type,"));

    // A stream ends when the user takes the right back.
    ProgramClient stream;
    stream.send("GET", "/stream", {}, allowed);
    QTRY_VERIFY(stream.socket().bytesAvailable() > 0);
    exchange_->setAccessRights(AccessRights());
    QTRY_VERIFY(stream.socket().peek(stream.socket().bytesAvailable()).endsWith("\r\n0\r\n\r\n"));
}

void TestProgramApi::recording_is_started_once_and_saved() {
    ProgramClient one;
    ProgramClient two;
    one.send("POST", "/recording", R"({"name":"P01"})");
    two.send("POST", "/recording", R"({"name":"P02.CSV"})");
    const QList<ProgramReply> replies{one.receive(), two.receive()};
    const int winner = replies[0].status == 201 ? 0 : 1;
    QCOMPARE(replies[winner].status, 201);
    QCOMPARE(replies[1 - winner].status, 409);
    const QString path = folder_->filePath(winner == 0 ? "P01.csv" : "P02.CSV");
    QCOMPARE(replies[winner].json()["path"].toString(), path);

    // A recording goes on while another tracker is selected.
    exchange_->setTracker(second_.get());
    QCOMPARE(one.ask("POST", "/recording").status, 201);
    QCOMPARE(one.ask("GET", "/state").json()["recordings"].toArray().size(), 2);
    exchange_->setTracker(first_.get());

    addSamples(*first_, 3);
    const QJsonObject running = one.ask("GET", "/state").json()["recordings"].toArray()[0].toObject();
    QCOMPARE(running["path"].toString(), path);
    QCOMPARE(running["samples"].toInt(), 3);
    QVERIFY(writeFile(path, "another file"));
    const ProgramReply saved = one.ask("DELETE", "/recording");
    QCOMPARE(saved.status, 200);
    QCOMPARE(saved.json()["path"].toString(), path);
    QCOMPARE(saved.json()["samples"].toInt(), 3);
    QCOMPARE(EyeTrackingCSV(path, true).rows().size(), std::size_t(3));
    QCOMPARE(QDir(folder_->path()).entryList({"*_1.*"}, QDir::Files).size(), 1);
    const QJsonObject last = one.ask("GET", "/state").json()["lastRecording"].toObject();
    QCOMPARE(last["path"].toString(), path);
    QVERIFY(last["saved"].toBool());
}

void TestProgramApi::recording_that_cannot_be_saved_is_reported() {
    const QString folder = folder_->filePath("removed");
    QVERIFY(QDir().mkpath(folder));
    ProgramClient client;
    QCOMPARE(client.ask("POST", "/recording", R"({"path":")" + folder.toUtf8() + R"(/a.csv"})").status, 201);
    QVERIFY(QDir(folder).removeRecursively());
    first_->setRecordsFolder(folder);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot save .*"));
    const ProgramReply reply = client.ask("DELETE", "/recording");
    QCOMPARE(reply.status, 500);
    QVERIFY(reply.json()["detail"].toString().contains("journals"));
    const QJsonObject last = client.ask("GET", "/state").json()["lastRecording"].toObject();
    QVERIFY(!last["saved"].toBool());
    QVERIFY(!last["error"].toString().isEmpty());

    QVERIFY(first_->saveUnsaved(folder_->path()));
    QCOMPARE(client.ask("GET", "/state").json()["lastRecording"].toObject()["path"].toString(),
             folder_->filePath("a.csv"));
}

void TestProgramApi::recordings_are_confined_if_the_settings_say_so() {
    AccessRights rights;
    rights.anyFile = false;
    rights.recordsFolder = folder_->path();
    exchange_->setAccessRights(rights);
    const QTemporaryDir outside;
    QVERIFY(QDir(folder_->path()).mkdir("inside"));
    ProgramClient client;
    const auto start = [&](const QString &path) {
        return client.ask("POST", "/recording", R"({"path":")" + path.toUtf8() + R"("})").status;
    };
    QCOMPARE(start(outside.filePath("a.csv")), 422);
    QCOMPARE(start(folder_->path() + "/../a.csv"), 422);
    QCOMPARE(start(folder_->path() + "_a.csv"), 422);
    QCOMPARE(start(folder_->filePath("inside/a.csv")), 201);
}

void TestProgramApi::record_files_are_listed_and_sent() {
    const QByteArray content = emptyRecord() + "1,0\r\n";
    QVERIFY(writeFile(folder_->filePath("a.csv"), content));
    QVERIFY(writeFile(folder_->filePath("other.csv"), "Timestamp,Time\r\n"));
    QVERIFY(writeFile(folder_->filePath("a.txt"), content));
    QVERIFY(QFile::link(folder_->filePath("a.csv"), folder_->filePath("link.csv")));
    QVERIFY(QDir(folder_->path()).mkdir("folder.csv"));

    ProgramClient client;
    const QJsonArray files = client.ask("GET", "/recordings").json()["recordings"].toArray();
    QCOMPARE(files.size(), 1);
    QCOMPARE(files[0].toObject()["name"].toString(), QString("a.csv"));
    QCOMPARE(files[0].toObject()["bytes"].toInt(), content.size());
    for (const char *name : {"other.csv", "a.txt", "link.csv", "folder.csv", "A.csv", "*.csv", "./a.csv", "a.csv/",
                             "%2e%2e/a.csv", "a.csv%00"})
        QCOMPARE(client.ask("GET", QByteArray("/recordings/") + name).status, 404);

    QVERIFY(writeFile(folder_->filePath("b+c d.csv"), content));
    QCOMPARE(client.ask("GET", "/recordings/b+c%20d.csv?").status, 200);
    QCOMPARE(client.ask("GET", "/recordings/b+c+d.csv").status, 404);

    const QByteArray events = "/recordings/a.csv?file=events";
    QCOMPARE(client.ask("GET", events).status, 404);
    QVERIFY(QFile::link(folder_->filePath("a.txt"), folder_->filePath("a_events.csv")));
    // On Windows it is a shortcut, which is an ordinary file.
    QCOMPARE(client.ask("GET", events).status, QFileInfo(folder_->filePath("a_events.csv")).isSymLink() ? 404 : 200);
    QVERIFY(QFile::remove(folder_->filePath("a_events.csv")));
    QVERIFY(writeFile(folder_->filePath("a_events.csv"), "onset"));
    QVERIFY(writeFile(folder_->filePath("a_samples.csv"), "Number"));
    QVERIFY(writeFile(folder_->filePath("other_events.csv"), "onset"));
    QCOMPARE(client.ask("GET", events).body, QByteArray("onset"));
    QCOMPARE(client.ask("GET", "/recordings/a.csv?file=samples").body, QByteArray("Number"));
    QCOMPARE(client.ask("GET", "/recordings/a.csv?file=record").body, content);
    for (const char *name : {"a_events.csv", "a_events.csv?file=events", "other.csv?file=events"})
        QCOMPARE(client.ask("GET", QByteArray("/recordings/") + name).status, 404);

    const ProgramReply whole = client.ask("GET", "/recordings/%61.csv");
    QCOMPARE(whole.status, 200);
    QCOMPARE(whole.body, content);
    const int tagStart = whole.head.indexOf("ETag: ") + 6;
    const QByteArray tag = whole.head.mid(tagStart, whole.head.indexOf('\r', tagStart) - tagStart);
    const auto get = [&](const QByteArray &headers) { return client.ask("GET", "/recordings/a.csv", {}, headers); };
    QCOMPARE(get("If-None-Match: " + tag + "\r\n").status, 304);
    const ProgramReply end = get("Range: bytes=-5\r\nIf-Range: " + tag + "\r\n");
    QCOMPARE(end.status, 206);
    QCOMPARE(end.body, content.right(5));
    const int size = content.size();
    QVERIFY(end.head.contains(
        QString("Content-Range: bytes %1-%2/%3\r\n").arg(size - 5).arg(size - 1).arg(size).toLatin1()));
    QCOMPARE(get("Range: bytes=-5\r\nIf-Range: \"older\"\r\n").body, content);
    QCOMPARE(get("Range: bytes=9999-\r\n").status, 416);
}

void TestProgramApi::areas_are_saved_beside_a_record_file() {
    QVERIFY(writeFile(folder_->filePath("a.csv"), emptyRecord() + "1,0\r\n"));
    const QByteArray path = "/recordings/a.csv?file=areas";
    const QString file = folder_->filePath("a_areas.json");
    ProgramClient client;
    for (const char *areas : {"[]", "[ {\"name\": \"\xD0\x96\"} ]"}) {
        const QByteArray content = QByteArray("{\"format\": \"Ocela areas\",\n\"areas\":") + areas + '}';
        const ProgramReply saved = client.ask("PUT", path, content);
        QCOMPARE(saved.status, 200);
        QCOMPARE(saved.json()["path"].toString(), file);
        QCOMPARE(readFile(file), content);
        const ProgramReply read = client.ask("GET", path);
        QCOMPARE(read.body, content);
        QVERIFY(read.head.contains("Content-Type: application/json\r\n"));
    }
    QCOMPARE(QDir(folder_->path()).entryList(QDir::Files), QStringList({"a.csv", "a_areas.json"}));

    QVERIFY(QFile::remove(file));
    QVERIFY(QDir(folder_->path()).mkdir("a_areas.json"));
    const QByteArray content = R"({"format":"Ocela areas","areas":[]})";
    QVERIFY(client.ask("PUT", path, content).body.contains("The areas cannot be saved: "));
    QVERIFY(QDir(folder_->path()).rmdir("a_areas.json"));
    const QString other = folder_->filePath("other.json");
    QVERIFY(writeFile(other, "other"));
    if (QFile::link(other, file) && QFileInfo(file).isSymLink()) {
        QCOMPARE(client.ask("PUT", path, content).status, 500);
        QCOMPARE(client.ask("GET", path).status, 404);
    }
    QCOMPARE(readFile(other), QByteArray("other"));
}

void TestProgramApi::trackers_are_selected_after_the_answer() {
    const QSignalSpy wanted(exchange_.get(), &OcelaHTTPExchange::trackerWanted);
    ProgramClient client;
    QCOMPARE(client.ask("PUT", "/tracker", R"({"name":"first"})").status, 202);
    QCOMPARE(client.ask("PUT", "/tracker", R"({"name":"second"})").status, 202);
    QTRY_COMPARE(wanted.size(), 1);
    QCOMPARE(wanted[0][0].toInt(), 1);
    exchange_->setTracker(nullptr);
    QVERIFY(client.ask("GET", "/state").json()["tracker"].isNull());
    QCOMPARE(client.ask("POST", "/recording").status, 409);
    QCOMPARE(client.ask("GET", "/samples").status, 200);
}

void TestProgramApi::calibrations_are_followed() {
    first_->setConnected(true);
    ProgramClient client;
    const auto calibration = [&] { return client.ask("GET", "/state").json()["calibration"].toObject(); };
    QVERIFY(calibration()["last"].isNull());
    // The second client asks before the first calibration has begun.
    ProgramClient other;
    client.send("POST", "/calibration", R"({"screen":1})");
    other.send("POST", "/calibration");
    QVector<int> statuses{client.receive().status, other.receive().status};
    std::sort(statuses.begin(), statuses.end());
    QCOMPARE(statuses, (QVector<int>{202, 409}));
    QTRY_COMPARE(first_->calls, QStringList("calibrate"));
    QVERIFY(calibration()["running"].toBool());
    QCOMPARE(client.ask("POST", "/calibration").status, 409);
    QCOMPARE(client.ask("DELETE", "/calibration").status, 202);
    QTRY_COMPARE(first_->calls.last(), QString("stopCalibration"));
    Q_EMIT first_->calibrationFinished(EyetrackerInterface::CalibrationResult::Cancelled);
    QVERIFY(!calibration()["running"].toBool());
    QCOMPARE(calibration()["last"].toObject()["result"].toString(), QString("cancelled"));
}

void TestProgramApi::markers_are_stamped() {
    ProgramClient client;
    addSamples(*first_, 2);
    const double now = client.ask("GET", "/state").json()["time"].toDouble();
    const QJsonObject marker = client.ask("POST", "/events", R"({"text":"now"})").json();
    QVERIFY(marker["time"].toDouble() >= now);
    QCOMPARE(marker["number"].toInt(), base_ + 2);
    const QByteArray body = R"({"text":"earlier","time":)" + QByteArray::number(now, 'f', 3) + '}';
    const QJsonObject stamped = client.ask("POST", "/events", body).json();
    QVERIFY(qAbs(stamped["time"].toDouble() - now) < 0.002);
}

void TestProgramApi::samples_without_a_number_are_recent() {
    addSamples(*first_, 3);
    QElapsedTimer timer;
    timer.start();
    ProgramClient client;
    const auto samples = [&client] { return client.ask("GET", "/samples").json(); };
    QCOMPARE(samples()["samples"].toArray().size(), 3);
    // The tracker delivers no more samples, so they stay in its window.
    QTRY_COMPARE(samples()["samples"].toArray().size(), 0);
    QVERIFY(timer.elapsed() > EyetrackerInterface::sampleWindowMs - 100);
    QCOMPARE(samples()["next"].toInt(), base_ + 3);
    const QByteArray query = "?after=" + QByteArray::number(base_);
    QCOMPARE(client.ask("GET", "/samples" + query).json()["samples"].toArray().size(), 3);
}

void TestProgramApi::stream_has_each_sample_once() {
    StreamClient stream;
    QCOMPARE(stream.next().name, QByteArray("state"));
    std::thread device([this] { addSamples(*first_, 2000); });
    const QVector<int> numbers = stream.numbers(2000);
    device.join();
    QCOMPARE(numbers, range(base_ + 1, 2000));

    // The samples of a tracker that is not selected are not sent.
    addSamples(*second_, 5);
    addSamples(*first_, 1);
    const StreamClient::Event event = stream.next("samples");
    QCOMPARE(StreamClient::numbersOf(event), range(base_ + 2006, 1));
    QCOMPARE(event.id, eventId(base_ + 2006));
    // States follow once a second.
    QCOMPARE(stream.next("state").data["tracker"]["newest"].toInt(), base_ + 2006);
}

void TestProgramApi::stream_resumes_data() {
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QByteArray>("lastEventId");
    QTest::addColumn<int>("firstNumber");
    QTest::addColumn<QByteArray>("missed");
    // There are 1000 samples, of which the newest 201 are in the window. "N-5" is the fifth newest number.
    QTest::newRow("no number") << QByteArray() << QByteArray() << 1001 << QByteArray();
    QTest::newRow("a number") << QByteArray("?after=N-5") << QByteArray() << 996 << QByteArray();
    QTest::newRow("a number with its run") << QByteArray("?after=RUN:N-5") << QByteArray() << 996 << QByteArray();
    QTest::newRow("an id as the number") << QByteArray("?after=RUN%3AN-5:0") << QByteArray() << 996 << QByteArray();
    QTest::newRow("a number with another run")
        << QByteArray("?after=other:N-5") << QByteArray() << 1001 << QByteArray("null");
    QTest::newRow("an id") << QByteArray() << QByteArray("RUN:N-5") << 996 << QByteArray();
    QTest::newRow("the id is newer") << QByteArray("?after=N-9") << QByteArray("RUN:N-5") << 996 << QByteArray();
    QTest::newRow("an old id") << QByteArray() << QByteArray("RUN:N-900") << 800 << QByteArray("699");
    QTest::newRow("another run") << QByteArray() << QByteArray("other:N-5") << 1001 << QByteArray("null");
    QTest::newRow("no id") << QByteArray() << QByteArray("x") << 1001 << QByteArray("null");
    QTest::newRow("a number of another run")
        << QByteArray("?after=N-0000000") << QByteArray() << 1001 << QByteArray("null");
}

void TestProgramApi::stream_resumes() {
    QFETCH(QByteArray, query);
    QFETCH(QByteArray, lastEventId);
    QFETCH(const int, firstNumber);
    QFETCH(const QByteArray, missed);
    addSamples(*first_, 1000, 10);
    for (QByteArray *text : {&query, &lastEventId}) {
        text->replace("RUN", exchange_->programApi().run().id());
        text->replace("N-0000000", QByteArray::number(base_ + 10000000));
        for (const int age : {5, 900, 9})
            text->replace("N-" + QByteArray::number(age), QByteArray::number(base_ + 1000 - age));
    }
    StreamClient stream(query, lastEventId);
    QCOMPARE(stream.next().name, QByteArray("state"));
    addSamples(*first_, 1, 10);
    StreamClient::Event event = stream.next();
    if (!missed.isEmpty()) {
        QCOMPARE(event.name, QByteArray("missed"));
        // The last sample may be stored before the stream reads the window, which then has dropped one sample more.
        const QJsonValue count = event.data["count"];
        QVERIFY(missed == "null" ? count.isNull() : count.toInt() - missed.toInt() <= 1);
        event = stream.next();
    }
    const int number = StreamClient::numbersOf(event).value(0);
    QVERIFY2(number - (base_ + firstNumber) <= (missed == "699" ? 1 : 0) && number >= base_ + firstNumber,
             QByteArray::number(number - base_));
}

void TestProgramApi::stream_follows_the_selected_tracker() {
    addSamples(*second_, 5);  // before it is selected
    StreamClient stream;
    QCOMPARE(stream.next().data["tracker"]["name"].toString(), QString("first"));
    QVector<int> numbers;
    int state = 0;
    std::thread device([this] {
        for (int i = 0; i < 100; ++i)
            addSamples(*first_, 1);
    });
    device.join();
    exchange_->setTracker(second_.get());
    addSamples(*first_, 3);  // late samples of the earlier tracker
    addSamples(*second_, 10);
    while (numbers.size() < 110) {
        const StreamClient::Event event = stream.next();
        QVERIFY(!event.name.isEmpty());
        if (event.name == "samples")
            numbers += StreamClient::numbersOf(event);
        else if (event.data["tracker"]["name"].toString() == "second" && state++ == 0)
            QCOMPARE(numbers, range(base_ + 6, 100));
    }
    QCOMPARE(numbers, range(base_ + 6, 100) + range(base_ + 109, 10));
    QVERIFY(state > 0);
}

void TestProgramApi::execute(const QByteArray &steps) {
    for (const QByteArray &step : steps.split(' ')) {
        NamedTracker &tracker = step.contains('A') ? *first_ : *second_;
        if (step.startsWith('+'))
            exchange_->setTracker(&tracker);
        else
            addSamples(tracker, step.mid(1).toInt());
    }
}

void TestProgramApi::selections_are_resumed_data() {
    QTest::addColumn<QByteArray>("steps");
    QTest::addColumn<int>("after");
    QTest::addColumn<QByteArray>("missed");
    QTest::addColumn<QVector<int>>("numbers");
    const auto row = [](const char *name, const QByteArray &steps, int after, const QByteArray &missed,
                        const QVector<int> &numbers) { QTest::newRow(name) << steps << after << missed << numbers; };
    QByteArray toAndFro = "A5";
    for (int i = 0; i < 60; ++i)
        toAndFro += " +B B1 +A A1";
    // "A" is selected before the first step.
    row("one tracker", "A5", 2, "0", {3, 4, 5});
    row("late samples do not count", "A5 +B A2 B3", 5, "0", {8, 9, 10});
    row("the earlier tracker", "A5 +B B3", 2, "3", {6, 7, 8});
    row("samples before the selection", "B5 A5 +B B3", 5, "5", {11, 12, 13});
    row("between two trackers", "A5 +B B4 A3 +A A2", 5, "4", {13, 14});
    row("from A to A", "A5 +B B4 +A A2", 3, "6", {10, 11});
    row("no samples yet", "A5 +B", 3, "2", {});
    row("older samples than the window", "A3000 +B B3000", 500, "3499", range(4000, 2001));
    row("many selections", toAndFro, 100, "24", {125});
    row("forgotten selections", toAndFro, 5, "null", {125});
}

void TestProgramApi::selections_are_resumed() {
    QFETCH(const QByteArray, steps);
    QFETCH(const int, after);
    QFETCH(const QByteArray, missed);
    QFETCH(QVector<int>, numbers);
    execute(steps);
    for (int &number : numbers)
        number += base_;
    const QByteArray query = "?after=" + QByteArray::number(base_ + after);

    ProgramClient client;
    const ProgramReply reply = client.ask("GET", "/samples" + query);
    QVERIFY2(reply.body.contains("\"missed\":" + missed + ','), reply.body.left(200));
    QCOMPARE(StreamClient::numbersOf({{}, {}, QJsonDocument(reply.json()["samples"].toArray())}), numbers);
    // The next request does not count them again.
    const QByteArray next = QByteArray::number(reply.json()["next"].toInt());
    QVERIFY(client.ask("GET", "/samples?after=" + next).body.contains(R"("missed":0,"samples":[])"));

    StreamClient stream(query);
    QCOMPARE(stream.next().name, QByteArray("state"));
    QVector<int> received;
    int missedCount = 0;
    bool isUnknown = false;
    while (received.size() < numbers.size() || (!isUnknown && missedCount < missed.toInt())) {
        const StreamClient::Event event = stream.next();
        QVERIFY(!event.name.isEmpty());
        if (event.name == "missed") {
            QVERIFY(received.isEmpty());
            isUnknown = isUnknown || event.data["count"].isNull();
            missedCount += event.data["count"].toInt();
        }
        received += event.name == "samples" ? StreamClient::numbersOf(event) : QVector<int>();
    }
    QCOMPARE(received, numbers);
    QCOMPARE(isUnknown ? "null" : QByteArray::number(missedCount), missed);
}

void TestProgramApi::stalled_reader_is_told_what_it_missed() {
    StreamClient stalled;
    StreamClient reader;
    QCOMPARE(stalled.next().name, QByteArray("state"));
    QCOMPARE(reader.next().name, QByteArray("state"));
    stalled.socket().setReadBufferSize(1024);
    // One minute at 150 Hz. The other reader keeps up: it reads each batch before the next one.
    constexpr int batchSize = 75;
    constexpr int count = 120 * batchSize;
    QVector<int> numbers;
    while (numbers.size() < count) {
        addSamples(*first_, batchSize, 7);
        numbers += reader.numbers(batchSize);
    }
    QCOMPARE(numbers, range(base_ + 1, count));
    // The stalled reader gets none of the samples of the second tracker.
    execute("+B B3000 +A A3000 B50 +B B10 +A");

    stalled.socket().setReadBufferSize(0);
    numbers.clear();
    int missedCount = 0;
    while (numbers.size() + missedCount < count + 6010) {
        const StreamClient::Event event = stalled.next();
        QVERIFY(!event.name.isEmpty());
        if (event.name == "missed")
            missedCount += event.data["count"].toInt();
        else if (event.name == "samples")
            numbers += StreamClient::numbersOf(event);
    }
    QCOMPARE(numbers.size() + missedCount, count + 6010);
    QVERIFY(missedCount > 6010 && numbers.last() <= base_ + count);
    addSamples(*first_, 1);
    QCOMPARE(stalled.numbers(1), range(base_ + count + 6061, 1));
}

void TestProgramApi::stream_has_markers_also_after_a_break() {
    const QByteArray run = exchange_->programApi().run().id() + ':';
    StreamClient stream;
    QCOMPARE(stream.next().name, QByteArray("state"));
    ProgramClient client;
    QCOMPARE(client.ask("POST", "/events", R"({"text":"before the first sample"})").status, 201);
    const StreamClient::Event marker = stream.next("event");
    QCOMPARE(marker.data["text"].toString(), QString("before the first sample"));
    QCOMPARE(marker.data["number"].toInt(), 0);

    // The position is part of the id, so that the marker is not sent again, also if there are no samples.
    QCOMPARE(marker.id, run + "0:1");
    addSamples(*first_, 10);
    QCOMPARE(stream.numbers(10), range(base_ + 1, 10));
    markers_->add("in the break");
    addSamples(*first_, 10);
    markers_->add("later");
    const QByteArray number = QByteArray::number(base_ + 9);
    for (const QByteArray &id : {run + number, run + number + ":1"}) {
        StreamClient resumed({}, id);
        QCOMPARE(resumed.next("event").data["text"].toString(), QString("in the break"));
        QCOMPARE(resumed.next("event").data["text"].toString(), QString("later"));
        QCOMPARE(resumed.numbers(11), range(base_ + 10, 11));
    }
    StreamClient resumed({}, run + number + ":2");
    const StreamClient::Event later = resumed.next("event");
    QCOMPARE(later.data["text"].toString(), QString("later"));
    QCOMPARE(later.id, run + number + ":3");
    QCOMPARE(resumed.next("samples").id, run + QByteArray::number(base_ + 20) + ":3");
}

void TestProgramApi::stream_shows_changed_rights() {
    StreamClient stream;
    QVERIFY(stream.next().data["access"]["anyFile"].toBool());
    const quint64 version = exchange_->programApi().state().get()->version;
    AccessRights rights;
    rights.anyFile = false;
    exchange_->setAccessRights(rights);
    // A new version is sent at once.
    QVERIFY(exchange_->programApi().state().get()->version > version);
    QVERIFY(!stream.next("state").data["access"]["anyFile"].toBool());
}

void TestProgramApi::streams_are_limited_and_end_with_the_program() {
    std::vector<std::unique_ptr<StreamClient>> streams;
    for (int i = 0; i < 20; ++i) {
        streams.push_back(std::make_unique<StreamClient>());
        QCOMPARE(streams.back()->next().name, QByteArray("state"));
    }
    QCOMPARE(StreamClient().status(), 429);
    streams.pop_back();
    QVERIFY(QTest::qWaitFor([] { return StreamClient().status() == 200; }, 30000));
    // A reader that does not read must not delay the end.
    streams.front()->socket().setReadBufferSize(1024);
    addSamples(*first_, 5000);
    QElapsedTimer timer;
    timer.start();
    exchange_.reset();
    QVERIFY2(timer.elapsed() < test_support::longWaitMs, QByteArray::number(timer.elapsed()));
    QVERIFY(streams.back()->isOver());
}

OCELA_TEST(TestProgramApi)
#include "tst_program_api.moc"
