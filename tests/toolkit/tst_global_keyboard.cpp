#include "support/test_main.h"
#include "toolkit/global_keyboard.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

/// Without a display the application's own key events are what there is.
class TestGlobalKeyboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { GlobalKeyboard::Install(); }
    void reports_a_press_once_however_many_objects_see_it();
    void reports_after_the_key_was_handled();
};

void TestGlobalKeyboard::reports_a_press_once_however_many_objects_see_it() {
    QSignalSpy keys(GlobalKeyboard::Instance(), &GlobalKeyboard::keyPressed);
    QWidget window;
    auto *inner = new QWidget(&window);
    window.show();
    // Nobody accepts the key, so it goes up from the innermost widget to the window.
    QTest::keyClick(inner, Qt::Key_F10);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_F8, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(inner, &held);
    QTest::keyClick(&window, Qt::Key_Escape);
    QTest::keyClick(window.windowHandle(), Qt::Key_F9);  // as the platform delivers it
    QTRY_COMPARE(keys.size(), 3);
    QCOMPARE(keys[1].at(0).value<Qt::Key>(), Qt::Key_Escape);
}

void TestGlobalKeyboard::reports_after_the_key_was_handled() {
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
