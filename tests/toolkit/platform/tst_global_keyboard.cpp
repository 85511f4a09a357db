#include "support/test_main.h"
#include "toolkit/platform/global_keyboard.h"

#include <QLineEdit>
#include <QSignalSpy>

/// Without a display, keys come from the application's own key events.
class TestGlobalKeyboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { GlobalKeyboard::Install(); }
    void reports_a_press_once_for_several_receivers();
    void reports_a_key_after_it_was_handled();
};

void TestGlobalKeyboard::reports_a_press_once_for_several_receivers() {
    QSignalSpy keys(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed);
    QWidget window;
    auto *inner = new QWidget(&window);
    window.show();
    // No widget accepts the key, so Qt passes it from the inner widget to the window.
    QTest::keyClick(inner, Qt::Key_F10);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_F8, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(inner, &held);
    for (int i = 0; i < 2; ++i)
        QTest::keyClick(&window, Qt::Key_Escape);
    QTest::keyClick(window.windowHandle(), Qt::Key_F9);  // like a key event of the platform
    QTRY_COMPARE(keys.size(), 4);
    QCOMPARE(keys[1].at(0).value<Qt::Key>(), Qt::Key_Escape);
}

void TestGlobalKeyboard::reports_a_key_after_it_was_handled() {
    auto *window = new QLineEdit;
    QString textAtReport;
    connect(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed, window, [&] {
        textAtReport = window->text();
        delete window;
    });
    QTest::keyClick(window, Qt::Key_A);
    QTRY_COMPARE(textAtReport, QString("a"));
}

OCELA_TEST(TestGlobalKeyboard)
#include "tst_global_keyboard.moc"
