#include "support/test_main.h"
#include "trackers/gazepoint/gaze_point_protocol.h"

#include <QTest>
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

QByteArray recordWith(const char *attribute) {
    return QByteArray("<REC ") + attribute + " />\r\n";
}

}  // namespace

class TestGazePointProtocol : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tells_messages_apart_data();
    void tells_messages_apart();
    void reads_one_attribute_data();
    void reads_one_attribute();
    void reads_flags_to_the_letter_data();
    void reads_flags_to_the_letter();
    void reads_numbers_data();
    void reads_numbers();
    void later_record_of_a_chunk_overwrites_the_first();
    void reads_a_captured_record_whole();
    void reads_screen_sizes_data();
    void reads_screen_sizes();
};

void TestGazePointProtocol::tells_messages_apart_data() {
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<int>("kind");
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

void TestGazePointProtocol::tells_messages_apart() {
    QFETCH(QByteArray, message);
    QTEST(static_cast<int>(gazepoint::kindOf(view(message))), "kind");
}

void TestGazePointProtocol::reads_one_attribute_data() {
    QTest::addColumn<QByteArray>("record");
    QTest::addColumn<QString>("field");
    QTest::addColumn<double>("value");
    QTest::newRow("gaze x in percent") << recordWith("FPOGX=\"0.5\"") << "x" << 50.0;
    QTest::newRow("gaze left of the screen") << recordWith("FPOGX=\"-0.1\"") << "x_px" << -192.0;
    QTest::newRow("gaze that overflows as percent") << recordWith("FPOGX=\"1e38\"") << "x_px" << 0.0;
    QTest::newRow("left eye x") << recordWith("LPOGX=\"0.25\"") << "l_x_px" << 480.0;
    QTest::newRow("right eye is crossed: X fills y") << recordWith("RPOGX=\"0.25\"") << "r_y" << 25.0;
    QTest::newRow("right eye is crossed: X fills y pixels") << recordWith("RPOGX=\"0.25\"") << "r_y_px" << 270.0;
    QTest::newRow("right eye is crossed: Y fills x") << recordWith("RPOGY=\"0.75\"") << "r_x" << 75.0;
    QTest::newRow("right eye is crossed: Y fills x pixels") << recordWith("RPOGY=\"0.75\"") << "r_x_px" << 1440.0;
    QTest::newRow("left pupil") << recordWith("LPMM=\"3.5\"") << "l_pupil_mm" << 3.5;
    QTest::newRow("last value of a key holds") << recordWith("FPOGX=\"0.5\" FPOGX=\"0.25\"") << "x" << 25.0;
    QTest::newRow("without quotes") << recordWith("FPOGX=0.5") << "x" << 50.0;
    QTest::newRow("two equals signs are skipped") << recordWith("FPOGX=\"=0.5\"") << "x" << 0.0;
    QTest::newRow("keys are case-sensitive") << recordWith("fpogx=\"0.5\"") << "x" << 0.0;
}

void TestGazePointProtocol::reads_one_attribute() {
    QFETCH(QByteArray, record);
    QFETCH(QString, field);
    QTEST(parse(record).toJson()[field].toDouble(), "value");
}

void TestGazePointProtocol::reads_flags_to_the_letter_data() {
    QTest::addColumn<QByteArray>("attribute");
    QTest::addColumn<bool>("set");
    QTest::newRow("one") << QByteArray("\"1\"") << true;
    QTest::newRow("zero") << QByteArray("\"0\"") << false;
    QTest::newRow("decimal one") << QByteArray("\"1.0\"") << false;
    QTest::newRow("tag closed without a space") << QByteArray("\"1\"/>") << false;
}

void TestGazePointProtocol::reads_flags_to_the_letter() {
    QFETCH(QByteArray, attribute);
    QFETCH(bool, set);
    QCOMPARE(parse(recordWith("FPOGV=" + attribute)).valid, set);
    QCOMPARE(parse(recordWith("LPV=" + attribute)).l_valid, set);
    QCOMPARE(parse(recordWith("RPV=" + attribute)).r_valid, set);
}

void TestGazePointProtocol::reads_numbers_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<float>("number");
    QTest::newRow("plus sign") << QByteArray("+1.5") << 1.5F;
    QTest::newRow("no leading digit") << QByteArray(".5") << 0.5F;
    QTest::newRow("exponent") << QByteArray("-25e-1") << -2.5F;
    QTest::newRow("decimal comma") << QByteArray("1,5") << 0.0F;
    QTest::newRow("unit behind it") << QByteArray("3mm") << 0.0F;
    QTest::newRow("empty") << QByteArray() << 0.0F;
    QTest::newRow("NaN") << QByteArray("NaN") << 0.0F;
    QTest::newRow("beyond every number") << QByteArray("1e999") << 0.0F;
    QTest::newRow("many digits") << QByteArray("0." + QByteArray(500, '3')) << 1.0F / 3.0F;
    QTest::newRow("line break behind it") << QByteArray("1.5\"/>\r\n") << 0.0F;
}

void TestGazePointProtocol::reads_numbers() {
    QFETCH(QByteArray, text);
    QTEST(parse(recordWith("LPMM=\"" + text + "\"")).l_pupil_mm, "number");
}

void TestGazePointProtocol::later_record_of_a_chunk_overwrites_the_first() {
    const EyeTrackingSample sample = parse("<REC FPOGX=\"0.1\" FPOGY=\"0.2\" />\r\n<REC FPOGX=\"0.3\" />\r\n");
    QCOMPARE(sample.x, 30.0F);
    QCOMPARE(sample.y, 20.0F);
}

void TestGazePointProtocol::reads_a_captured_record_whole() {
    const EyeTrackingSample sample = parse(
        "<REC CNT=\"43333\" TIME=\"712.77087\" FPOGX=\"0.56816\" FPOGY=\"0.39911\" FPOGS=\"712.65570\" "
        "FPOGV=\"1\" "
        "LPOGX=\"0.57369\" LPOGY=\"0.41612\" LPOGV=\"1\" RPOGX=\"0.56\" RPOGY=\"0.38\" RPOGV=\"1\" LPV=\"1\" "
        "RPV=\"0\" LPMM=\"3.1\" LPMMV=\"1\" RPMM=\"3.2\" RPMMV=\"1\" />\r\n");
    EyeTrackingSample expected;
    expected.timestamp = 7;
    expected.l_valid = expected.valid = true;
    expected.x = 0.56816F * 100;
    expected.x_px = 1090;
    expected.y = 0.39911F * 100;
    expected.y_px = 431;
    expected.l_x = 0.57369F * 100;
    expected.l_x_px = 1101;
    expected.l_y = 0.41612F * 100;
    expected.l_y_px = 449;
    expected.r_y = 0.56F * 100;
    expected.r_y_px = 604;
    expected.r_x = 0.38F * 100;
    expected.r_x_px = 729;
    expected.l_pupil_mm = 3.1F;
    expected.r_pupil_mm = 3.2F;
    QCOMPARE(sample.toJson(), expected.toJson());
    QCOMPARE(sample.l_valid, expected.l_valid);
    QCOMPARE(sample.r_valid, expected.r_valid);
}

void TestGazePointProtocol::reads_screen_sizes_data() {
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<QSize>("size");
    QTest::newRow("whole answer") << QByteArray("X=\"0\" Y=\"0\" WIDTH=\"1920\" HEIGHT=\"1080\"") << QSize(1920, 1080);
    QTest::newRow("screen to the left") << QByteArray("X=\"-1920\" Y=\"0\" WIDTH=\"10\" HEIGHT=\"20\"")
                                        << QSize(10, 20);
    QTest::newRow("no height") << QByteArray("WIDTH=\"1920\"") << QSize(1920, 0);
    QTest::newRow("beyond integers") << QByteArray("WIDTH=\"99999999999\" HEIGHT=\"2147483647\"")
                                     << QSize(0, std::numeric_limits<int>::max());
    QTest::newRow("negative") << QByteArray("WIDTH=\"-5\" HEIGHT=\"10\"") << QSize(-5, 10);
}

void TestGazePointProtocol::reads_screen_sizes() {
    QFETCH(QByteArray, attributes);
    QTEST(gazepoint::parseScreenSize(view("<ACK ID=\"SCREEN_SIZE\" " + attributes + " />\r\n")), "size");
}

OCELA_TEST(TestGazePointProtocol)
#include "tst_gaze_point_protocol.moc"
