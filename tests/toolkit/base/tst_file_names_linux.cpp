#include "support/file_content.h"
#include "support/test_main.h"
#include "toolkit/base/file_names.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <cerrno>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <thread>

using Outcome = file_names::Renaming::Outcome;

namespace {

/// Makes renameat2() fail in this thread, as on a file system that does not support its flags.
bool refuseRenameFlags() {
    sock_filter instructions[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_renameat2, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{4, instructions};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace

class TestFileNamesLinux : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void renames_on_a_file_system_without_rename_flags();
};

void TestFileNamesLinux::renames_on_a_file_system_without_rename_flags() {
    const QTemporaryDir folder;
    const QString from = folder.filePath("from");
    QVERIFY(writeFile(from, "new") && writeFile(folder.filePath("taken"), "earlier"));
    Outcome taken{};
    Outcome done{};
    bool refused = false;
    std::thread([&] {
        refused = refuseRenameFlags();
        taken = file_names::renameIfFree(from, folder.filePath("taken")).outcome;
        done = file_names::renameIfFree(from, folder.filePath("to")).outcome;
    }).join();
    QVERIFY(refused);
    QVERIFY(taken == Outcome::NameTaken);
    QCOMPARE(readFile(folder.filePath("taken")), QByteArray("earlier"));
    QVERIFY(done == Outcome::Done);
    QCOMPARE(readFile(folder.filePath("to")), QByteArray("new"));
    QVERIFY(!QFileInfo::exists(from));
}

OCELA_TEST(TestFileNamesLinux)
#include "tst_file_names_linux.moc"
