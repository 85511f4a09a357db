#include "gaze/crossed_eye.h"
#include "support/test_main.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

class TestCrossedEye : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void detects_crossed_eyes();
};

/// The tests of the dashboard use the same cases. A sample is [count, x, y, rightX, rightY].
void TestCrossedEye::detects_crossed_eyes() {
    QFile file(OCELA_TEST_DATA "/crossed_eye.json");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray cases = QJsonDocument::fromJson(file.readAll()).array();
    QVERIFY(!cases.isEmpty());
    for (const QJsonValue &testCase : cases) {
        CrossedEye eye;
        const QJsonArray samples = testCase["samples"].toArray();
        for (const QJsonValue &sample : samples) {
            const auto value = [&](int index) { return sample[index].toDouble(qQNaN()); };
            for (int i = 0; i < sample[0].toInt(); ++i)
                eye.add({value(1), value(2)}, {value(3), value(4)});
        }
        QVERIFY2(eye.crossed() == testCase["crossed"].toBool(), qPrintable(testCase["name"].toString()));
    }
}

OCELA_TEST(TestCrossedEye)
#include "tst_crossed_eye.moc"
