#include "core/journal_recovery.h"
#include "core/record_description.h"
#include "core/recording_journal.h"
#include "journaled_recording.h"
#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <limits>

namespace {

/// Returns the header and the first `count` rows of a record file.
QByteArray records(int count) {
    QByteArray text = QByteArray::fromStdString(JournaledRecording::header());
    for (int row = 0; row < count; ++row)
        text += QByteArray::number(row) + ",0,1" + QByteArray(",0").repeated(20) + "\r\n";
    return text;
}

/// Returns the header and the first `count` rows of a samples file. The samples are 10 ms apart.
QByteArray samples(int count) {
    QByteArray text = "Number,Arrival_ms,L_Valid,R_Valid\r\n";
    for (int row = 0; row < count; ++row)
        text += QByteArray::number(row + 7) + ",17000000000" + QByteArray::number(row + 10) + "0.250,1,0\r\n";
    return text;
}

}  // namespace

class TestRecoveredCompanions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void missing_companions_are_written_data();
    void missing_companions_are_written();
    void recovered_companions_are_those_of_a_saved_recording();

private:
    void recover() const { JournalRecovery(path("journal"), path("records")).waitForDone(); }
    [[nodiscard]] QString path(const QString &name) const { return folder_->filePath(name); }
    [[nodiscard]] QString target(const QString &name) const { return path("target/" + name); }
    [[nodiscard]] QJsonObject description(const QString &name) const {
        return QJsonDocument::fromJson(readFile(target(name))).object();
    }
    [[nodiscard]] JournalInfo info() const;

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestRecoveredCompanions::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    for (const char *name : {"journal/a", "records", "target"})
        QVERIFY(QDir(folder_->path()).mkpath(name));
}

JournalInfo TestRecoveredCompanions::info() const {
    JournalInfo info = JournaledRecording::info(target("r.csv"));
    info.isDescribed = true;
    info.systemClockStepped = true;
    info.savingPath = target("saved.csv");
    info.savingRowCount = 3;
    return info;
}

void TestRecoveredCompanions::missing_companions_are_written_data() {
    QTest::addColumn<QString>("phase");  // or "not described"
    QTest::addColumn<QByteArray>("journalSamples");
    QTest::addColumn<QStringList>("existing");  // "own": the recording has written it; other files are foreign
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QByteArray>("writtenSamples");
    QTest::addColumn<QString>("figures");  // of the description: rate, longest gap, recovered
    QTest::addColumn<QString>("warning");

    const QStringList none;
    const QStringList recovered{"r_recovered.csv", "r_recovered.json", "r_recovered_samples.csv"};
    const QStringList saved{"saved.csv", "saved.json", "saved_samples.csv"};
    const QString few = "r_recovered_samples\\.csv has only the first %1 of 3 rows$";
    QTest::newRow("recovered") << "recording" << samples(3) << none << recovered << samples(3) << "100 10 1"
                               << "";
    QTest::newRow("torn row has a sample")
        << "recording" << samples(4) + "8,17" << none << recovered << samples(3) << "100 10 1"
        << "";
    QTest::newRow("samples were lost") << "recording" << samples(3).chopped(1) << none << recovered << samples(2)
                                       << "100 10 1" << few.arg(2);
    QTest::newRow("samples are damaged") << "recording" << samples(2) + "x,y\r\n"
                                         << none << recovered << samples(0) << "0 0 1" << few.arg(0);
    QTest::newRow("not described") << "not described" << samples(3) << none << QStringList{"r_recovered.csv"}
                                   << QByteArray() << ""
                                   << "";
    QTest::newRow("saved, then killed") << "saving" << samples(3) << none << saved << samples(3) << "100 10 0"
                                        << "";
    QTest::newRow("saved with samples, then killed")
        << "saving" << samples(2) << QStringList{"own saved_samples.csv"} << saved << samples(3) << "100 10 0"
        << "";
    QTest::newRow("saved with both, then killed")
        << "saving" << samples(2) << QStringList{"own saved_samples.csv", "own saved.json"} << saved << samples(3)
        << "0 0 0"
        << "";
    QTest::newRow("saved beside foreign files, then killed")
        << "saving" << samples(3) << QStringList{"saved.json", "saved_samples.csv"}
        << QStringList{"saved.csv", "saved.json", "saved_1.json", "saved_samples.csv", "saved_samples_1.csv"}
        << samples(3) << "100 10 0"
        << "";
    QTest::newRow("recovered, then killed") << "recovering" << samples(3) << none << saved << samples(3) << "100 10 1"
                                            << "";
}

void TestRecoveredCompanions::missing_companions_are_written() {
    QFETCH(QString, phase);
    QFETCH(QByteArray, journalSamples);
    QFETCH(QStringList, existing);
    QFETCH(QStringList, files);
    QFETCH(QByteArray, writtenSamples);
    QFETCH(QString, figures);
    QFETCH(QString, warning);
    JournalInfo journal = info();
    journal.isDescribed = phase != "not described";
    const bool isSaved = phase == "saving" || phase == "recovering";
    if (isSaved)
        QVERIFY(writeFile(target("saved.csv"), records(3)));
    journal.phase = isSaved ? JournalPhase::Saving : JournalPhase::Recording;
    journal.isRecovered = phase == "recovering";
    for (const QString &file : existing) {
        const QByteArray own = file.endsWith(".json") ? record_description::toJson(journal, {}) : samples(3);
        const bool isOwn = file.startsWith("own ");
        QVERIFY(writeFile(target(file.section(' ', -1)), isOwn ? own : QByteArray("foreign")));
    }
    QVERIFY(writeFile(path("journal/a/recording.json"), journal.toJson()));
    QVERIFY(writeFile(path("journal/a/rows.csv"), records(3)));
    QVERIFY(writeFile(path("journal/a/samples.csv"), journalSamples));
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));

    recover();
    QCOMPARE(journalsIn(path("journal")), QStringList());
    files.sort();
    QCOMPARE(QDir(path("target")).entryList(QDir::Files | QDir::Hidden, QDir::Name), files);
    const QString base = isSaved ? "saved" : "r_recovered";
    QCOMPARE(readFile(target(base + "_samples.csv")), writtenSamples);
    if (figures.isEmpty())
        return;
    const QJsonObject json = description(base + ".json");
    const QStringList described{QString::number(json["measuredRateHz"].toDouble()),
                                QString::number(json["longestGapMs"].toDouble()),
                                QString::number(json["recovered"].toBool())};
    QCOMPARE(described.join(' '), figures);
    QCOMPARE(json["startUtc"].toString(), "2023-11-14T22:13:20.123Z");
    QVERIFY(json["systemClockStepped"].toBool());
    for (const QString &file : files.filter("_1"))
        QCOMPARE(readFile(target(file)), QByteArray("foreign"));
}

void TestRecoveredCompanions::recovered_companions_are_those_of_a_saved_recording() {
    FakeTracker tracker;
    recording_journal::enable(tracker, path("running"), [] { return true; });
    tracker.startRecord(target("r.csv"));
    for (int i = 0; i < 200; ++i) {
        EyeTrackingSample sample;
        sample.timestamp = i;
        sample.valid = i % 3 != 0;
        sample.l_valid = i % 5 != 0;
        sample.r_valid = i % 7 != 0;
        sample.x = sample.r_y = 60.3F + static_cast<float>(i % 4);
        sample.y = sample.r_x = i == 20 ? std::numeric_limits<float>::quiet_NaN() : 12.7F;
        tracker.addSample(sample);
    }
    QTRY_COMPARE(readFile(journalsIn(path("running")).value(0) + "/rows.csv").count('\n'), 201);
    for (const char *name : {"/recording.json", "/rows.csv", "/samples.csv"})
        QVERIFY(QFile::copy(journalsIn(path("running")).first() + name, path("journal/a") + name));
    tracker.stopRecord();
    recover();
    QCOMPARE(readFile(target("r_recovered.csv")), readFile(target("r.csv")));
    QCOMPARE(readFile(target("r_recovered_samples.csv")), readFile(target("r_samples.csv")));
    QJsonObject saved = description("r.json");
    QVERIFY(saved["rightEyeCrossed"].toBool() && saved["measuredRateHz"].toDouble() > 0);
    saved["recovered"] = true;
    QCOMPARE(description("r_recovered.json"), saved);
}

OCELA_TEST(TestRecoveredCompanions)
#include "tst_recovered_companions.moc"
