#include "app/settings.h"
#include "support/test_main.h"

#include <QFile>
#include <QTemporaryDir>

class TestAppSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void loads_the_settings_file_of_version_1_0() {
        const QTemporaryDir folder;
        Settings settings(folder.filePath("OcelaSettings.xml"), Settings::supportedLanguages(), nullptr);
        QCOMPARE(settings.getAutoRun(), true);
        QCOMPARE(settings.getRecordsPath(), QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));

        QVERIFY(QFile::copy(OCELA_TEST_DATA "/settings/version_1_0.xml", settings.filePath()));
        QVERIFY(settings.reload());
        QCOMPARE(settings.getAutoRun(), false);
        QCOMPARE(settings.getRecordsPath(), "/data/records & notes");
        QCOMPARE(settings.getSelectedTracker(), "gazepoint");
        QCOMPARE(settings.getHideWindowOnStart(), false);
        QCOMPARE(settings.getDescribeRecordings(), true);  // version 1.0 did not have it
        QVERIFY(settings.isDefault(settings.metaDescriptor().first()));
    }
};

OCELA_TEST(TestAppSettings)
#include "tst_app_settings.moc"
