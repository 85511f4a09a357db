#include "support/test_main.h"
#include "toolkit/ui_helper.h"

#include <QIcon>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>

namespace {

/// A drawing of 24 x 24 whose left half is a path with `attributes`, the right half blue.
QByteArray drawing(const QByteArray &attributes) {
    return R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24"><path )" + attributes +
           R"( d="M0 0H12V24H0z"/><rect x="12" width="12" height="24" fill="#00F"/></svg>)";
}

QIcon iconOf(const QByteArray &svg) {
    QTemporaryFile file;
    if (!file.open() || file.write(svg) != svg.size() || !file.flush())
        qFatal("cannot write a temporary file");
    return UIHelper::recolouredSvgIcon(file.fileName(), "#000", "#3C0");
}

QColor at(const QPixmap &pixmap, int x, int y) {
    return pixmap.toImage().pixelColor(x, y);
}

}  // namespace

class TestUIHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recolours_one_colour_data();
    void recolours_one_colour();
    void draws_sharply_at_any_size_and_ratio();
    void warns_about_what_is_no_drawing();
};

void TestUIHelper::recolours_one_colour_data() {
    QTest::addColumn<QByteArray>("attributes");
    QTest::newRow("short") << QByteArray(R"(fill="#000")");
    QTest::newRow("by name") << QByteArray(R"(fill='black')");
    QTest::newRow("in a style") << QByteArray(R"(style="stroke-width:1; fill: #000;")");
    QTest::newRow("none named, which is black") << QByteArray();
    QTest::newRow("as a line") << QByteArray(R"(fill="none" stroke="#000" stroke-width="48")");
}

void TestUIHelper::recolours_one_colour() {
    QFETCH(QByteArray, attributes);
    const QPixmap pixmap = iconOf(drawing(attributes)).pixmap(24, 24);
    QCOMPARE(at(pixmap, 4, 12), QColor("#3C0"));
    QCOMPARE(at(pixmap, 20, 12), QColor(Qt::blue));
}

void TestUIHelper::draws_sharply_at_any_size_and_ratio() {
    const QIcon icon = iconOf(drawing(R"(fill="#000")"));
    QImage screen(48, 48, QImage::Format_ARGB32_Premultiplied);
    screen.setDevicePixelRatio(2);
    screen.fill(Qt::white);
    QPainter painter(&screen);
    icon.paint(&painter, QRect(0, 0, 24, 24));
    painter.end();
    // A scaled bitmap would blend the colours where they meet, between the device pixels 23 and 24.
    QCOMPARE(screen.pixelColor(23, 20), QColor("#3C0"));
    QCOMPARE(screen.pixelColor(24, 20), QColor(Qt::blue));
    QCOMPARE(icon.pixmap(200, 200).size(), QSize(200, 200));
    QVERIFY(at(icon.pixmap(QSize(24, 24), QIcon::Disabled), 4, 12) != QColor("#3C0"));
}

void TestUIHelper::warns_about_what_is_no_drawing() {
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot read the icon :/no/such.svg: .+"));
    QVERIFY(UIHelper::recolouredSvgIcon(":/no/such.svg", "#000", "#3C0").isNull());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot read the icon .+: it is not an SVG drawing"));
    QVERIFY(iconOf("<svg").isNull());
}

OCELA_TEST(TestUIHelper)
#include "tst_ui_helper.moc"
