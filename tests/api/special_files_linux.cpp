#include "api/special_files.h"

#include <QTest>
#include <sys/stat.h>

void addSpecialFileRows() {
    QCOMPARE(mkfifo("http/pipe", 0600), 0);
    QTest::newRow("pipe that nobody writes to") << QByteArray("/pipe") << true << "Cannot send http/pipe: not a .*";
    QTest::newRow("endless device") << QByteArray("/ROOT//dev/zero") << true << "Cannot send /dev/zero: not a .*";
}
