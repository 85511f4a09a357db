#include "support/redirected.h"
#include "support/test_main.h"
#include "trackers/eyetech/eyetech_device_selection.h"
#include "trackers/eyetech/eyetech_library.h"
#include "trackers/eyetech/script.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

class TestEyetechLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void calls_go_through_while_the_library_is_loaded();
    void failing_call_is_logged_when_its_result_changes();
    void chooses_a_device_data();
    void chooses_a_device();
    void does_not_repeat_a_question_after_the_end_of_input();

private:
    /// Returns the result of selectDevice() with `input` on standard input. Its output is in `printed_`.
    int select(const QByteArray &input);
    void attach(int result, const QList<int> &devices);

    Script *script_ = nullptr;
    QTemporaryDir folder_;
    QByteArray printed_;
};

void TestEyetechLibrary::init() {
    script_ = &freshScript();
    QVERIFY(eyetech::loadQuickLink2());
}

void TestEyetechLibrary::attach(int result, const QList<int> &devices) {
    script_->QLDevice_Enumerate = [=](int *count, int *ids) {
        *count = devices.size();
        std::copy(devices.begin(), devices.end(), ids);
        return result;
    };
    script_->QLDevice_GetInfo = [](int device, quicklink2::QLDeviceInfo *info) {
        qstrcpy(info->modelName, "TM");
        std::fill_n(info->serialNumber, sizeof info->serialNumber, static_cast<char>('0' + device));  // not terminated
        return 0;
    };
    script_->QLSettings_Create = [](int, int *settings) { return *settings = 42, 0; };
}

int TestEyetechLibrary::select(const QByteArray &input) {
    QFile in(folder_.filePath("in"));
    QFile out(folder_.filePath("out"));
    if (!in.open(QIODevice::ReadWrite | QIODevice::Truncate) || !out.open(QIODevice::ReadWrite | QIODevice::Truncate))
        qFatal("cannot create the files for the streams");
    in.write(input);
    in.seek(0);
    int device = 0;
    {
        const Redirected typed(STDIN_FILENO, in.handle());
        const Redirected shown(STDOUT_FILENO, out.handle());
        device = eyetech::selectDevice("QL2Settings.txt");
    }
    out.seek(0);
    printed_ = out.readAll();
    return device;
}

void TestEyetechLibrary::calls_go_through_while_the_library_is_loaded() {
    script_->QLCalibration_AddBias = [](int, int eye, float x, float) { return eye + static_cast<int>(x); };
    QCOMPARE(quicklink2::QLCalibration_AddBias(1, 20, 300.0F, 4.0F), 320);
    (void)script_->takeCalls();
    QVERIFY(eyetech::loadQuickLink2());
    QCOMPARE(script_->takeCalls(), QList<QByteArray>{"QLDevice_Stop_All"});
    QVERIFY(!eyetech::loadQuickLink2("/nonexistent/libQuickLink2.so"));
    QCOMPARE(quicklink2::QLCalibration_AddBias(1, 20, 300.0F, 4.0F), quicklink2::notLoaded);
}

void TestEyetechLibrary::failing_call_is_logged_when_its_result_changes() {
    static QStringList lines;
    lines.clear();
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &text) {
            lines << QString(context.category) + ": " + text;
        });
    for (const int result : {0, 3, 3, 0, 3, 77, 77}) {
        script_->QLDevice_Start = [result](int) { return result; };
        script_->QLDevice_Stop = script_->QLDevice_Start;
        (void)quicklink2::QLDevice_Start(1);
    }
    (void)quicklink2::QLDevice_Stop(1);  // another function has a line of its own
    qInstallMessageHandler(previous);
    QCOMPARE(lines,
             (QStringList{"ocela.eyetech: QLDevice_Start returned 3: unknown calibration",
                          "ocela.eyetech: QLDevice_Start returned 3: unknown calibration",
                          "ocela.eyetech: QLDevice_Start returned 77", "ocela.eyetech: QLDevice_Stop returned 77"}));
}

void TestEyetechLibrary::chooses_a_device_data() {
    QTest::addColumn<int>("result");
    QTest::addColumn<QList<int>>("devices");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("chosen");
    QTest::addColumn<QByteArray>("printed");
    const QByteArray question =
        "QLDevice_Enumerate() found 2 devices\n\nDevice 0\n\tdeviceInfo.modelName = TM\n"
        "\tdeviceInfo.serialNumber = " +
        QByteArray(64, '5') +
        "\n\nDevice 1\n"
        "\tdeviceInfo.modelName = TM\n\tdeviceInfo.serialNumber = " +
        QByteArray(64, '7') + "\n\nWhich device would you like to use? ";
    const QList<int> two{5, 7};
    QTest::newRow("enumeration fails") << 3 << two << QByteArray() << 0
                                       << QByteArray("QLDevice_Enumerate() failed with error code 3\n");
    QTest::newRow("no device") << 0 << QList<int>() << QByteArray() << 0 << QByteArray("No devices present.\n");
    QTest::newRow("one device") << 0 << QList<int>{5} << QByteArray() << 5 << QByteArray();
    QTest::newRow("the second of two") << 0 << two << QByteArray("1\n") << 7 << question;
    QTest::newRow("number too high") << 0 << two << QByteArray("2") << 0 << question + "Invalid device: 2.\n\n";
    QTest::newRow("a letter") << 0 << two << QByteArray("a") << 0 << question + "Invalid device: 49.\n\n";
    QTest::newRow("end of input") << 0 << two << QByteArray() << 0 << question + "Invalid device: -49.\n\n";
}

void TestEyetechLibrary::chooses_a_device() {
    QFETCH(const int, result);
    QFETCH(const QList<int>, devices);
    QFETCH(const QByteArray, input);
    QFETCH(const int, chosen);
    attach(result, devices);
    QList<int> given;
    script_->QLSettings_Load = [&](const char *path, int *settings) {
        return given << int(qstrlen(path)) << *settings, 0;
    };
    script_->QLDevice_ImportSettings = [&](int device, int settings) { return given << device << settings, 0; };
    script_->QLAPI_ImportSettings = [&](int settings) { return given << settings, 0; };
    if (result != 0)
        QTest::ignoreMessage(QtInfoMsg, "QLDevice_Enumerate returned 3: unknown calibration");
    QCOMPARE(select(input), chosen);
    QTEST(printed_, "printed");
    QCOMPARE(given, chosen == 0 ? QList<int>() : (QList<int>{15, 42, chosen, 42, 42}));
}

void TestEyetechLibrary::does_not_repeat_a_question_after_the_end_of_input() {
    attach(0, {1, 2, 3});
    QCOMPARE(select(QByteArray()), 0);
    QCOMPARE(select("1"), 0);
    QCOMPARE(printed_, QByteArray());
    attach(0, {1, 2});
    QCOMPARE(select("1"), 2);
}

OCELA_TEST(TestEyetechLibrary)
#include "tst_eyetech_library.moc"
