#include "support/test_main.h"
#include "toolkit/ui_helper.h"

#include <QIcon>
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

}  // namespace

class TestUIHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recolours_one_colour();
};

void TestUIHelper::recolours_one_colour() {
    for (const char *attributes : {R"(fill="#000")", R"(style="stroke-width:1; fill: #000;")", ""}) {
        const QImage image = iconOf(drawing(attributes)).pixmap(24, 24).toImage();
        QCOMPARE(image.pixelColor(4, 12), QColor("#3C0"));
        QCOMPARE(image.pixelColor(20, 12), QColor(Qt::blue));
    }
}

OCELA_TEST(TestUIHelper)
#include "tst_ui_helper.moc"
