#include "app/settings.h"
#include "support/test_main.h"
#include "trackers/eyetech/eyetech_settings.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Empty when the program ends well, else what it said.
QByteArray run(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return process.errorString().toUtf8();
    return process.exitCode() == 0 ? QByteArray() : process.readAllStandardError() + "failed";
}

}  // namespace

class TestTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(ocela); }
    void cover_every_source_text_data();
    void cover_every_source_text();
    void give_every_setting_a_name_data() { languages(); }
    void give_every_setting_a_name();

private:
    static void languages();

    QTemporaryDir folder_;
};

void TestTranslations::languages() {
    QTest::addColumn<QString>("locale");
    QTest::newRow("Russian") << "ru_RU";
    QTest::newRow("English") << "en_US";
}

void TestTranslations::cover_every_source_text_data() {
    languages();
}

void TestTranslations::cover_every_source_text() {
    QFETCH(QString, locale);
    const QString name = QString("ocela_%1.ts").arg(locale);
    const QString source = OCELA_SOURCE_DIR;
    const QString committed = source + "/translations/" + name;
    const QString updated = folder_.filePath(name);
    QVERIFY(QFile::copy(committed, updated));

    const QStringList noGuesses{"-disable-heuristic", "sametext", "-disable-heuristic", "similartext"};
    QCOMPARE(run(OCELA_LUPDATE, QStringList{"-silent", "-locations", "none", "-no-obsolete"} + noGuesses +
                                    QStringList{source + "/src", "-ts", updated}),
             QByteArray());
    QCOMPARE(contentOf(updated), contentOf(committed));  // else a text came or went without tools/translate

    QVERIFY(!contentOf(committed).contains("type=\"unfinished\""));
    QVERIFY(!contentOf(committed).contains("<translation></translation>"));
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
