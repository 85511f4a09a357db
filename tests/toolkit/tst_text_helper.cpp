#include "support/test_main.h"
#include "toolkit/text_helper.h"

#include <QTest>

class TestTextHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void names_a_moment();

private:
    QByteArray zoneBefore_;
};

void TestTextHelper::initTestCase() {
    // A zone away from UTC, or the row about zones would say nothing on a machine that runs in UTC.
    zoneBefore_ = qgetenv("TZ");
    qputenv("TZ", "Asia/Yekaterinburg");
}

void TestTextHelper::cleanupTestCase() {
    zoneBefore_.isNull() ? qunsetenv("TZ") : qputenv("TZ", zoneBefore_);
}

void TestTextHelper::names_a_moment() {
    const QDateTime local({2024, 3, 9}, {4, 5, 7, 42});
    QCOMPARE(TextHelper::DateTimeFileString(local, false), QString("2024-03-09_04-05-07"));
    QCOMPARE(TextHelper::DateTimeFileString(local.toUTC(), true), QString("2024-03-09_04-05-07-042"));
}

OCELA_TEST(TestTextHelper)
#include "tst_text_helper.moc"
