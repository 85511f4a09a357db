#include "core/eye_tracking_csv.h"
#include "support/test_main.h"

#include <QFile>
#include <QTemporaryDir>

class TestEyeTrackingCSV : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_field_is_written_and_loaded();
    void time_starts_at_the_first_timestamp_other_than_zero();

private:
    QTemporaryDir folder_;
    const QString path_ = folder_.filePath("r.csv");
};

void TestEyeTrackingCSV::every_field_is_written_and_loaded() {
    EyeTrackingCSV recording(path_, false);
    recording.addSample(
        {1700000000123, true, false, true, 12.3F, 2, 3, 4, 5, 6, -7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20});
    recording.saveFile();
    QFile file(path_);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(),
             QByteArray("Timestamp,Time,Valid,X,Y,X_px,Y_px,Distance_cm,"
                        "L_X,L_Y,L_X_px,L_Y_px,L_Pupil_mm,L_PupilX_px,L_PupilY_px,"
                        "R_X,R_Y,R_X_px,R_Y_px,R_Pupil_mm,R_PupilX_px,R_PupilY_px,Focus\r\n"
                        "1700000000123,0,1,12.300000190734863,4,-7,8,20,2,5,9,10,17,13,14,3,6,11,12,18,15,16,19\r\n"));

    const EyeTrackingCSV loaded(path_, true);
    QCOMPARE(loaded.headers(), recording.headers());
    QCOMPARE(loaded.rows().at(0), recording.rows().at(0));
}

void TestEyeTrackingCSV::time_starts_at_the_first_timestamp_other_than_zero() {
    EyeTrackingCSV recording(path_, false);
    for (const qint64 timestamp : {0, 50, 70})
        recording.addSample({timestamp});
    const QList<qint64> times{0, 0, 20};
    for (int row = 0; row < times.size(); ++row)
        QCOMPARE(recording.rows().at(static_cast<std::size_t>(row)).at(1).toLongLong(), times[row]);
}

OCELA_TEST(TestEyeTrackingCSV)
#include "tst_eye_tracking_csv.moc"
