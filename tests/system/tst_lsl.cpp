#include "support/test_main.h"
#include "system/desktop.h"
#include "system/http_client.h"
#include "system/lsl_receiver.h"
#include "system/program.h"
#include "system/server.h"

#include <QFileInfo>
#include <QJsonArray>
#include <cmath>

namespace {

/// Returns whether a channel has the number of the API, or NaN for an invalid one.
bool isEqual(double value, bool isValid, double percent) {
    return isValid ? std::abs(value - percent / 100) < 1e-6 : std::isnan(value);
}

}  // namespace

/// A receiver with the real library, which the variable OCELA_LSL_LIBRARY names.
class TestLsl : public ProgramTest {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void receiver_gets_every_sample_and_marker_once_with_its_time();

private:
    QString library_;
    QTemporaryDir folder_;
};

void TestLsl::initTestCase() {
    library_ = qEnvironmentVariable("OCELA_LSL_LIBRARY");
    if (library_.isEmpty())
        QSKIP("OCELA_LSL_LIBRARY does not name the LSL library liblsl.so.2, so nothing is received from Ocela.");
    QVERIFY(LslReceiver::confineTo(folder_));
}

void TestLsl::receiver_gets_every_sample_and_marker_once_with_its_time() {
    home_->writeSettings({{"SelectedTracker", "gazepoint"}, {"LslStreams", "true"}});
    program_ = std::make_unique<Program>(*home_);
    program_->setVariable("LD_LIBRARY_PATH", QFileInfo(library_).path());
    Simulator simulator;
    QVERIFY(simulator.listen({"--rate", "150", "--blink-interval", "1"}));
    QVERIFY(program_->startWindow());

    LslReceiver receiver(library_);
    QVERIFY(receiver.load());
    QVERIFY(receiver.open());
    HttpClient api;
    const QString record = folder_.filePath("r.csv");
    QVERIFY(api.ask("/startrecord&path=" + QUrl::toPercentEncoding(record))["result"].toBool());

    constexpr std::size_t wantedCount = 600;
    QJsonArray served;
    qint64 next = 0;
    const auto receive = [&] {
        const QJsonObject answer = api.ask("/api/v1/samples?after=" + QByteArray::number(next));
        next = static_cast<qint64>(answer["next"].toDouble());
        for (const auto &sample : answer["samples"].toArray())
            served.append(sample);
        return !receiver.receive() || receiver.samples().size() >= wantedCount;
    };
    QVERIFY(QTest::qWaitFor(receive, timeoutMs));
    QVERIFY(receiver.samples().size() >= wantedCount);

    int lostCount = 0;
    std::size_t comparedCount = 0;
    for (const QJsonValue &sample : qAsConst(served)) {
        const auto found = receiver.samples().find(static_cast<qint64>(sample["number"].toDouble()));
        // The first answer also has earlier samples, and the last one later samples.
        if (found == receiver.samples().end())
            continue;
        const gaze_stream::Values &values = found->second.values;
        const bool isLeftValid = sample["l_valid"].toBool();
        const bool isRightValid = sample["r_valid"].toBool();
        lostCount += isLeftValid ? 0 : 1;
        QVERIFY(isEqual(values[0], isLeftValid, sample["l_x"].toDouble()));
        QVERIFY(isEqual(values[1], isLeftValid, sample["l_y"].toDouble()));
        // The axes of GazePoint's right eye are exchanged in the sample.
        QVERIFY(isEqual(values[4], isRightValid, sample["r_y"].toDouble()));
        QVERIFY(isEqual(values[5], isRightValid, sample["r_x"].toDouble()));
        QVERIFY(isEqual(values[8], sample["valid"].toBool(), sample["x"].toDouble()));
        ++comparedCount;
    }
    QVERIFY(comparedCount >= wantedCount / 2);
    QVERIFY2(lostCount > 0, "no blink, so nothing shows that lost eyes are NaN");

    desktop::press("F9", program_->window());
    QVERIFY(api.mark(QString::fromUtf8("Reiz „links“"))["recorded"].toBool());
    QTRY_VERIFY_WITH_TIMEOUT(receiver.receive() && receiver.markers().size() == 2, timeoutMs);
    QVERIFY(api.ask("/stoprecord")["result"].toBool());
    const std::optional<LslReceiver::Comparison> comparison = receiver.waitForAllOf(record);
    QVERIFY(comparison);
    QCOMPARE(comparison->markerCount, 2);
    QVERIFY(comparison->maxSampleErrorMs < 0.1);
    QVERIFY(comparison->maxMarkerErrorMs < 0.1);
    QCOMPARE(program_->close(), 0);
    QVERIFY(receiver.missedCount() <= LslReceiver::reportedLoss(home_->readLogFile()));
    QCOMPARE(program_->problems().filter(LslReceiver::otherLine()), QStringList());
}

OCELA_TEST(TestLsl)
#include "tst_lsl.moc"
