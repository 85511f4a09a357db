#include "api/special_files.h"

#include <QTest>

void special_files::addRows() {
    QTest::newRow("null device") << QByteArray("/NUL") << false << "";
    QTest::newRow("console") << QByteArray("/ROOT/CON") << false << "";
    QTest::newRow("serial port") << QByteArray("/ROOT/COM1") << false << "";
    QTest::newRow("pipe") << QByteArray("/ROOT/||.|pipe|wkssvc") << false << "";
    QTest::newRow("drive") << QByteArray("/ROOT/C:|") << true << "Cannot send C:/: not a .*";
}
