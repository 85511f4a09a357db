#include "support/test_main.h"
#include "toolkit/widgets/ui_helper.h"

#include <QIcon>
#include <QRegularExpression>
#include <QTemporaryFile>

namespace {

/// Left to right: black, half-transparent blue, empty.
const QByteArray drawing = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24"><path d="M0 0H8V24H0z"/>)"
                           R"(<rect x="8" width="8" height="24" fill="#00F" opacity="0.5"/></svg>)";

QIcon iconOf(const QByteArray &svg, const QColor &colour) {
    QTemporaryFile file;
    if (!file.open() || file.write(svg) != svg.size() || !file.flush())
        qFatal("cannot write a temporary file");
    return UIHelper::tintedSvgIcon(file.fileName(), colour);
}

}  // namespace

class TestUIHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tints_the_whole_drawing();
    void shows_a_disabled_icon_differently();
    void returns_a_null_icon_for_an_unreadable_drawing();
};

void TestUIHelper::tints_the_whole_drawing() {
    const QColor green("#3C0");
    for (const int size : {24, 36, 48}) {
        const QImage image = iconOf(drawing, green).pixmap(size, size).toImage();
        QCOMPARE(image.size(), QSize(size, size));
        QCOMPARE(image.pixelColor(size / 6, size / 2), green);
        const QColor translucent = image.pixelColor(size / 2, size / 2);
        QCOMPARE(qRound(translucent.alphaF() * 2), 1);
        QCOMPARE(translucent.hue(), green.hue());
        QCOMPARE(image.pixelColor(size - 1, size / 2).alpha(), 0);
    }
}

void TestUIHelper::shows_a_disabled_icon_differently() {
    const QIcon icon = iconOf(drawing, Qt::red);
    const QColor disabled = icon.pixmap(24, 24, QIcon::Disabled).toImage().pixelColor(4, 12);
    QVERIFY2(disabled.saturation() < 50, qPrintable(disabled.name()));
}

void TestUIHelper::returns_a_null_icon_for_an_unreadable_drawing() {
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot open file.*no such"));
    QVERIFY(UIHelper::tintedSvgIcon("no such.svg", Qt::red).isNull());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot read file"));
    QVERIFY(iconOf("<html/>", Qt::red).isNull());
}

OCELA_TEST(TestUIHelper)
#include "tst_ui_helper.moc"
