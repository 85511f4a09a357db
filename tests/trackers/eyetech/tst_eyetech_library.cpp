#include "support/redirected.h"
#include "support/test_main.h"
#include "trackers/eyetech/eyetech_device_selection.h"
#include "trackers/eyetech/eyetech_library.h"
#include "trackers/eyetech/script.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <unistd.h>

class TestEyetechLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void calls_go_through_while_the_library_is_loaded();
    void failing_call_is_logged_when_its_result_changes();
    void chooses_a_device_data();
    void chooses_a_device();
    void leaves_several_devices_undecided_data();
    void leaves_several_devices_undecided();
    void applies_the_settings_file();

private:
    /// Returns the result of selectDevice() with `input` on standard input. Its output is in `printed_`.
    eyetech::DeviceSelection select(const QByteArray &input, const QStringList &serialNumbers = {});
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
}

eyetech::DeviceSelection TestEyetechLibrary::select(const QByteArray &input, const QStringList &serialNumbers) {
    QFile in(folder_.filePath("in"));
    QFile out(folder_.filePath("out"));
    if (!in.open(QIODevice::ReadWrite | QIODevice::Truncate) || !out.open(QIODevice::ReadWrite | QIODevice::Truncate))
        qFatal("cannot create the files for the streams");
    in.write(input);
    in.seek(0);
    eyetech::DeviceSelection selection;
    {
        const Redirected typed(STDIN_FILENO, in.handle());
        const Redirected shown(STDOUT_FILENO, out.handle());
        selection = eyetech::selectDevice(serialNumbers);
    }
    out.seek(0);
    printed_ = out.readAll();
    return selection;
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
    dataColumns<int, QList<int>, QByteArray, int, QByteArray>("result", "devices", "input", "chosen", "printed");
    const QByteArray question =
        "QLDevice_Enumerate() found 2 devices\n\nDevice 0\n\tdeviceInfo.modelName = TM\n"
        "\tdeviceInfo.serialNumber = " +
        QByteArray(64, '5') +
        "\n\nDevice 1\n"
        "\tdeviceInfo.modelName = TM\n\tdeviceInfo.serialNumber = " +
        QByteArray(64, '7') + "\n\nWhich device would you like to use? ";
    const QList<int> two{5, 7};
    dataRow("enumeration fails", 3, two, QByteArray(), 0,
            QByteArray("QLDevice_Enumerate() failed with error code 3\n"));
    dataRow("no device", 0, QList<int>(), QByteArray(), 0, QByteArray("No devices present.\n"));
    dataRow("one device", 0, QList<int>{5}, QByteArray(), 5, QByteArray());
    dataRow("the second of two", 0, two, QByteArray("1\n"), 7, question);
    dataRow("number too high", 0, two, QByteArray("2"), 0, question + "Invalid device: 2.\n\n");
    dataRow("a letter", 0, two, QByteArray("a"), 0, question + "Invalid device: 49.\n\n");
}

void TestEyetechLibrary::chooses_a_device() {
    QFETCH(const int, result);
    QFETCH(const QList<int>, devices);
    QFETCH(const QByteArray, input);
    QFETCH(const int, chosen);
    attach(result, devices);
    if (result != 0)
        QTest::ignoreMessage(QtInfoMsg, "QLDevice_Enumerate returned 3: unknown calibration");
    const eyetech::DeviceSelection selection = select(input);
    QCOMPARE(selection.device, chosen);
    QVERIFY(selection.undecided.empty());
    QTEST(printed_, "printed");
}

void TestEyetechLibrary::leaves_several_devices_undecided_data() {
    dataColumns<QStringList, int>("serialNumbers", "chosen");
    const QString third(64, '3');
    QTest::newRow("no serial number") << QStringList{QString(), QString()} << 0;
    QTest::newRow("unknown serial number") << QStringList{"4"} << 0;
    QTest::newRow("known serial number") << QStringList{third} << 3;
    QTest::newRow("second number is known") << QStringList{"4", third} << 3;
    QTest::newRow("first number takes precedence") << QStringList{QString(64, '2'), third} << 2;
}

// Without input, no console can answer.
void TestEyetechLibrary::leaves_several_devices_undecided() {
    QFETCH(const QStringList, serialNumbers);
    QFETCH(const int, chosen);
    attach(0, {1, 2, 3});
    const eyetech::DeviceSelection selection = select(QByteArray(), serialNumbers);
    QCOMPARE(selection.device, chosen);
    QCOMPARE(selection.undecided, chosen == 0 ? (std::vector<int>{1, 2, 3}) : std::vector<int>());
    QCOMPARE(printed_, QByteArray());
    attach(0, {1});
    QCOMPARE(select(QByteArray(), serialNumbers).device, 1);
}

void TestEyetechLibrary::applies_the_settings_file() {
    QList<int> given;
    script_->QLSettings_Create = [](int, int *settings) { return *settings = 42, 0; };
    script_->QLSettings_Load = [&](const char *path, int *settings) {
        return given << int(qstrlen(path)) << *settings, 1;
    };
    script_->QLDevice_ImportSettings = [&](int device, int settings) { return given << device << settings, 0; };
    script_->QLAPI_ImportSettings = [&](int settings) { return given << settings, 0; };
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression("absent.txt does not exist"));
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression("QLSettings_Load returned 1"));
    eyetech::applySettings(7, "absent.txt");
    QCOMPARE(given, (QList<int>{10, 42, 7, 42, 42}));
}

OCELA_TEST(TestEyetechLibrary)
#include "tst_eyetech_library.moc"
