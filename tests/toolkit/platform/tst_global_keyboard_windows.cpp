#include "support/test_main.h"
#include "toolkit/platform/global_keyboard.h"

#include <windows.h>

/// Tests key presses while no window of this process has the focus.
class TestGlobalKeyboardWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { GlobalKeyboard::Install(); }
    void reports_each_press_once();
};

namespace {

void send(WORD key, DWORD flags = 0) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.dwFlags = flags;
    QCOMPARE(SendInput(1, &input, sizeof input), 1U);
}

}  // namespace

void TestGlobalKeyboardWindows::reports_each_press_once() {
    QList<Qt::Key> keys;
    connect(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed, this, [&](Qt::Key key) { keys << key; });
    for (const WORD key : {WORD(VK_F10), WORD(VK_F10), WORD('Q'), WORD(VK_NUMPAD7), WORD(VK_NEXT)})
        send(key);  // the second F10 is an automatic repeat
    send(VK_RETURN, KEYEVENTF_EXTENDEDKEY);
    send(VK_F10, KEYEVENTF_KEYUP);
    send(VK_F10);
    QTRY_COMPARE(keys,
                 (QList<Qt::Key>{Qt::Key_F10, Qt::Key_Q, Qt::Key_7, Qt::Key_PageDown, Qt::Key_Enter, Qt::Key_F10}));
    for (const WORD key : {WORD(VK_F10), WORD('Q'), WORD(VK_NUMPAD7), WORD(VK_NEXT), WORD(VK_RETURN)})
        send(key, KEYEVENTF_KEYUP);
}

OCELA_TEST(TestGlobalKeyboardWindows)
#include "tst_global_keyboard_windows.moc"
