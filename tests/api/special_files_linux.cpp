#include "api/special_files.h"

#include <QFile>
#include <QTest>
#include <sys/stat.h>
#include <unistd.h>

void special_files::addRows() {
    QCOMPARE(mkfifo("http/pipe", 0600), 0);
    QTest::newRow("pipe without a writer") << QByteArray("/pipe") << true << "Cannot send http/pipe: not a .*";
    QFile unreadable("http/unreadable");
    QVERIFY(unreadable.open(QIODevice::WriteOnly) && unreadable.setPermissions({}));
    if (geteuid() != 0)  // root can read it
        QTest::newRow("no permission") << QByteArray("/unreadable") << true << "Cannot send http/unreadable: Perm.*";
    QTest::newRow("endless device") << QByteArray("/ROOT//dev/zero") << true << "Cannot send /dev/zero: not a .*";
}
