#include "app/settings.h"
#include "support/test_main.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

class TestAppSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }
    void first_start_has_the_defaults();
    void resets_the_records_path_to_the_documents_folder();
    void loads_the_file_of_an_older_version();

private:
    QString path() const { return folder_->filePath("OcelaSettings.xml"); }
    std::unique_ptr<Settings> settings() const {
        return std::make_unique<Settings>(path(), QStringList{"ru_RU", "en_US"}, nullptr);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

void TestAppSettings::first_start_has_the_defaults() {
    const auto fresh = settings();
    QVERIFY(fresh->reload());
    QCOMPARE(fresh->getAutoRun(), true);
    QCOMPARE(fresh->getHideWindowOnStart(), false);
    QCOMPARE(fresh->getSelectedTracker(), "");
    QCOMPARE(fresh->getRecordsPath(), QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

void TestAppSettings::resets_the_records_path_to_the_documents_folder() {
    const auto fresh = settings();
    const QSignalSpy records(fresh.get(), &Settings::changedRecordsPath);
    const QSignalSpy any(fresh.get(), &Settings::changedProperty);
    fresh->resetRecordsPath();
    QCOMPARE(records.count() + any.count(), 0);
    fresh->setRecordsPath("/elsewhere");
    fresh->resetRecordsPath();
    QCOMPARE(records.last().first().toString(), fresh->getRecordsPath());
    QCOMPARE(any, QList<QList<QVariant>>({{"RecordsPath"}, {"RecordsPath"}}));
}

void TestAppSettings::loads_the_file_of_an_older_version() {
    QVERIFY(QFile::copy(OCELA_TEST_DATA "/settings/version_1_0.xml", path()));
    const auto old = settings();
    QVERIFY(old->reload());
    QCOMPARE(old->getAutoRun(), false);
    QCOMPARE(old->getRecordsPath(), "/data/records & notes");
    QCOMPARE(old->getSelectedTracker(), "gazepoint");
    QCOMPARE(old->getHideWindowOnStart(), false);
    QVERIFY(old->isDefault(old->metaDescriptor().first()));
}

OCELA_TEST(TestAppSettings)
#include "tst_app_settings.moc"
