#include "support/test_main.h"
#include "trackers/gazepoint/gazepoint_calibration_watch.h"

using gazepoint::CalibrationWatch;
using Result = CalibrationWatch::Result;

namespace {

constexpr char started[] = "<ACK ID=\"CALIBRATE_START\" STATE=\"1\" />\r\n";
constexpr char stopped[] = "<ACK ID=\"CALIBRATE_START\" STATE=\"0\" />\r\n";
constexpr char record[] = "<REC FPOGX=\"0.5\" FPOGV=\"1\" />\r\n";
constexpr char oneEye[] =
    "<CAL ID=\"CALIB_RESULT\" CALX1=\"0.50000\" CALY1=\"0.50000\" LX1=\"0.49807\" LY1=\"0.47028\" LV1=\"0\" "
    "RX1=\"0.51584\" RY1=\"0.49711\" RV1=\"0\" CALX2=\"0.85000\" CALY2=\"0.15000\" LV2=\"0\" RV2=\"1\" />\r\n";
constexpr char noEye[] = "<CAL ID=\"CALIB_RESULT\" LV1=\"0\" RV1=\"0\" LV2=\"0\" RV2=\"0\" />\r\n";

constexpr char none[] = "none";

std::string_view view(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QString nameOf(const std::optional<Result> &result) {
    return result ? QMetaEnum::fromType<Result>().valueToKey(static_cast<int>(*result)) : none;
}

}  // namespace

class TestGazepointCalibrationWatch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void finds_the_end_of_a_calibration_data();
    void finds_the_end_of_a_calibration();
    void result_of_an_earlier_start_is_ignored();
};

void TestGazepointCalibrationWatch::finds_the_end_of_a_calibration_data() {
    dataColumns<QByteArrayList, QString>("chunks", "result");
    const auto row = [](const char *name, const QByteArrayList &chunks, const char *result) {
        QTest::newRow(name) << chunks << QString(result);
    };
    row("one eye is valid at one point", {started, oneEye}, "Done");
    row("no eye is valid", {started, noEye}, "Failed");
    row("result without flags", {started, "<CAL ID=\"CALIB_RESULT\" CALX1=\"0.5\" />\r\n"}, "Unknown");
    row("result of a point", {started, "<CAL ID=\"CALIB_RESULT_PT\" PT=\"1\" LV1=\"1\" />\r\n"}, none);
    row("in one chunk with records", {QByteArray(record) + started, QByteArray(record) + noEye + record}, "Failed");
    row("in three chunks",
        {started, QByteArray(noEye).left(9), QByteArray(noEye).mid(9, 30), QByteArray(noEye).mid(39)}, "Failed");
    row("line end is missing", {started, QByteArray(noEye).trimmed()}, none);
    row("after a long line", {QByteArray(1 << 20, 'x'), QByteArray("\r\n") + started + oneEye}, "Done");
    row("flag before the end without a space", {started, "<CAL ID=\"CALIB_RESULT\" LV1=\"1\"/>\r\n"}, "Done");
    row("refused by the server", {stopped}, "Failed");
    row("stopped in the server's window", {started, record, stopped}, "Cancelled");
    row("stopped, without a space", {started, "<ACK ID=\"CALIBRATE_START\" STATE=\"0\"/>\n"}, "Cancelled");
}

void TestGazepointCalibrationWatch::finds_the_end_of_a_calibration() {
    QFETCH(QByteArrayList, chunks);
    CalibrationWatch watch;
    QVERIFY2(!watch.take(view(stopped)).isAlive, "no calibration is running");
    watch.start();
    std::optional<Result> result;
    for (const QByteArray &chunk : chunks) {
        const CalibrationWatch::News news = watch.take(view(chunk));
        QVERIFY(!result);
        result = news.result;
    }
    QTEST(nameOf(result), "result");
    QCOMPARE(watch.isRunning(), !result);
}

void TestGazepointCalibrationWatch::result_of_an_earlier_start_is_ignored() {
    CalibrationWatch watch;
    watch.start();
    watch.start();
    QCOMPARE(nameOf(watch.take(view(QByteArray(started) + noEye)).result), QString(none));
    QVERIFY(watch.take(view(started)).isAlive);
    QCOMPARE(nameOf(watch.take(view(oneEye)).result), QString("Done"));
}

OCELA_TEST(TestGazepointCalibrationWatch)
#include "tst_gazepoint_calibration_watch.moc"
