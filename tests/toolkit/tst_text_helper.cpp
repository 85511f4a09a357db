#include "support/test_main.h"
#include "toolkit/text_helper.h"

#include <QTest>

class TestTextHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void names_a_moment();
    void names_the_current_moment();
};

void TestTextHelper::names_a_moment() {
    const QDateTime local({2024, 3, 9}, {4, 5, 7, 42});
    QCOMPARE(TextHelper::DateTimeFileString(local, false), QString("2024-03-09_04-05-07"));
    const QDateTime elsewhere = local.toOffsetFromUtc(5 * 3600 + 45 * 60);
    QCOMPARE(TextHelper::DateTimeFileString(elsewhere, true), QString("2024-03-09_04-05-07-042"));
}

void TestTextHelper::names_the_current_moment() {
    const QString form = "yyyy-MM-dd_HH-mm-ss-zzz";
    // Across the turn of a second.
    const qint64 start = QDateTime::currentSecsSinceEpoch();
    while (QDateTime::currentSecsSinceEpoch() < start + 2) {
        const QString before = QDateTime::currentDateTime().toString(form);
        const QString now = TextHelper::DateTimeFileString(QDateTime(), true);
        const QString after = QDateTime::currentDateTime().toString(form);
        QVERIFY2(before <= now && now <= after, qPrintable(now));
        QCOMPARE(now.size(), form.size());
    }
}

OCELA_TEST(TestTextHelper)
#include "tst_text_helper.moc"
