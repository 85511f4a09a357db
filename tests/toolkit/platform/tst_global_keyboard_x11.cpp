#include "support/test_main.h"
#include "toolkit/platform/global_keyboard.h"

#include <QKeyEvent>
#include <QProcess>
#include <QRasterWindow>

namespace {

class RepeatCounter : public QRasterWindow {
public:
    int repeats = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override { repeats += event->isAutoRepeat() ? 1 : 0; }
};

void xdotool(const QStringList &arguments) {
    QCOMPARE(QProcess::execute("xdotool", arguments), 0);
}

/// Returns the keys that are reported while xdotool runs. A final F8 marks their end.
QList<Qt::Key> keysOf(const QStringList &arguments) {
    QList<Qt::Key> keys;
    QObject context;
    QObject::connect(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed, &context,
                     [&](Qt::Key key) { keys << key; });
    xdotool(arguments);
    xdotool({"key", "F8"});
    if (!QTest::qWaitFor([&] { return keys.contains(Qt::Key_F8); }, 20000))
        return {};
    keys.removeLast();
    return keys;
}

}  // namespace

/// Tests keys of an X server. No window of this process has the focus, except in the test of a held key.
class TestGlobalKeyboardX11 : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { GlobalKeyboard::Install(); }
    void reports_the_keys();
    void reports_latin_keys_on_a_cyrillic_layout();
    void does_not_repeat_a_held_key();
};

void TestGlobalKeyboardX11::reports_the_keys() {
    QCOMPARE(keysOf({"key", "shift+q", "7", "KP_Enter", "Next"}),
             (QList<Qt::Key>{Qt::Key_Q, Qt::Key_7, Qt::Key_Enter, Qt::Key_PageDown}));
}

void TestGlobalKeyboardX11::reports_latin_keys_on_a_cyrillic_layout() {
    const QString keyQ = "24";  // keycode
    QCOMPARE(QProcess::execute("setxkbmap", {"-layout", "ru,us"}), 0);
    QCOMPARE(keysOf({"key", keyQ}), QList<Qt::Key>{Qt::Key_Q});
    QCOMPARE(QProcess::execute("setxkbmap", {"-layout", "us"}), 0);
}

void TestGlobalKeyboardX11::does_not_repeat_a_held_key() {
    RepeatCounter window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    xdotool({"windowfocus", "--sync", QString::number(window.winId())});
    int presses = 0;
    connect(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed, &window, [&] { ++presses; });
    xdotool({"keydown", "F10"});
    // The window receives the automatic repeats, so the X server generates them.
    QTRY_VERIFY_WITH_TIMEOUT(window.repeats >= 3, 20000);
    xdotool({"keyup", "F10"});
    QCOMPARE(presses, 1);
    QCOMPARE(keysOf({"key", "F10"}), QList<Qt::Key>{Qt::Key_F10});
}

OCELA_TEST(TestGlobalKeyboardX11)
#include "tst_global_keyboard_x11.moc"
