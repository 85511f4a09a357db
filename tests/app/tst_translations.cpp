#include "app/settings.h"
#include "support/test_main.h"
#include "trackers/eyetech/eyetech_settings.h"

#include <QTemporaryDir>
#include <QTest>

class TestTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(ocela); }
    void give_every_setting_a_name_data();
    void give_every_setting_a_name();

private:
    QTemporaryDir folder_;
};

void TestTranslations::give_every_setting_a_name_data() {
    QTest::addColumn<QString>("locale");
    QTest::newRow("Russian") << "ru_RU";
    QTest::newRow("English") << "en_US";
}

void TestTranslations::give_every_setting_a_name() {
    QFETCH(QString, locale);
    Settings settings(folder_.filePath("names.xml"), {"ru_RU", "en_US"}, nullptr);
    settings.setLanguage(locale);
    const EyetechSettings eyetech(folder_.filePath("eyetech.xml"), nullptr);
    for (const PropertyDescriptor &property : settings.metaDescriptor() + eyetech.metaDescriptor()) {
        if (!property.visible)
            continue;
        const QString shown = QCoreApplication::translate("Generic", property.displayName.toUtf8());
        const bool isPlainWord = property.name == "Language" || property.name == "Calibration";
        QVERIFY2(shown != property.name || isPlainWord, qPrintable(property.name));
    }
}

OCELA_TEST(TestTranslations)
#include "tst_translations.moc"
