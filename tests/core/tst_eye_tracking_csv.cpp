#include "core/eye_tracking_csv.h"
#include "support/test_main.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr char headerLine[] =
    "Timestamp,Time,Valid,X,Y,X_px,Y_px,Distance_cm,L_X,L_Y,L_X_px,L_Y_px,L_Pupil_mm,L_PupilX_px,L_PupilY_px,"
    "R_X,R_Y,R_X_px,R_Y_px,R_Pupil_mm,R_PupilX_px,R_PupilY_px,Focus";

QStringList linesOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split("\r\n", Qt::SkipEmptyParts)
                                          : QStringList();
}

EyeTrackingSample sampleAt(qint64 timestamp) {
    EyeTrackingSample sample;
    sample.timestamp = timestamp;
    return sample;
}

}  // namespace

class TestEyeTrackingCSV : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_field_lands_in_its_column();
    void time_starts_with_the_first_timestamp_that_is_not_zero();
    void reads_a_record_back();

private:
    QTemporaryDir folder_;
    const QString path_ = folder_.filePath("r.csv");
};

void TestEyeTrackingCSV::every_field_lands_in_its_column() {
    EyeTrackingCSV record(path_, false);
    record.addSample(
        {100, true, false, true, 1.5F, 2, 3, 4, 5, 6, -7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20});
    record.saveFile();
    QCOMPARE(linesOf(path_),
             QStringList({headerLine, "100,0,1,1.5,4,-7,8,20,2,5,9,10,17,13,14,3,6,11,12,18,15,16,19"}));
}

void TestEyeTrackingCSV::time_starts_with_the_first_timestamp_that_is_not_zero() {
    EyeTrackingCSV record(path_, false);
    for (const qint64 timestamp : {0, 50, 70})
        record.addSample(sampleAt(timestamp));
    QList<qint64> times;
    for (std::size_t row = 0; row < record.rows().size(); ++row)
        times << record.rows().at(row).at(1).toLongLong();
    QCOMPARE(times, QList<qint64>({0, 0, 20}));
}

void TestEyeTrackingCSV::reads_a_record_back() {
    EyeTrackingCSV record(path_, false);
    EyeTrackingSample sample = sampleAt(1700000000123);
    sample.x = 12.3F;
    sample.x_px = -192;
    record.addSample(sample);
    record.saveFile();

    const EyeTrackingCSV loaded(path_, true);
    QCOMPARE(loaded.headers(), record.headers());
    QCOMPARE(loaded.rows().at(0), record.rows().at(0));
}

OCELA_TEST(TestEyeTrackingCSV)
#include "tst_eye_tracking_csv.moc"
