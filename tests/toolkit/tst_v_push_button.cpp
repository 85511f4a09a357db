#include "support/test_main.h"
#include "toolkit/v_push_button.h"

#include <QTest>

class TestVPushButton : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shows_the_keyboard_focus_also_when_flat();
};

void TestVPushButton::shows_the_keyboard_focus_also_when_flat() {
    QWidget window;
    VPushButton other("Other", &window);
    VPushButton button("Save", &window);
    button.setFlat(true);
    other.setGeometry(0, 0, 100, 40);
    button.setGeometry(0, 50, 200, 60);
    window.show();
    window.activateWindow();
    other.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const QImage without = button.grab().toImage();
    QTest::keyClick(&other, Qt::Key_Tab);
    QVERIFY(button.hasFocus());
    QVERIFY(button.grab().toImage() != without);
}

OCELA_TEST(TestVPushButton)
#include "tst_v_push_button.moc"
