#include "support/test_main.h"
#include "toolkit/widgets/new_version_button.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryFile>

namespace {

/// A button in a visible window, with the file that the button requests.
struct ButtonWindow {
    explicit ButtonWindow(const QByteArray &response) {
        if (!file.open() || file.write(response) != response.size() || !file.flush())
            qFatal("cannot write a temporary file");
        button = new NewVersionButton("Newer", QUrl::fromLocalFile(file.fileName()).toString(), &window);
        window.show();
    }

    bool waitForResponse() {
        auto *reply = button->findChild<QNetworkReply *>();
        return reply && QSignalSpy(reply, &QNetworkReply::finished).wait(test_support::longWaitMs);
    }

    QTemporaryFile file;
    QWidget window;
    NewVersionButton *button = nullptr;
};

QByteArray release(const QByteArray &version, const QByteArray &page = "https://example.org/ocela") {
    return R"({"version": ")" + version + R"(", "page": ")" + page + R"("})";
}

}  // namespace

class TestNewVersionButton : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void openPage(const QUrl &url) { opened_ << url; }

private Q_SLOTS:
    void initTestCase();
    void is_visible_for_a_newer_release_data();
    void is_visible_for_a_newer_release();
    void opens_only_web_pages();

private:
    QList<QUrl> opened_;
};

void TestNewVersionButton::initTestCase() {
    QCoreApplication::setApplicationVersion("1.3.0");
    for (const char *scheme : {"https", "file"})
        QDesktopServices::setUrlHandler(scheme, this, "openPage");
}

void TestNewVersionButton::is_visible_for_a_newer_release_data() {
    dataColumns<QByteArray, bool>("response", "shown");
    QTest::newRow("newer") << release("1.4.0") << true;
    QTest::newRow("numbers are compared, not texts") << release("1.10.0") << true;
    QTest::newRow("older") << release("1.2.9") << false;
    QTest::newRow("too large") << release("1.4.0").leftJustified(64 * 1024 + 1) << false;
    QTest::newRow("not JSON") << QByteArray("<html>404</html>") << false;
}

void TestNewVersionButton::is_visible_for_a_newer_release() {
    QFETCH(QByteArray, response);
    ButtonWindow buttonWindow(response);
    QVERIFY2(!buttonWindow.button->isVisible(), "hidden until the response arrives");
    QVERIFY(buttonWindow.waitForResponse());
    QTEST(buttonWindow.button->isVisible(), "shown");
}

void TestNewVersionButton::opens_only_web_pages() {
    for (const char *page : {"file:///usr/bin/xterm", "https://example.org/a"}) {
        ButtonWindow buttonWindow(release("2.0", page));
        QVERIFY(buttonWindow.waitForResponse());
        QTest::mouseClick(buttonWindow.button, Qt::LeftButton);
    }
    QCOMPARE(opened_, QList<QUrl>{QUrl("https://example.org/a")});
}

OCELA_TEST(TestNewVersionButton)
#include "tst_new_version_button.moc"
