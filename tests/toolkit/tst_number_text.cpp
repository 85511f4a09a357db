#include "support/test_main.h"
#include "toolkit/number_text.h"

#include <QRandomGenerator>
#include <QTest>
#include <QVariant>
#include <cstring>
#include <limits>

class TestNumberText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void edge_values_read_as_QVariant_writes_them_data();
    void edge_values_read_as_QVariant_writes_them();
    void random_values_read_as_QVariant_writes_them();
};

namespace {

QString textOf(double value) {
    char text[numberTextRoom];
    return QString::fromLatin1(text, static_cast<int>(writeNumber(text, value) - text));
}

}  // namespace

void TestNumberText::edge_values_read_as_QVariant_writes_them_data() {
    QTest::addColumn<double>("value");
    QTest::newRow("zero") << 0.0;
    QTest::newRow("minus zero") << -0.0;
    QTest::newRow("widened float") << static_cast<double>(12.3F);
    QTest::newRow("just below the smallest plain number") << 0.00009999999;
    QTest::newRow("smallest plain number") << 0.0001;
    QTest::newRow("largest plain number") << 999999.99999999;
    QTest::newRow("million") << 1e6;
    QTest::newRow("tiny") << 1e-7;
    QTest::newRow("huge") << 1e22;
    QTest::newRow("largest") << std::numeric_limits<double>::max();
    QTest::newRow("denormal") << std::numeric_limits<double>::denorm_min();
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
}

void TestNumberText::edge_values_read_as_QVariant_writes_them() {
    QFETCH(double, value);
    QCOMPARE(textOf(value), QVariant(value).toString());
}

void TestNumberText::random_values_read_as_QVariant_writes_them() {
    QRandomGenerator random(1);
    for (int i = 0; i < 20000; ++i) {
        const double gaze = static_cast<double>(static_cast<float>(random.generateDouble() * 200.0 - 50.0));
        QCOMPARE(textOf(gaze), QVariant(gaze).toString());

        const quint64 bits = random.generate64();
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        QCOMPARE(textOf(any), QVariant(any).toString());
    }
}

OCELA_TEST(TestNumberText)
#include "tst_number_text.moc"
