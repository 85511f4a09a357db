#include "app/session_strip.h"
#include "app/settings.h"
#include "support/file_content.h"
#include "support/test_main.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <memory>

class TestSessionStrip : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void names_the_record_file_data();
    void names_the_record_file();
    void refuses_characters_that_a_file_name_cannot_have();
    void remembers_its_texts();
    void ignores_a_text_of_the_settings_file_that_cannot_name_a_file();

private:
    void type(const char *field, const QString &text);
    [[nodiscard]] QString text(const char *field) const { return strip_->findChild<QLineEdit *>(field)->text(); }

    QTemporaryDir folder_;
    std::unique_ptr<Settings> settings_;
    std::unique_ptr<SessionStrip> strip_;
};

void TestSessionStrip::init() {
    strip_.reset();
    QFile::remove(folder_.filePath("settings.xml"));
    settings_ = std::make_unique<Settings>(folder_.filePath("settings.xml"), Settings::supportedLanguages(), nullptr);
    strip_ = std::make_unique<SessionStrip>(*settings_);
}

void TestSessionStrip::type(const char *field, const QString &text) {
    auto *edit = strip_->findChild<QLineEdit *>(field);
    edit->clear();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

void TestSessionStrip::names_the_record_file_data() {
    dataColumns<QStringList, QString>("texts", "start");
    QTest::newRow("all") << QStringList{"P01", "pre test", "reading"} << "P01_pre test_reading_";
    QTest::newRow("no session") << QStringList{"P01", "", "reading"} << "P01_reading_";
    QTest::newRow("spaces") << QStringList{" P01 ", "  ", ""} << "P01_";
    QTest::newRow("Cyrillic") << QStringList{"", "", "чтение"} << "чтение_";
}

void TestSessionStrip::names_the_record_file() {
    QFETCH(QStringList, texts);
    QFETCH(QString, start);
    QCOMPARE(strip_->recordFileName(), QString());
    for (int i = 0; i < texts.size(); ++i)
        strip_->findChildren<QLineEdit *>().at(i)->setText(texts[i]);
    const QString name = strip_->recordFileName();
    const QRegularExpression pattern('^' + start + R"(\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d-\d{3}_ocela\.csv$)");
    QVERIFY2(pattern.match(name).hasMatch(), qPrintable(name));
}

void TestSessionStrip::refuses_characters_that_a_file_name_cannot_have() {
    type("participant", "a<b>c:d\"e/f\\g|h?i*j");
    QCOMPARE(text("participant"), QString("abcdefghij"));
    auto *edit = strip_->findChild<QLineEdit *>("session");
    edit->insert("a cell\r\n");
    QCOMPARE(edit->text(), QString("a cell"));
    type("task", QString(100, 'x'));
    QVERIFY(text("task").size() < 100);
}

void TestSessionStrip::remembers_its_texts() {
    type("participant", "P01");
    type("task", "reading");
    Settings later(settings_->filePath(), Settings::supportedLanguages(), nullptr);
    QVERIFY(later.reload());
    strip_ = std::make_unique<SessionStrip>(later);
    QVERIFY(strip_->recordFileName().startsWith("P01_reading_"));
    strip_.reset();
}

void TestSessionStrip::ignores_a_text_of_the_settings_file_that_cannot_name_a_file() {
    settings_->setParticipant("../../P01");
    settings_->setTask("reading");
    strip_ = std::make_unique<SessionStrip>(*settings_);
    QVERIFY(strip_->recordFileName().startsWith("reading_"));
}

OCELA_TEST(TestSessionStrip)
#include "tst_session_strip.moc"
