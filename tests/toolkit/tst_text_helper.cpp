#include "support/test_main.h"
#include "toolkit/text_helper.h"

#include <QTest>

class TestTextHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void names_a_moment();
};

void TestTextHelper::names_a_moment() {
    const QDateTime local({2024, 3, 9}, {4, 5, 7, 42});
    QCOMPARE(TextHelper::DateTimeFileString(local, false), QString("2024-03-09_04-05-07"));
    const QDateTime elsewhere = local.toOffsetFromUtc(5 * 3600 + 45 * 60);
    QCOMPARE(TextHelper::DateTimeFileString(elsewhere, true), QString("2024-03-09_04-05-07-042"));
}

OCELA_TEST(TestTextHelper)
#include "tst_text_helper.moc"
