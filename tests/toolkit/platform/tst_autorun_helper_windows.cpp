#include "support/test_main.h"
#include "toolkit/platform/autorun_helper.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <objbase.h>
#include <shlobj.h>

class TestAutorunHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(SUCCEEDED(CoInitialize(nullptr))); }
    void cleanupTestCase() { CoUninitialize(); }
    void adds_and_removes_the_program();
    void refuses_a_program_that_does_not_exist();
};

namespace {

/// Returns the shortcut of `program` in the user's Startup folder.
QString shortcutOf(const QString &program) {
    const QString programs = QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation);
    return programs + "/Startup/" + QFileInfo(program).completeBaseName() + ".lnk";
}

QString workingDirectoryOf(const QString &shortcut) {
    IShellLinkW *link = nullptr;
    IPersistFile *file = nullptr;
    wchar_t folder[MAX_PATH] = {};
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, reinterpret_cast<void **>(&link));
    link->QueryInterface(IID_IPersistFile, reinterpret_cast<void **>(&file));
    file->Load(reinterpret_cast<const wchar_t *>(shortcut.utf16()), STGM_READ);
    link->GetWorkingDirectory(folder, MAX_PATH);
    file->Release();
    link->Release();
    return QDir::fromNativeSeparators(QString::fromWCharArray(folder));
}

}  // namespace

void TestAutorunHelper::adds_and_removes_the_program() {
    // The executable of this test, which is in the application's folder.
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    const QFileInfo shortcut(shortcutOf(program));
    for (int i = 0; i < 2; ++i)
        QVERIFY(AutorunHelper::setAppInAutorunUsingExe(program, true, false));
    QCOMPARE(shortcut.symLinkTarget(), QCoreApplication::applicationFilePath());
    QCOMPARE(workingDirectoryOf(QDir::toNativeSeparators(shortcut.filePath())), QCoreApplication::applicationDirPath());
    for (int i = 0; i < 2; ++i)
        QVERIFY(AutorunHelper::setAppInAutorunUsingExe(program, false, false));
    QVERIFY(!shortcut.dir().entryList(QDir::AllEntries | QDir::System).contains(shortcut.fileName()));
}

void TestAutorunHelper::refuses_a_program_that_does_not_exist() {
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(R"(^Cannot add to autostart .*missing\.exe: .)"));
    QVERIFY(!AutorunHelper::setAppInAutorunUsingExe("missing.exe", true, false));
    QVERIFY(AutorunHelper::setAppInAutorunUsingExe("missing.exe", false, false));
}

OCELA_TEST(TestAutorunHelper)
#include "tst_autorun_helper_windows.moc"
