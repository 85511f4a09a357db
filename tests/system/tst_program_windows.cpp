#include "support/file_content.h"
#include "support/test_main.h"
#include "system/http_client.h"
#include "system/lsl_receiver.h"
#include "system/record_file.h"
#include "system/timeout.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <windows.h>

namespace {

/// A program that is killed with the test. It finds only the libraries in its own folder and those of Windows.
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
    /// Starts it as the desktop does, without standard streams.
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
    /// Asks its windows to close until it has ended, and returns the exit code, or -1000 after a timeout or a crash.
    [[nodiscard]] int closeWindows() {
        const bool ended = QTest::qWaitFor([this] { return terminate(), state() == NotRunning; }, timeoutMs);
        return ended && exitStatus() == NormalExit ? exitCode() : -1000;
    }
};

const QString programFolder = QStringLiteral(OCELA_PROGRAM_FOLDER);

}  // namespace

/// The program as it is installed, with the simulated vendor libraries in its folder.
class TestProgramOnWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void record_file_contains_the_served_sample_data();
    void record_file_contains_the_served_sample();
    void does_not_ask_without_a_console();
    void refuses_a_second_instance();
    void chooses_the_name_of_a_record_file();
    void recovers_the_recording_of_a_terminated_program();
    void lsl_streams_have_the_times_of_the_recording();

private:
    /// `properties` are more elements of the settings.
    void selectTracker(const QString &tracker, const QByteArray &properties = {});
    [[nodiscard]] bool startSimulator();
    void start();
    [[nodiscard]] bool hasGaze() { return qAbs(client_.lastSample()["x"].toDouble()) > 0; }
    [[nodiscard]] QString log() const { return QString::fromUtf8(readFile(localData_ + "/Ocela.log")); }
    [[nodiscard]] QStringList problems() const;

    const QString localData_ = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Velmora/Ocela";
    const QString records_ = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/Ocela";
    HttpClient client_;
    std::unique_ptr<Child> program_;
    std::unique_ptr<Child> simulator_;
};

void TestProgramOnWindows::initTestCase() {
    QVERIFY2(!QFile::exists(localData_ + "Settings.xml"),
             "These tests delete the settings and the data folder of the Windows user.");
}

void TestProgramOnWindows::init() {
    QDir(localData_).removeRecursively();
    QVERIFY(QDir().mkpath(localData_));
    program_ = std::make_unique<Child>();
    program_->setProgram(programFolder + "/Ocela.exe");
    // The shortcuts set this working directory, too.
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

void TestProgramOnWindows::selectTracker(const QString &tracker, const QByteArray &properties) {
    QVERIFY(writeFile(localData_ + "Settings.xml", "<settings version=\"1\"><property name=\"SelectedTracker\">" +
                                                       tracker.toUtf8() + "</property>" + properties + "</settings>"));
}

bool TestProgramOnWindows::startSimulator() {
    simulator_->start(OCELA_SIMULATOR, {"--rate", "150"});
    return simulator_->waitForReadyRead(timeoutMs);
}

void TestProgramOnWindows::start() {
    program_->startWithoutStreams();
    QVERIFY(program_->waitForStarted(timeoutMs));
    QTRY_VERIFY_WITH_TIMEOUT(!client_.get("/").isEmpty(), timeoutMs);
}

QStringList TestProgramOnWindows::problems() const {
    static const QRegularExpression problem("Z (warning|critical|fatal) ");
    return log().split('\n').filter(problem);
}

void TestProgramOnWindows::record_file_contains_the_served_sample_data() {
    QTest::addColumn<QString>("tracker");
    for (const char *tracker : {"eyetech", "gazepoint", "aSee Pro"})
        QTest::newRow(tracker) << tracker;
}

void TestProgramOnWindows::record_file_contains_the_served_sample() {
    QFETCH(const QString, tracker);
    selectTracker(tracker);
    QVERIFY(tracker != "gazepoint" || startSimulator());
    if (tracker == "aSee Pro")
        QCOMPARE(QProcess::execute(OCELA_ASEE_COEFFICIENTS, {localData_ + "/coefficient.dat"}), 0);
    start();
    QCOMPARE(client_.get("/"), readFile(programFolder + "/http/index.html"));
    QTRY_VERIFY_WITH_TIMEOUT(hasGaze(), timeoutMs);

    const QTemporaryDir folder;
    const QString name = folder.filePath(QString::fromUtf8("rec 1 & äя.csv"));
    QVERIFY(
        client_.ask("/startrecord&path=" + QUrl::toPercentEncoding(QDir::toNativeSeparators(name)))["result"].toBool());
    // The column names are logged when the first recording starts.
    QTRY_VERIFY_WITH_TIMEOUT(log().contains("OCELACSV"), timeoutMs);
    const QJsonObject before = client_.lastSample();
    QJsonObject sample;
    QTRY_VERIFY_WITH_TIMEOUT((sample = client_.lastSample()) != before, timeoutMs);
    QVERIFY(client_.ask("/stoprecord")["result"].toBool());
    // While a file is being renamed, it exists, but no other program can open it.
    QTRY_VERIFY_WITH_TIMEOUT(!readFile(name).isEmpty(), timeoutMs);
    const RecordFile record(name);
    QVERIFY(record.header.startsWith("Timestamp,Time,Valid,X,Y,"));
    const auto isSample = [&](const QStringList &row) {
        return row[0] == sample["timestamp"].toVariant().toString() && row[3] == sample["x"].toVariant().toString() &&
               row[4] == sample["y"].toVariant().toString();
    };
    QVERIFY(std::any_of(record.rows.begin(), record.rows.end(), isSample));
    QCOMPARE(program_->closeWindows(), 0);
    QCOMPARE(problems(), QStringList());
    QVERIFY(readFile(localData_ + "Settings.xml").contains(tracker.toUtf8()));
}

void TestProgramOnWindows::does_not_ask_without_a_console() {
    selectTracker("eyetech");
    program_->setVariable("OCELA_SIM_EYETECH_DEVICES", "2");
    start();
    QVERIFY(log().contains("Device not found"));
    QVERIFY(client_.ask("/lastsample").contains("sample"));
    QCOMPARE(program_->closeWindows(), 0);
}

void TestProgramOnWindows::refuses_a_second_instance() {
    selectTracker("gazepoint");
    start();
    Child second;
    second.start(program_->program(), QStringList());
    QCOMPARE(second.closeWindows(), -1);
    QVERIFY(!client_.get("/").isEmpty());
    QCOMPARE(program_->closeWindows(), 0);
}

void TestProgramOnWindows::chooses_the_name_of_a_record_file() {
    const QDir folder(records_);
    const QStringList before = folder.entryList({"*_ocela*"}, QDir::Files);
    selectTracker("eyetech");
    start();
    QTRY_VERIFY_WITH_TIMEOUT(hasGaze(), timeoutMs);
    QVERIFY(client_.ask("/startrecord")["result"].toBool());
    QVERIFY(client_.ask("/stoprecord")["result"].toBool());
    // With its description and its samples file.
    QTRY_COMPARE_WITH_TIMEOUT(folder.entryList({"*_ocela*"}, QDir::Files).size(), before.size() + 3, timeoutMs);
    QCOMPARE(program_->closeWindows(), 0);
}

void TestProgramOnWindows::recovers_the_recording_of_a_terminated_program() {
    constexpr int maxLossMs = 2000;
    const QTemporaryDir folder;
    selectTracker("eyetech");
    start();
    QTRY_VERIFY_WITH_TIMEOUT(hasGaze(), timeoutMs);
    QVERIFY(client_.ask("/startrecord&path=" + QUrl::toPercentEncoding(folder.filePath("r.csv")))["result"].toBool());
    QTest::qWait(2 * maxLossMs);
    const qint64 newest = client_.lastSample()["timestamp"].toVariant().toLongLong();
    program_->kill();
    QVERIFY(program_->waitForFinished(timeoutMs));
    client_.forgetConnections();

    start();
    // The journal is removed when all files are complete.
    QTRY_VERIFY_WITH_TIMEOUT(QDir(localData_ + "/journal").isEmpty(), timeoutMs);
    const RecordFile recovered(folder.filePath("r_recovered.csv"));
    QVERIFY(!recovered.rows.isEmpty());
    QVERIFY(recovered.timestamp(recovered.rows.size() - 1) > newest - maxLossMs);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 3);
    QCOMPARE(program_->closeWindows(), 0);
}

void TestProgramOnWindows::lsl_streams_have_the_times_of_the_recording() {
    const QString library = qEnvironmentVariable("OCELA_LSL_DLL");
    if (library.isEmpty())
        QSKIP("OCELA_LSL_DLL does not name the LSL library lsl.dll, so nothing is received from Ocela.");
    const QTemporaryDir folder;
    QVERIFY(LslReceiver::confineTo(folder));
    program_->setVariable("LSLAPICFG", qEnvironmentVariable("LSLAPICFG"));
    program_->setVariable("PATH", QDir::toNativeSeparators(QFileInfo(library).path()) + ';' +
                                      program_->processEnvironment().value("PATH"));
    selectTracker("gazepoint", "<property name=\"LslStreams\">true</property>");
    QVERIFY(startSimulator());
    start();
    QTRY_VERIFY_WITH_TIMEOUT(hasGaze(), timeoutMs);

    LslReceiver receiver(library);
    QVERIFY(receiver.load());
    QVERIFY(receiver.open());
    const QString record = folder.filePath("r.csv");
    QVERIFY(client_.ask("/startrecord&path=" + QUrl::toPercentEncoding(record))["result"].toBool());
    QTRY_VERIFY_WITH_TIMEOUT(log().contains("OCELACSV"), timeoutMs);
    for (std::size_t i = 1; i <= 5; ++i) {
        QVERIFY(client_.mark(QString("marker %1").arg(i))["recorded"].toBool());
        QTRY_VERIFY_WITH_TIMEOUT(receiver.receive() && receiver.markers().size() == i, timeoutMs);
    }
    QTRY_VERIFY_WITH_TIMEOUT(receiver.receive() && receiver.samples().size() > 300, timeoutMs);
    QVERIFY(client_.ask("/stoprecord")["result"].toBool());
    const std::optional<LslReceiver::Comparison> comparison = receiver.waitForAllOf(record);
    QVERIFY(comparison);
    QCOMPARE(comparison->markerCount, 5);
    QVERIFY(comparison->maxSampleErrorMs < 0.1);
    QVERIFY(comparison->maxMarkerErrorMs < 0.1);
    QCOMPARE(program_->closeWindows(), 0);
    QVERIFY(receiver.missedCount() <= LslReceiver::reportedLoss(log()));
    QCOMPARE(problems().filter(LslReceiver::otherLine()), QStringList());
}

OCELA_TEST(TestProgramOnWindows)
#include "tst_program_windows.moc"
