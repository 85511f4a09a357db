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
#include <limits>

class TestRecoveredCompanions : public JournalTest {
    Q_OBJECT

private Q_SLOTS:
    void missing_companions_are_written_data();
    void missing_companions_are_written();
    void recovered_files_are_those_of_a_saved_recording();

private:
    void recover() const { JournalRecovery(path("journal"), path("records")).waitForDone(); }
    [[nodiscard]] QJsonObject description(const QString &name) const {
        return QJsonDocument::fromJson(readFile(target(name))).object();
    }
    [[nodiscard]] JournalInfo info() const;
};

JournalInfo TestRecoveredCompanions::info() const {
    JournalInfo info = JournaledRecording::info(target("r.csv"));
    info.isDescribed = true;
    info.systemClockStepped = true;
    info.savingPath = target("saved.csv");
    info.savingRowCount = 3;
    return info;
}

void TestRecoveredCompanions::missing_companions_are_written_data() {
    // The recording has written the existing files with "own"; the others are foreign. The figures are those of the
    // description: rate, longest gap, recovered.
    dataColumns<QString, QByteArray, QStringList, QStringList, QByteArray, QString, QString>(
        "phase", "journalSamples", "existing", "files", "writtenSamples", "figures", "warning");

    const QStringList none;
    const QStringList recovered{"r_recovered.csv", "r_recovered.json", "r_recovered_samples.csv"};
    const QStringList saved{"saved.csv", "saved.json", "saved_samples.csv"};
    const QString few = "r_recovered_samples\\.csv has only the first %1 of 3 rows$";
    dataRow("recovered", "recording", samplesText(3), none, recovered, samplesText(3), "100 10 1", "");
    dataRow("torn row has a sample", "recording", samplesText(4) + "8,17", none, recovered, samplesText(3), "100 10 1",
            "");
    dataRow("samples were lost", "recording", samplesText(3).chopped(1), none, recovered, samplesText(2), "100 10 1",
            few.arg(2));
    dataRow("samples are damaged", "recording", samplesText(2) + "x,y\r\n", none, recovered, samplesText(0), "0 0 1",
            few.arg(0));
    dataRow("not described", "not described", samplesText(3), none, QStringList{"r_recovered.csv"}, QByteArray(), "",
            "");
    dataRow("saved, then killed", "saving", samplesText(3), none, saved, samplesText(3), "100 10 0", "");
    dataRow("saved with samples, then killed", "saving", samplesText(2), QStringList{"own saved_samples.csv"}, saved,
            samplesText(3), "100 10 0", "");
    dataRow("saved with both, then killed", "saving", samplesText(2),
            QStringList{"own saved_samples.csv", "own saved.json"}, saved, samplesText(3), "0 0 0", "");
    dataRow("saved beside foreign files, then killed", "saving", samplesText(3),
            QStringList{"saved.json", "saved_samples.csv"},
            QStringList{"saved.csv", "saved.json", "saved_1.json", "saved_samples.csv", "saved_samples_1.csv"},
            samplesText(3), "100 10 0", "");
    dataRow("recovered, then killed", "recovering", samplesText(3), none, saved, samplesText(3), "100 10 1", "");
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
        QVERIFY(writeFile(target("saved.csv"), recordText(3)));
    journal.phase = isSaved ? JournalPhase::Saving : JournalPhase::Recording;
    journal.isRecovered = phase == "recovering";
    for (const QString &file : existing) {
        const QByteArray own = file.endsWith(".json") ? record_description::toJson(journal, {}) : samplesText(3);
        const bool isOwn = file.startsWith("own ");
        QVERIFY(writeFile(target(file.section(' ', -1)), isOwn ? own : QByteArray("foreign")));
    }
    QVERIFY(writeFile(path("journal/a/recording.json"), journal.toJson()));
    QVERIFY(writeFile(path("journal/a/rows.csv"), recordText(3)));
    QVERIFY(writeFile(path("journal/a/samples.csv"), journalSamples));
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));

    recover();
    QCOMPARE(journalsIn(path("journal")), QStringList());
    files.sort();
    QCOMPARE(JournalTest::files("target"), files);
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

void TestRecoveredCompanions::recovered_files_are_those_of_a_saved_recording() {
    const auto journals = [this] { return journalsIn(path("running")); };
    auto tracker = std::make_unique<FakeTracker>();
    tracker->setCalibratedArea(10, 20, 300, 200);
    recording_journal::enable(*tracker, path("running"), [] { return true; });
    tracker->startRecord(target("r.csv"));
    for (int i = 0; i < 200; ++i) {
        EyeTrackingSample sample;
        sample.timestamp = i;
        sample.valid = i % 3 != 0;
        sample.l_valid = i % 5 != 0;
        sample.r_valid = i % 7 != 0;
        sample.x = sample.r_y = 60.3F + static_cast<float>(i % 4);
        sample.y = sample.r_x = i == 20 ? std::numeric_limits<float>::quiet_NaN() : 12.7F;
        tracker->addSample(sample);
    }
    QTRY_COMPARE(readFile(journals().value(0) + "/rows.csv").count('\n'), 201);
    const QByteArray lastSample = readFile(journals().first() + "/samples.csv").split('\n').value(200);
    QCOMPARE(lastSample.split(',').first().toULongLong(), tracker->lastNumberedSample().number);
    for (const char *name : {"/recording.json", "/rows.csv", "/samples.csv"})
        QVERIFY(QFile::copy(journals().first() + name, path("journal/a") + name));
    tracker->stopRecord();
    QCOMPARE(journals(), QStringList());
    recover();
    QCOMPARE(readFile(target("r_recovered.csv")), readFile(target("r.csv")));
    QCOMPARE(readFile(target("r_recovered_samples.csv")), readFile(target("r_samples.csv")));
    QJsonObject saved = description("r.json");
    QVERIFY(saved["rightEyeCrossed"].toBool() && saved["measuredRateHz"].toDouble() > 0);
    QCOMPARE(saved["calibratedAreaPx"].toObject()["width"].toInt(), 300);
    QCOMPARE(saved["tracker"].toString(), tracker->name());
    saved["recovered"] = true;
    QCOMPARE(description("r_recovered.json"), saved);

    // The journal stays when the tracker is destroyed during a recording.
    tracker->startRecord(target("destroyed.csv"));
    tracker->addSample({1});
    tracker.reset();
    JournalRecovery(path("running"), path("records")).waitForDone();
    QCOMPARE(readFile(target("destroyed_recovered.csv")).count('\n'), 2);
}

OCELA_TEST(TestRecoveredCompanions)
#include "tst_recovered_companions.moc"
