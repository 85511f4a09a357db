#include "support/test_main.h"
#include "toolkit/global_keyboard.h"

#include <QKeyEvent>
#include <QProcess>
#include <QRasterWindow>
#include <QTest>

namespace {

class RepeatCounter : public QRasterWindow {
public:
    int repeats = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override { repeats += event->isAutoRepeat() ? 1 : 0; }
};

}  // namespace

/// The real thing on a real X server; but for the held key, no window of ours is there to have the focus.
class TestGlobalKeyboardX11 : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { GlobalKeyboard::Install(); }
    void names_the_keys();
    void names_latin_keys_on_a_cyrillic_layout();
    void does_not_repeat_a_held_key();

private:
    static void xdotool(const QStringList &arguments);
    static QList<Qt::Key> keysOf(const QStringList &arguments);
};

void TestGlobalKeyboardX11::xdotool(const QStringList &arguments) {
    QCOMPARE(QProcess::execute("xdotool", arguments), 0);
}

/// The keys reported while xdotool does what it is told. F8 follows, so that nothing that comes before it is
/// missed.
QList<Qt::Key> TestGlobalKeyboardX11::keysOf(const QStringList &arguments) {
    QList<Qt::Key> keys;
    QObject context;
    connect(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed, &context, [&](Qt::Key key) { keys << key; });
    xdotool(arguments);
    xdotool({"key", "F8"});
    if (!QTest::qWaitFor([&] { return keys.contains(Qt::Key_F8); }, 20000))
        return {};
    keys.removeLast();
    return keys;
}

void TestGlobalKeyboardX11::names_the_keys() {
    QCOMPARE(keysOf({"key", "shift+q", "7", "KP_Enter", "Next"}),
             (QList<Qt::Key>{Qt::Key_Q, Qt::Key_7, Qt::Key_Enter, Qt::Key_PageDown}));
}

void TestGlobalKeyboardX11::names_latin_keys_on_a_cyrillic_layout() {
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
    // The window is told of the repeats, which shows that there were some to hold back.
    QTRY_VERIFY_WITH_TIMEOUT(window.repeats >= 3, 20000);
    xdotool({"keyup", "F10"});
    QCOMPARE(presses, 1);
    QCOMPARE(keysOf({"key", "F10"}), QList<Qt::Key>{Qt::Key_F10});
}

OCELA_TEST(TestGlobalKeyboardX11)
#include "tst_global_keyboard_x11.moc"
