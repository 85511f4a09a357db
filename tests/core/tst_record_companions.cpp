#include "core/recording_journal.h"
#include "support/fake_tracker.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

class TestRecordCompanions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void description_and_samples_stand_beside_the_record_file();
    void earlier_files_are_kept_data();
    void earlier_files_are_kept();
    void companion_that_cannot_be_saved_is_a_warning_data();
    void companion_that_cannot_be_saved_is_a_warning();
    void recordings_without_a_description_have_no_companions();

private:
    /// Records samples with a crossed right eye, and returns the path that the signal names.
    QString record(const QString &name, int sampleCount = 3);
    [[nodiscard]] QString path(const QString &name) const { return folder_->filePath("records/" + name); }
    [[nodiscard]] QStringList files() const { return QDir(path("")).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    [[nodiscard]] QJsonObject description(const QString &name) const {
        return QJsonDocument::fromJson(readFile(path(name))).object();
    }

    std::unique_ptr<QTemporaryDir> folder_;
    bool isDescribed_ = true;
};

void TestRecordCompanions::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    isDescribed_ = true;
    QVERIFY(QDir(folder_->path()).mkdir("records"));
}

QString TestRecordCompanions::record(const QString &name, int sampleCount) {
    FakeTracker tracker;
    QSignalSpy stopped(&tracker, &EyetrackerInterface::recordStopped);
    recording_journal::enable(tracker, folder_->filePath("journal"), [this] { return isDescribed_; });
    tracker.setCalibratedArea(10, 20, 300, 200);
    tracker.startRecord(path(name));
    for (int i = 0; i < sampleCount; ++i) {
        EyeTrackingSample sample;
        sample.valid = i % 4 != 0;
        sample.l_valid = i % 2 != 0;
        sample.r_valid = true;
        sample.x = sample.r_y = 70;
        sample.y = sample.r_x = 20;
        tracker.addSample(sample);
    }
    tracker.stopRecord();
    return stopped.value(0).value(0).toString();
}

void TestRecordCompanions::description_and_samples_stand_beside_the_record_file() {
    const qint64 startMs = QDateTime::currentMSecsSinceEpoch();
    QCOMPARE(record("r.csv", 80), path("r.csv"));
    const qint64 endMs = QDateTime::currentMSecsSinceEpoch();
    QCOMPARE(files(), QStringList({"r.csv", "r.json", "r_samples.csv"}));
    QCOMPARE(QDir(folder_->filePath("journal")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());

    const QList<QByteArray> lines = readFile(path("r_samples.csv")).split('\n');
    QCOMPARE(lines.size(), 82);
    QCOMPARE(lines.first(), QByteArray("Number,Arrival_ms,L_Valid,R_Valid\r"));
    quint64 number = lines.value(1).split(',').first().toULongLong();
    double arrivalMs = static_cast<double>(startMs);
    for (int row = 0; row < 80; ++row) {
        const auto match = QRegularExpression(R"(^(\d+),(\d{13}\.\d{3}),([01]),1\r$)").match(lines[row + 1]);
        QVERIFY2(match.hasMatch(), lines[row + 1].constData());
        QCOMPARE(match.captured(1).toULongLong(), number++);
        QVERIFY(match.captured(2).toDouble() >= arrivalMs);
        arrivalMs = match.captured(2).toDouble();
        QCOMPARE(match.captured(3).toInt(), row % 2);
    }
    QVERIFY(arrivalMs <= static_cast<double>(endMs + 1));

    const QJsonObject json = description("r.json");
    const QString start = json["startUtc"].toString();
    QVERIFY2(QRegularExpression(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$)").match(start).hasMatch(),
             qPrintable(start));
    const qint64 describedMs = QDateTime::fromString(start, Qt::ISODateWithMs).toMSecsSinceEpoch();
    QVERIFY(describedMs >= startMs && describedMs <= endMs);
    QCOMPARE(json["tracker"].toString(), "fake");
    QCOMPARE(json["calibratedAreaPx"].toObject(), QJsonObject({{"x", 10}, {"y", 20}, {"width", 300}, {"height", 200}}));
    QVERIFY(json["screenPx"]["width"].toInt() > 0);
    QVERIFY(json["nominalRateHz"].isNull());
    QCOMPARE(json["sampleCount"].toInt(), 80);
    QCOMPARE(json["validShare"].toObject(), QJsonObject({{"combined", 0.75}, {"left", 0.5}, {"right", 1}}));
    const double durationMs = arrivalMs - lines[1].split(',').value(1).toDouble();
    QVERIFY(qAbs(json["durationMs"].toDouble() - durationMs) < 0.002);
    QVERIFY(json["rightEyeCrossed"].toBool());
    QVERIFY(json["recovered"].isBool() && !json["recovered"].toBool());

    QStringList names;
    const QJsonArray columns = json["columns"].toArray();
    for (const QJsonValue &column : columns)
        names << column["name"].toString();
    QCOMPARE(names.join(',').toUtf8() + '\r', readFile(path("r.csv")).split('\n').first());
    QCOMPARE(columns[12]["unit"].toString(), "mm");
}

void TestRecordCompanions::earlier_files_are_kept_data() {
    // "kept" has the new names of the earlier files.
    dataColumns<QStringList, QString, QString, QString>("earlier", "name", "kept", "written");

    const QString written = "r.csv r.json r_samples.csv";
    const QStringList recording{"r.csv", "r.json", "r_samples.csv"};
    dataRow("recording with companions", recording, "r.csv", "r_1.csv r_1.json r_1_samples.csv", written);
    dataRow("its new names are taken", recording + QStringList{"r_1.json", "r_1_samples.csv"}, "r.csv",
            "r_1.csv r_2.json r_samples_1.csv r_1.json r_1_samples.csv", written);
    dataRow("only a description", QStringList{"r.json", "r_1.json"}, "r.csv", "r_2.json r_1.json", written);
    dataRow("suffix in capitals", QStringList{"r"}, "r.CSV", "r", "r.CSV r.json r_samples.csv");
    dataRow("another suffix", QStringList{"r.json"}, "r.json", "r_1.json", "r.json r.json.json r.json_samples.csv");
}

void TestRecordCompanions::earlier_files_are_kept() {
    QFETCH(QStringList, earlier);
    QFETCH(QString, name);
    QFETCH(QString, kept);
    QFETCH(QString, written);
    for (const QString &file : earlier)
        QVERIFY(writeFile(path(file), file.toUtf8()));
    QCOMPARE(record(name), path(name));

    QStringList contents;
    for (const QString &file : kept.split(' '))
        contents << readFile(path(file));
    QCOMPARE(contents, earlier);
    QStringList expected = (kept + ' ' + written).split(' ');
    expected.sort();
    QCOMPARE(files(), expected);
}

void TestRecordCompanions::companion_that_cannot_be_saved_is_a_warning_data() {
    dataColumns<QString, QString, QString>("name", "warning", "description");
    const QString longName(245, 'x');
    dataRow("name is too long", longName + ".csv", "^Cannot save .*x_samples\\.csv, which.*: .+", longName + ".json");
    dataRow("folder has the name", "r.csv", "^Cannot save .*r\\.json, which.*: .+r_1\\.json$", "r_1.json");
}

void TestRecordCompanions::companion_that_cannot_be_saved_is_a_warning() {
    QFETCH(QString, name);
    QFETCH(QString, warning);
    QFETCH(QString, description);
    QVERIFY(QDir(path("")).mkdir("r.json"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));
    QCOMPARE(record(name), path(name));
    QCOMPARE(readFile(path(name)).count('\n'), 4);
    QCOMPARE(this->description(description)["sampleCount"].toInt(), 3);
    QVERIFY(files().filter("unfinished").isEmpty());
}

void TestRecordCompanions::recordings_without_a_description_have_no_companions() {
    isDescribed_ = false;
    record("r.csv");
    QCOMPARE(files(), QStringList{"r.csv"});
}

OCELA_TEST(TestRecordCompanions)
#include "tst_record_companions.moc"
