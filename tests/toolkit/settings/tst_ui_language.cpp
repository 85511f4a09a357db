#include "support/test_main.h"
#include "toolkit/settings/ui_language.h"

class TestUiLanguage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void selects_the_language_of_the_system_data();
    void selects_the_language_of_the_system();
};

void TestUiLanguage::selects_the_language_of_the_system_data() {
    dataColumns<QStringList, QStringList, QString>("offered", "system", "expected");

    const QStringList both{"ru_RU", "en_US"};
    QTest::newRow("Russian") << both << QStringList{"ru-RU", "en-US"} << "ru_RU";
    QTest::newRow("Russian of another country") << both << QStringList{"ru-KZ"} << "ru_RU";
    QTest::newRow("Russian is the second system language") << both << QStringList{"de-DE", "ru-RU"} << "en_US";
    QTest::newRow("no system language") << both << QStringList{} << "en_US";
    QTest::newRow("English is not offered") << QStringList{"ru_RU", "de_DE"} << QStringList{"fr-FR"} << "ru_RU";
    QTest::newRow("no language is offered") << QStringList{} << QStringList{"ru-RU"} << "";
}

void TestUiLanguage::selects_the_language_of_the_system() {
    QFETCH(QStringList, offered);
    QFETCH(QStringList, system);
    QTEST(UiLanguage::preferred(offered, system), "expected");
}

OCELA_TEST(TestUiLanguage)
#include "tst_ui_language.moc"
