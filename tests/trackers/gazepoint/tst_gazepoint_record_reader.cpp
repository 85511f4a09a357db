#include "support/test_main.h"
#include "trackers/gazepoint/gazepoint_record_reader.h"

#include <limits>

using gazepoint::Message;

namespace {

constexpr QSize screen(1920, 1080);

std::string_view view(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

EyeTrackingSample parse(const QByteArray &record) {
    return gazepoint::parseRecord(view(record), screen, 7);
}

QByteArray recordWith(const QByteArray &attribute) {
    return "<REC " + attribute + " />\r\n";
}

}  // namespace

class TestGazepointRecordReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recognises_messages_data();
    void recognises_messages();
    void reads_one_attribute_data();
    void reads_one_attribute();
    void reads_flags_exactly_data();
    void reads_flags_exactly();
    void reads_all_fields_of_a_captured_record();
    void reads_screens_data();
    void reads_screens();
};

void TestGazepointRecordReader::recognises_messages_data() {
    dataColumns<QByteArray, int>("message", "kind");
    const auto row = [](const char *name, const char *message, Message kind) {
        QTest::newRow(name) << QByteArray(message) << static_cast<int>(kind);
    };
    row("record", "<REC CNT=\"1\" />", Message::Record);
    row("lower case", "<rec CNT=\"1\" />", Message::Other);
    row("rest of a record", "X=\"1\" /><REC", Message::Other);
    row("screen size", "<ACK ID=\"SCREEN_SIZE\" X=\"0\" />", Message::ScreenSize);
    row("calibration", "<CAL ID=\"CALIB_RESULT\" />", Message::Other);
    QTest::newRow("binary zeros") << QByteArray(100, '\0') << static_cast<int>(Message::Other);
}

void TestGazepointRecordReader::recognises_messages() {
    QFETCH(QByteArray, message);
    QTEST(static_cast<int>(gazepoint::kindOf(view(message))), "kind");
}

void TestGazepointRecordReader::reads_one_attribute_data() {
    dataColumns<QByteArray, QString, double>("attribute", "field", "value");
    const auto row = [](const char *name, const QByteArray &attribute, const char *field, double value) {
        QTest::newRow(name) << attribute << QString(field) << value;
    };
    row("gaze left of the screen", "FPOGX=\"-0.1\"", "x_px", -192);
    row("percentage overflows", "FPOGX=\"1e38\"", "x_px", 0);
    const QByteArray twoRecords = "FPOGX=\"0.1\" FPOGY=\"0.2\" />\r\n<REC FPOGX=\"0.3\"";
    row("second record of a chunk overwrites the first", twoRecords, "x_px", 576);
    row("second record of a chunk keeps other fields", twoRecords, "y", 20);
    row("without quotes", "FPOGX=0.5", "x", 50);
    row("two equals signs are skipped", "FPOGX=\"=0.5\"", "x", 0);
    row("keys are case-sensitive", "fpogx=\"0.5\"", "x", 0);
    row("plus sign", "LPMM=\"+1.5\"", "l_pupil_mm", 1.5);
    row("two signs", "LPMM=\"+-1.5\"", "l_pupil_mm", 0);
    row("no leading digit", "LPMM=\".5\"", "l_pupil_mm", 0.5);
    row("exponent", "LPMM=\"-25e-1\"", "l_pupil_mm", -2.5);
    row("decimal comma", "LPMM=\"1,5\"", "l_pupil_mm", 0);
    row("with a unit", "LPMM=\"3mm\"", "l_pupil_mm", 0);
    row("empty", "LPMM=\"\"", "l_pupil_mm", 0);
    row("NaN", "LPMM=\"NaN\"", "l_pupil_mm", 0);
    row("overflow", "LPMM=\"1e999\"", "l_pupil_mm", 0);
    row("many digits", "LPMM=\"0.5" + QByteArray(500, '0') + '"', "l_pupil_mm", 0.5);
    row("with a line break", "LPMM=\"1.5\"/>\r\n", "l_pupil_mm", 0);
}

void TestGazepointRecordReader::reads_one_attribute() {
    QFETCH(QByteArray, attribute);
    QFETCH(QString, field);
    QTEST(parse(recordWith(attribute)).toJson()[field].toDouble(), "value");
}

void TestGazepointRecordReader::reads_flags_exactly_data() {
    dataColumns<QByteArray, bool>("attribute", "set");
    QTest::newRow("one") << QByteArray("\"1\"") << true;
    QTest::newRow("zero") << QByteArray("\"0\"") << false;
    QTest::newRow("decimal one") << QByteArray("\"1.0\"") << false;
    QTest::newRow("tag closed without a space") << QByteArray("\"1\"/>") << false;
}

void TestGazepointRecordReader::reads_flags_exactly() {
    QFETCH(QByteArray, attribute);
    QFETCH(bool, set);
    QCOMPARE(parse(recordWith("FPOGV=" + attribute)).valid, set);
    QCOMPARE(parse(recordWith("LPV=" + attribute)).l_valid, set);
    QCOMPARE(parse(recordWith("RPV=" + attribute)).r_valid, set);
}

void TestGazepointRecordReader::reads_all_fields_of_a_captured_record() {
    const EyeTrackingSample sample = parse(
        "<REC CNT=\"43333\" TIME=\"712.77087\" FPOGX=\"0.56816\" FPOGY=\"0.39911\" FPOGS=\"712.65570\" "
        "FPOGV=\"1\" "
        "LPOGX=\"0.57369\" LPOGY=\"0.41612\" LPOGV=\"1\" RPOGX=\"0.56\" RPOGY=\"0.38\" RPOGV=\"1\" LPV=\"1\" "
        "RPV=\"0\" LPMM=\"3.1\" LPMMV=\"1\" RPMM=\"3.2\" RPMMV=\"1\" />\r\n");
    QCOMPARE(sample.timestamp, Q_INT64_C(7));
    QCOMPARE((QList<bool>{sample.valid, sample.l_valid, sample.r_valid}), (QList<bool>{true, true, false}));
    QCOMPARE((QList<float>{sample.x, sample.y, sample.l_x, sample.l_y, sample.r_x, sample.r_y, sample.l_pupil_mm,
                           sample.r_pupil_mm}),
             (QList<float>{0.56816F * 100, 0.39911F * 100, 0.57369F * 100, 0.41612F * 100, 0.38F * 100, 0.56F * 100,
                           3.1F, 3.2F}));
    QCOMPARE((QList<int>{sample.x_px, sample.y_px, sample.l_x_px, sample.l_y_px, sample.r_x_px, sample.r_y_px}),
             (QList<int>{1090, 431, 1101, 449, 729, 604}));  // the right eye is crossed
}

void TestGazepointRecordReader::reads_screens_data() {
    dataColumns<QByteArray, QPoint, QSize>("attributes", "origin", "size");
    const auto row = [](const char *name, const char *attributes, QPoint origin, QSize size) {
        QTest::newRow(name) << QByteArray(attributes) << origin << size;
    };
    row("whole answer", "X=\"0\" Y=\"0\" WIDTH=\"1920\" HEIGHT=\"1080\"", {0, 0}, {1920, 1080});
    row("screen to the left", "X=\"-1920\" Y=\"56\" WIDTH=\"10\" HEIGHT=\"20\"", {-1920, 56}, {10, 20});
    row("older server", "WIDTH=\"1920\" HEIGHT=\"1080\"", {0, 0}, {1920, 1080});
    row("no height", "X=\"5\" WIDTH=\"1920\"", {5, 0}, {1920, 0});
    row("overflow", "X=\"99999999999\" WIDTH=\"99999999999\" HEIGHT=\"2147483647\"", {0, 0},
        {0, std::numeric_limits<int>::max()});
    row("negative", "WIDTH=\"-5\" HEIGHT=\"10\"", {0, 0}, {-5, 10});
}

void TestGazepointRecordReader::reads_screens() {
    QFETCH(QByteArray, attributes);
    const gazepoint::Screen read = gazepoint::parseScreen(view("<ACK ID=\"SCREEN_SIZE\" " + attributes + " />\r\n"));
    QTEST(read.origin, "origin");
    QTEST(read.size, "size");
}

OCELA_TEST(TestGazepointRecordReader)
#include "tst_gazepoint_record_reader.moc"
