#include "support/test_main.h"
#include "toolkit/x11_keysyms.h"

#include <QTest>
#include <X11/keysym.h>

class TestX11Keysyms : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void names_keys_data();
    void names_keys();
    void leaves_other_keysyms_alone();
};

void TestX11Keysyms::names_keys_data() {
    QTest::addColumn<unsigned>("keysym");
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("first function key") << unsigned{XK_F1} << Qt::Key_F1;
    QTest::newRow("F10") << unsigned{XK_F10} << Qt::Key_F10;
    QTest::newRow("last function key") << unsigned{XK_F35} << Qt::Key_F35;
    QTest::newRow("small letter") << unsigned{XK_z} << Qt::Key_Z;
    QTest::newRow("capital letter") << unsigned{XK_A} << Qt::Key_A;
    QTest::newRow("digit") << unsigned{XK_9} << Qt::Key_9;
    QTest::newRow("keypad digit") << unsigned{XK_KP_7} << Qt::Key_7;
    QTest::newRow("main Enter") << unsigned{XK_Return} << Qt::Key_Return;
    QTest::newRow("keypad Enter") << unsigned{XK_KP_Enter} << Qt::Key_Enter;
    QTest::newRow("Page Down, which X also calls Next") << unsigned{XK_Next} << Qt::Key_PageDown;
}

void TestX11Keysyms::names_keys() {
    QFETCH(unsigned, keysym);
    QFETCH(Qt::Key, key);
    QCOMPARE(keyFromKeysym(keysym).value_or(Qt::Key_unknown), key);
}

void TestX11Keysyms::leaves_other_keysyms_alone() {
    for (const unsigned keysym : {unsigned{XK_VoidSymbol}, 0U, unsigned{XK_Shift_L}, unsigned{XK_Cyrillic_ef}})
        QVERIFY(!keyFromKeysym(keysym));
}

OCELA_TEST(TestX11Keysyms)
#include "tst_x11_keysyms.moc"
