#include "app/settings.h"
#include "support/test_main.h"
#include "toolkit/property_list_control.h"

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QXmlStreamReader>

namespace {

struct Catalogue {
    QStringList texts;         ///< context and source text, in order
    QStringList untranslated;  ///< those of them that lack a finished translation
};

void readMessage(QXmlStreamReader &xml, const QString &context, Catalogue &catalogue) {
    QString text = context + ": ";
    bool finished = false;
    while (xml.readNextStartElement()) {
        const bool isTranslation = xml.name() == QLatin1String("translation");
        const bool isSource = xml.name() == QLatin1String("source");
        const bool marked = xml.attributes().hasAttribute("type");
        const QString contents = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        if (isSource)
            text += contents;
        if (isTranslation)
            finished = !marked && !contents.trimmed().isEmpty();
    }
    catalogue.texts << text;
    if (!finished)
        catalogue.untranslated << text;
}

Catalogue readCatalogue(const QString &path) {
    QFile file(path);
    Catalogue catalogue;
    if (!file.open(QIODevice::ReadOnly))
        return catalogue;
    QXmlStreamReader xml(&file);
    QString context;
    while (!xml.atEnd()) {
        if (!xml.readNext() || !xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("message"))
            readMessage(xml, context, catalogue);
    }
    return catalogue;
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
    void switch_a_living_editor_in_both_directions();

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

    QProcess lupdate;
    const QStringList options{"-silent", "-locations", "none", "-no-obsolete"};
    const QStringList noGuesses{"-disable-heuristic", "sametext", "-disable-heuristic", "similartext"};
    lupdate.start(OCELA_LUPDATE, options + noGuesses + QStringList{source + "/src", "-ts", updated});
    QVERIFY2(lupdate.waitForFinished(60000), qPrintable(lupdate.errorString()));
    QVERIFY2(lupdate.exitCode() == 0, lupdate.readAllStandardError().constData());

    const Catalogue catalogue = readCatalogue(updated);
    QVERIFY(!catalogue.texts.isEmpty());
    QCOMPARE(catalogue.untranslated.join('\n'), QString());
    QCOMPARE(readCatalogue(committed).texts.join('\n'), catalogue.texts.join('\n'));
}

void TestTranslations::give_every_setting_a_name() {
    QFETCH(QString, locale);
    Settings settings(folder_.filePath("names.xml"), {"ru_RU", "en_US"}, nullptr);
    settings.setLanguage(locale);
    for (const PropertyDescriptor &property : settings.metaDescriptor()) {
        if (!property.visible)
            continue;
        const QString shown = QCoreApplication::translate("Generic", property.displayName.toUtf8());
        QVERIFY2(shown != property.name || property.name == "Language", qPrintable(property.name));
    }
}

void TestTranslations::switch_a_living_editor_in_both_directions() {
    Settings settings(folder_.filePath("switch.xml"), {"ru_RU", "en_US"}, nullptr);
    settings.setLanguage("en_US");
    PropertyListControl control(&settings);
    const auto *category = control.findChild<QLabel *>("categoryHeaderLabel");
    const auto *name = control.findChild<QLabel *>("propertyHeaderLabel");
    const auto *reset = control.findChild<QToolButton *>("resetAutoRun");
    auto *language = control.findChild<QComboBox *>("Language");
    const auto texts = [&] {
        return QStringList{category->text(), name->text(), reset->toolTip(), language->currentText()};
    };
    const QStringList english{"Common", "Language", "Reset to default: on", "English"};
    const QStringList russian{"Общие", "Язык", "Вернуть значение по умолчанию: включено", "Русский"};

    QCOMPARE(texts(), english);
    QTest::keyClick(language, Qt::Key_Up);
    QTRY_COMPARE(texts(), russian);
    QTest::keyClick(language, Qt::Key_Down);
    QTRY_COMPARE(texts(), english);
    settings.setLanguage("ru_RU");
    QTRY_COMPARE(texts(), russian);
}

OCELA_TEST(TestTranslations)
#include "tst_translations.moc"
