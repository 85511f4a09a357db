#include "support/test_main.h"
#include "toolkit/text_helper.h"

#include <QTest>

class TestTextHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void names_a_moment_data();
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

void TestTextHelper::names_a_moment_data() {
    QTest::addColumn<QDateTime>("moment");
    QTest::addColumn<bool>("withMilliseconds");
    QTest::addColumn<QString>("text");
    const QDateTime local({2024, 3, 9}, {4, 5, 7, 42});
    QTest::newRow("every field has its full width") << local << false << "2024-03-09_04-05-07";
    QTest::newRow("with milliseconds") << local << true << "2024-03-09_04-05-07-042";
    QTest::newRow("another zone's moment is told in local time") << local.toUTC() << true << "2024-03-09_04-05-07-042";
}

void TestTextHelper::names_a_moment() {
    QFETCH(QDateTime, moment);
    QFETCH(bool, withMilliseconds);
    QTEST(TextHelper::DateTimeFileString(moment, withMilliseconds), "text");
}

OCELA_TEST(TestTextHelper)
#include "tst_text_helper.moc"
