#include "support/test_main.h"
#include "toolkit/table/number_text.h"

#include <QRandomGenerator>
#include <QVariant>
#include <cstring>
#include <limits>

class TestNumberText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void has_the_text_of_QVariant();
};

namespace {

QString textOf(double value) {
    char text[number_text::maxBytes];
    return QString::fromLatin1(text, static_cast<int>(number_text::write(text, value) - text));
}

}  // namespace

void TestNumberText::has_the_text_of_QVariant() {
    using Limits = std::numeric_limits<double>;
    for (const double value : {0.0, -0.0, 0.00009999999, 0.0001, 999999.99999999, 1e6, 1e-7, 1e22, Limits::max(),
                               Limits::denorm_min(), Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()})
        QCOMPARE(textOf(value), QVariant(value).toString());

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
