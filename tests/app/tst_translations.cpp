#include "app/settings.h"
#include "support/file_content.h"
#include "support/test_main.h"
#include "trackers/eyetech/eyetech_settings.h"

#include <QProcess>
#include <QTemporaryDir>

class TestTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(ocela); }
    void contain_every_source_text();
    void contain_the_name_of_every_setting();

private:
    QTemporaryDir folder_;
};

void TestTranslations::contain_every_source_text() {
    const QString source = OCELA_SOURCE_DIR;
    for (const QString &locale : Settings::supportedLanguages()) {
        const QString name = QString("ocela_%1.ts").arg(locale);
        const QByteArray committed = readFile(source + "/translations/" + name);
        const QString updated = folder_.filePath(name);
        QVERIFY(writeFile(updated, committed));
        const QStringList options{"-silent",  "-locations",         "none",       "-no-obsolete", "-disable-heuristic",
                                  "sametext", "-disable-heuristic", "similartext"};
        QCOMPARE(QProcess::execute(OCELA_LUPDATE, options + QStringList{source + "/src", "-ts", updated}), 0);
        QCOMPARE(readFile(updated), committed);  // if not, run tools/translate
        QVERIFY2(!committed.contains("type=\"unfinished\""), qPrintable(name));
        QVERIFY2(!committed.contains("<translation></translation>"), qPrintable(name));
    }
}

void TestTranslations::contain_the_name_of_every_setting() {
    Settings settings(folder_.filePath("names.xml"), Settings::supportedLanguages(), nullptr);
    const EyetechSettings eyetech(folder_.filePath("eyetech.xml"), nullptr);
    for (const QString &locale : Settings::supportedLanguages()) {
        settings.setLanguage(locale);
        for (const PropertyDescriptor &property : settings.metaDescriptor() + eyetech.metaDescriptor()) {
            const QString shown = QCoreApplication::translate("Generic", property.displayName.toUtf8());
            const bool isEnglishWord = property.name == "Language" || property.name == "Calibration";
            QVERIFY2(!property.visible || shown != property.name || isEnglishWord, qPrintable(property.name));
        }
    }
}

OCELA_TEST(TestTranslations)
#include "tst_translations.moc"
