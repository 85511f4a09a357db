#include "support/test_main.h"
#include "toolkit/base/text_helper.h"

class TestTextHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void formats_a_local_time();
    void formats_the_current_time();
};

void TestTextHelper::formats_a_local_time() {
    const QDateTime local({2024, 3, 9}, {4, 5, 7, 42});
    QCOMPARE(TextHelper::DateTimeFileString(local, false), QString("2024-03-09_04-05-07"));
    const QDateTime elsewhere = local.toOffsetFromUtc(5 * 3600 + 45 * 60);
    QCOMPARE(TextHelper::DateTimeFileString(elsewhere, true), QString("2024-03-09_04-05-07-042"));
}

void TestTextHelper::formats_the_current_time() {
    const QString format = "yyyy-MM-dd_HH-mm-ss-zzz";
    const QString before = QDateTime::currentDateTime().toString(format);
    const QString now = TextHelper::DateTimeFileString(QDateTime(), true);
    const QString after = QDateTime::currentDateTime().toString(format);
    QVERIFY2(before <= now && now <= after, qPrintable(now));
}

OCELA_TEST(TestTextHelper)
#include "tst_text_helper.moc"
