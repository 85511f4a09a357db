#include "support/file_content.h"
#include "support/sample_settings.h"
#include "support/test_main.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <memory>

class TestSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // QMetaProperty::read() returns an int until the type of the enum is registered.
    void initTestCase() { qRegisterMetaType<SampleSettings::Mode>("SampleSettings::Mode"); }
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }
    void setter_reports_a_change_once();
    void writes_a_readable_file();
    void keeps_any_text();
    void keeps_unknown_properties();
    void reload_sets_the_properties_from_the_file();
    void replaces_invalid_values_and_values_outside_the_range_data();
    void replaces_invalid_values_and_values_outside_the_range();
    void renames_a_damaged_file_data();
    void renames_a_damaged_file();
    void warns_when_it_cannot_save();

private:
    QString path(const QString &name = "settings.xml") const { return folder_->filePath(name); }
    void write(const QByteArray &contents) const { QVERIFY(writeFile(path(), contents)); }
    void writeProperty(const QString &name, const QString &text) const {
        write(QString("<settings><property name=\"%1\">%2</property></settings>").arg(name, text).toUtf8());
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestSettings::setter_reports_a_change_once() {
    SampleSettings settings(path());
    QStringList calls;
    connect(&settings, &SampleSettings::changedTimeMs, this, [&](int ms) { calls << QString::number(ms); });
    connect(&settings, &SampleSettings::changedProperty, this, [&](const QString &name) { calls << name; });

    settings.setTimeMs(3000);
    settings.setTimeMs(3000);
    QCOMPARE(calls, QStringList({"3000", "TimeMs"}));
    settings.resetTimeMs();
    QCOMPARE(calls, QStringList({"3000", "TimeMs", "2000", "TimeMs"}));
}

void TestSettings::writes_a_readable_file() {
    SampleSettings settings(path("new folder/settings.xml"));
    settings.setLanguage("ru_RU");
    settings.setTitle("Взгляд <1>");
    settings.setPoints(SampleSettings::Mode_9_points);
    settings.setGain(0.1);

    QCOMPARE(QString::fromUtf8(readFile(settings.filePath())),
             QString("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                     "<settings version=\"1\">\n"
                     "    <property name=\"Language\">ru_RU</property>\n"
                     "    <property name=\"Points\">Mode_9_points</property>\n"
                     "    <property name=\"TimeMs\">2000</property>\n"
                     "    <property name=\"Gain\">0.1</property>\n"
                     "    <property name=\"Enabled\">true</property>\n"
                     "    <property name=\"Title\">Взгляд &lt;1&gt;</property>\n"
                     "    <property name=\"Folder\">ab</property>\n"
                     "    <property name=\"LastIndex\">-1</property>\n"
                     "</settings>\n"));
}

void TestSettings::keeps_any_text() {
    const QString text = QString::fromUtf8("  папка 🙂\r\nb\tc </property>&amp;]]>\"'\x01%41\v") + QChar(0xffff);
    SampleSettings(path()).setTitle(text);
    SampleSettings second(path());
    QVERIFY(second.reload());
    QCOMPARE(second.getTitle(), text);
}

void TestSettings::keeps_unknown_properties() {
    write(
        "<settings version=\"7\"><property name=\"FutureProperty\">a &amp; b</property><block><x/></block>"
        "<property name=\"TimeMs\">1500</property></settings>");
    SampleSettings settings(path());
    QVERIFY(settings.reload());
    QVERIFY(settings.reload());
    settings.setTimeMs(1600);

    const QByteArray contents = readFile(path());
    QCOMPARE(contents.count("<property name=\"FutureProperty\">a &amp; b</property>"), 1);
    QVERIFY(contents.contains("<property name=\"TimeMs\">1600</property>"));
}

void TestSettings::reload_sets_the_properties_from_the_file() {
    SampleSettings settings(path());
    QVERIFY(settings.reload());
    settings.setEnabled(false);
    writeProperty("TimeMs", "1500");
    QSignalSpy changed(&settings, &SampleSettings::changedProperty);
    QVERIFY(settings.reload());
    QVERIFY(settings.reload());

    QCOMPARE(changed, QList<QList<QVariant>>({{"TimeMs"}, {"Enabled"}}));
    QCOMPARE(settings.getTimeMs(), 1500);
    QCOMPARE(settings.getEnabled(), true);
}

void TestSettings::replaces_invalid_values_and_values_outside_the_range_data() {
    dataColumns<QString, QString, QString, bool>("name", "text", "value", "warns");
    dataRow("too small", "TimeMs", "-5", "1000", false);
    dataRow("larger than an int", "TimeMs", "99999999999", "10000", false);
    dataRow("number with a unit", "TimeMs", "1500 ms", "2000", true);
    dataRow("not a number", "Gain", "nan", "1.5", true);
    dataRow("unknown key", "Points", "Mode_2_points", "Mode_5_points", true);
    dataRow("unknown language", "Language", "fr_FR", "en_US", true);
}

void TestSettings::replaces_invalid_values_and_values_outside_the_range() {
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(bool, warns);

    writeProperty(name, text);
    SampleSettings settings(path());
    if (warns)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("settings.xml: " + name + " has the invalid value "));
    QVERIFY(settings.reload());
    QTEST(settings.getValue(name).toString(), "value");
}

void TestSettings::renames_a_damaged_file_data() {
    QTest::addColumn<QByteArray>("contents");
    const QByteArray valid = "<settings><property name=\"TimeMs\">1500</property></settings>";
    QTest::newRow("truncated") << valid.left(valid.size() - 4);
    QTest::newRow("not UTF-8") << QByteArray(valid).replace("1500", "\xff\xff");
    QTest::newRow("too large") << QByteArray(2 * 1024 * 1024, ' ');
}

void TestSettings::renames_a_damaged_file() {
    QFETCH(QByteArray, contents);
    write(contents);
    SampleSettings settings(path());
    settings.setEnabled(false);
    write(contents);

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Settings file .*settings.xml cannot be used: .+; kept as "
                                                          ".*settings.xml.damaged; the defaults apply"));
    QVERIFY(!settings.reload());
    QVERIFY(settings.getEnabled());
    QCOMPARE(settings.getTimeMs(), 2000);
    QVERIFY(!QFile::exists(path()));
    QCOMPARE(readFile(path("settings.xml.damaged")), contents);
}

void TestSettings::warns_when_it_cannot_save() {
    write("a file");
    SampleSettings settings(path() + "/below a file/settings.xml");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("not saved to .*below a file.*settings.xml: the folder .+"));
    settings.setTimeMs(1500);
    QCOMPARE(settings.getTimeMs(), 1500);
}

OCELA_TEST(TestSettings)
#include "tst_settings.moc"
