#include "support/test_main.h"

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

/// The translations against the source texts.
class TestTranslationFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cover_every_source_text_data();
    void cover_every_source_text();
};

void TestTranslationFiles::cover_every_source_text_data() {
    QTest::addColumn<QString>("locale");
    QTest::newRow("Russian") << "ru_RU";
    QTest::newRow("English") << "en_US";
}

void TestTranslationFiles::cover_every_source_text() {
    QFETCH(QString, locale);
    const QString name = QString("ocela_%1.ts").arg(locale);
    const QString source = OCELA_SOURCE_DIR;
    const QString committed = source + "/translations/" + name;
    const QTemporaryDir folder;
    const QString updated = folder.filePath(name);
    QVERIFY(QFile::copy(committed, updated));

    const QStringList noGuesses{"-disable-heuristic", "sametext", "-disable-heuristic", "similartext"};
    QCOMPARE(run(OCELA_LUPDATE, QStringList{"-silent", "-locations", "none", "-no-obsolete"} + noGuesses +
                                    QStringList{source + "/src", "-ts", updated}),
             QByteArray());
    QCOMPARE(contentOf(updated), contentOf(committed));  // else a text came or went without tools/translate

    QVERIFY(!contentOf(committed).contains("type=\"unfinished\""));
    QVERIFY(!contentOf(committed).contains("<translation></translation>"));
}

OCELA_TEST(TestTranslationFiles)
#include "tst_translation_files.moc"
