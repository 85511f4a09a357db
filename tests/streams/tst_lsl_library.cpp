#include "core/sample_signal.h"
#include "streams/lsl_streams.h"
#include "support/test_main.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>

/// The user's way to the library: it is missing, then unusable, then copied beside the program.
class TestLslLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void library_is_looked_up_again_when_the_streams_are_turned_on();
};

namespace {

#ifdef Q_OS_WIN
constexpr char fileName[] = "lsl.dll";
constexpr char fileNameWithoutVersion[] = "lsl.dll";
#else
constexpr char fileName[] = "liblsl.so.2";
constexpr char fileNameWithoutVersion[] = "liblsl.so";
#endif

QString beside(const QString &name) {
    return QCoreApplication::applicationDirPath() + '/' + name;
}

}  // namespace

void TestLslLibrary::library_is_looked_up_again_when_the_streams_are_turned_on() {
    QFile::remove(beside(fileName));
    QFile::remove(beside(fileNameWithoutVersion));
    LslStreams streams(std::make_shared<SampleSignal>());
    const auto turnOn = [&] {
        streams.setOn(false);
        streams.setOn(true);
    };

    QTest::ignoreMessage(QtInfoMsg, QRegularExpression("^LSL streams cannot be used: library .* not found"));
    turnOn();
    QTRY_VERIFY(streams.problem().contains("not found"));
    QVERIFY(streams.problem().contains("https://github.com/sccn/liblsl/releases"));

    QVERIFY(QFile::copy(OCELA_INCOMPLETE_LSL, beside(fileNameWithoutVersion)));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^LSL streams cannot be used: .* lsl_local_clock"));
    turnOn();
    QTRY_VERIFY(streams.problem().contains("lacks the entry point lsl_local_clock"));

    QFile::remove(beside(fileNameWithoutVersion));
    QVERIFY(QFile::copy(OCELA_SCRIPTED_LSL, beside(fileName)));
    QSignalSpy changes(&streams, &LslStreams::problemChanged);
    turnOn();
    QTRY_COMPARE(changes.count(), 2);
    QCOMPARE(streams.problem(), QString());
}

OCELA_TEST(TestLslLibrary)
#include "tst_lsl_library.moc"
