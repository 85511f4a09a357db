#include "support/test_main.h"
#include "system/http_client.h"
#include "system/patience.h"
#include "system/record_file.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <windows.h>

namespace {

/// It ends with the test, and finds no libraries but those beside it and the system's own.
class Child : public QProcess {
public:
    Child() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PATH", R"(C:\windows\system32;C:\windows)");
        setProcessEnvironment(environment);
        setProcessChannelMode(MergedChannels);
    }
    ~Child() override {
        kill();
        waitForFinished();
    }
    /// As the desktop starts it: without standard streams.
    void startWithoutStreams() {
        setCreateProcessArgumentsModifier([](CreateProcessArguments *arguments) {
            arguments->inheritHandles = false;
            arguments->startupInfo->dwFlags &= ~static_cast<unsigned long>(STARTF_USESTDHANDLES);
        });
        start();
    }
    void setVariable(const QString &name, const QString &value) {
        QProcessEnvironment environment = processEnvironment();
        environment.insert(name, value);
        setProcessEnvironment(environment);
    }
    /// Asks its windows to close until it has ended; the exit code, or -1000.
    [[nodiscard]] int end() {
        const bool ended = QTest::qWaitFor([this] { return terminate(), state() == NotRunning; }, patienceMs);
        return ended && exitStatus() == NormalExit ? exitCode() : -1000;
    }
};

QByteArray contents(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const QString programFolder = QStringLiteral(OCELA_PROGRAM_FOLDER);

}  // namespace

/// The program as it is laid out for users, with the simulated devices' libraries beside it.
class TestProgramOnWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void records_what_it_serves_data();
    void records_what_it_serves();
    void asks_nobody_without_a_console();
    void second_instance_is_refused();
    void names_records_itself();

private:
    void choose(const QString &tracker);
    [[nodiscard]] bool startSimulator();
    void start();
    [[nodiscard]] bool hasGaze() { return qAbs(client_.lastSample()["x"].toDouble()) > 0; }
    [[nodiscard]] QString log() const { return QString::fromUtf8(contents(localData_ + "/Ocela.log")); }
    [[nodiscard]] QStringList complaints() const;

    const QString localData_ = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Velmora/Ocela";
    const QString records_ = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/Ocela";
    HttpClient client_;
    std::unique_ptr<Child> program_;
    std::unique_ptr<Child> simulator_;
};

void TestProgramOnWindows::initTestCase() {
    QVERIFY2(!QFile::exists(localData_ + "Settings.xml"), "these tests are not for somebody's own Windows");
}

void TestProgramOnWindows::init() {
    QDir(localData_).removeRecursively();
    QVERIFY(QDir().mkpath(localData_));
    program_ = std::make_unique<Child>();
    program_->setProgram(programFolder + "/Ocela.exe");
    // As the shortcuts do.
    program_->setWorkingDirectory(programFolder);
    program_->setVariable("OCELA_SIM_BLINK_INTERVAL", "0");
    simulator_ = std::make_unique<Child>();
    simulator_->setVariable("PATH", qEnvironmentVariable("PATH"));
}

void TestProgramOnWindows::cleanup() {
    program_.reset();
    simulator_.reset();
    client_.forgetConnections();
    QFile::remove(localData_ + "Settings.xml");
}

void TestProgramOnWindows::choose(const QString &tracker) {
    QFile settings(localData_ + "Settings.xml");
    QVERIFY(settings.open(QIODevice::WriteOnly));
    settings.write("<settings version=\"1\"><property name=\"SelectedTracker\">" + tracker.toUtf8() +
                   "</property></settings>");
}

bool TestProgramOnWindows::startSimulator() {
    simulator_->start(OCELA_SIMULATOR, {"--rate", "150"});
    return simulator_->waitForReadyRead(patienceMs);
}

void TestProgramOnWindows::start() {
    program_->startWithoutStreams();
    QVERIFY(program_->waitForStarted(patienceMs));
    QTRY_VERIFY_WITH_TIMEOUT(!client_.get("/").isEmpty(), patienceMs);
}

QStringList TestProgramOnWindows::complaints() const {
    static const QRegularExpression complaint("Z (warning|critical|fatal) ");
    return log().split('\n').filter(complaint);
}

void TestProgramOnWindows::records_what_it_serves_data() {
    QTest::addColumn<QString>("tracker");
    for (const char *tracker : {"eyetech", "gazepoint", "aSee Pro"})
        QTest::newRow(tracker) << tracker;
}

void TestProgramOnWindows::records_what_it_serves() {
    QFETCH(const QString, tracker);
    choose(tracker);
    QVERIFY(tracker != "gazepoint" || startSimulator());
    if (tracker == "aSee Pro")
        QCOMPARE(QProcess::execute(OCELA_ASEE_COEFFICIENTS, {localData_ + "/coefficient.dat"}), 0);
    start();
    QCOMPARE(client_.get("/"), contents(programFolder + "/http/index.html"));
    QTRY_VERIFY_WITH_TIMEOUT(hasGaze(), patienceMs);

    const QTemporaryDir folder;
    const QString name = folder.filePath(QString::fromUtf8("rec 1 & äя.csv"));
    QVERIFY(
        client_.ask("/startrecord&path=" + QUrl::toPercentEncoding(QDir::toNativeSeparators(name)))["result"].toBool());
    // The names of the columns are logged when the first record starts.
    QTRY_VERIFY_WITH_TIMEOUT(log().contains("OCELACSV"), patienceMs);
    const QJsonObject before = client_.lastSample();
    QJsonObject sample;
    QTRY_VERIFY_WITH_TIMEOUT((sample = client_.lastSample()) != before, patienceMs);
    QVERIFY(client_.ask("/stoprecord")["result"].toBool());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(name), patienceMs);

    const RecordFile record(name);
    QVERIFY(record.header.startsWith("Timestamp,Time,Valid,X,Y,"));
    const auto isSample = [&](const QStringList &row) {
        return row[0] == sample["timestamp"].toVariant().toString() && row[3] == sample["x"].toVariant().toString() &&
               row[4] == sample["y"].toVariant().toString();
    };
    QVERIFY(std::any_of(record.rows.begin(), record.rows.end(), isSample));
    QCOMPARE(program_->end(), 0);
    QCOMPARE(complaints(), QStringList());
    QVERIFY(contents(localData_ + "Settings.xml").contains(tracker.toUtf8()));
}

void TestProgramOnWindows::asks_nobody_without_a_console() {
    choose("eyetech");
    program_->setVariable("OCELA_SIM_EYETECH_DEVICES", "2");
    start();
    QVERIFY(log().contains("Device not found"));
    QVERIFY(client_.ask("/lastsample").contains("sample"));
    QCOMPARE(program_->end(), 0);
}

void TestProgramOnWindows::second_instance_is_refused() {
    choose("gazepoint");
    start();
    Child second;
    second.start(program_->program(), QStringList());
    QCOMPARE(second.end(), -1);
    QVERIFY(!client_.get("/").isEmpty());
    QCOMPARE(program_->end(), 0);
}

void TestProgramOnWindows::names_records_itself() {
    const QDir folder(records_);
    const QStringList before = folder.entryList(QDir::Files);
    choose("eyetech");
    start();
    QTRY_VERIFY_WITH_TIMEOUT(hasGaze(), patienceMs);
    QVERIFY(client_.ask("/startrecord")["result"].toBool());
    QVERIFY(client_.ask("/stoprecord")["result"].toBool());
    QTRY_COMPARE_WITH_TIMEOUT(folder.entryList(QDir::Files).size(), before.size() + 1, patienceMs);
    QCOMPARE(program_->end(), 0);
}

OCELA_TEST(TestProgramOnWindows)
#include "tst_program_windows.moc"
