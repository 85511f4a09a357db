#include "system/desktop.h"

#include "app/startup.h"
#include "system/patience.h"
#include "system/text_picture.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPainter>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

// The macro declares a function, which must not end up in a namespace.
static void initResources() {
    Q_INIT_RESOURCE(ocela);
}

namespace {

constexpr int drawingMargin = 8;

void dress(desktop::Look look) {
    static const bool fontsLoaded = [] {
        initResources();
        startup::loadFonts();
        return true;
    }();
    Q_UNUSED(fontsLoaded)
    if (look == desktop::Look::Plain)
        qApp->setStyleSheet(QString());
    else if (qApp->styleSheet().isEmpty())
        startup::applyStyle();
}

/// The text as it is drawn that far behind the left edge of a pixel, which alters each character's shape.
TextPicture pictureOf(const QString &text, double start, desktop::Look look) {
    dress(look);
    QLabel label(text);
    label.ensurePolished();
    QImage paper(label.sizeHint() + 2 * QSize(drawingMargin, drawingMargin), QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter painter(&paper);
    painter.setFont(label.font());
    painter.drawText(QPointF(drawingMargin + start, drawingMargin + label.fontMetrics().ascent()), text);
    painter.end();
    return TextPicture(paper);
}

/// Finds centred text too, which begins anywhere within a pixel.
QRect findIn(const QImage &grey, const QString &text, desktop::Look look) {
    constexpr int starts = 20;
    QRect place;
    for (int i = 0; i < starts && place.isEmpty(); ++i)
        place = pictureOf(text, static_cast<double>(i) / starts, look).findIn(grey);
    return place;
}

QByteArray xdotool(const QStringList &arguments) {
    QProcess process;
    process.start("xdotool", arguments);
    process.waitForFinished(patienceMs);
    return process.readAllStandardOutput().trimmed();
}

xcb_atom_t atom(xcb_connection_t *connection, const QByteArray &name) {
    const auto request = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, request, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

QImage desktop::screenshot(quint32 window) {
    return QGuiApplication::primaryScreen()->grabWindow(window).toImage();
}

void desktop::keep(const QImage &screen, const QString &name) {
    QVERIFY(QDir().mkpath(OCELA_ARTEFACTS));
    QVERIFY(screen.save(QString("%1/%2.png").arg(OCELA_ARTEFACTS, name)));
}

QRect desktop::find(const QString &text, const QImage &screen, Look look) {
    return findIn(screen.convertToFormat(QImage::Format_Grayscale8), text, look);
}

bool desktop::shows(const QString &text, Look look) {
    return !find(text, screenshot(), look).isEmpty();
}

bool desktop::showsAll(const QStringList &texts, const QImage &screen) {
    return std::all_of(texts.begin(), texts.end(), [&](const QString &text) { return !find(text, screen).isEmpty(); });
}

bool desktop::waitFor(const QString &text, Look look) {
    return QTest::qWaitFor([&] { return shows(text, look); }, patienceMs);
}

int desktop::count(QRgb colour, const QImage &picture) {
    const QImage pixels = picture.convertToFormat(QImage::Format_RGB32);
    int found = 0;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(pixels.constScanLine(y));
        found += static_cast<int>(std::count(line, line + pixels.width(), colour));
    }
    return found;
}

bool desktop::showsIndicator(QRgb colour) {
    constexpr int leastPixels = 100;  // of a disc 16 pixels wide, whose edge is blended
    return count(colour, screenshot()) >= leastPixels;
}

bool desktop::click(const QString &text) {
    if (!waitFor(text))
        return false;
    click(find(text, screenshot()).center());
    return true;
}

void desktop::click(QPoint position) {
    xdotool({"mousemove", QString::number(position.x()), QString::number(position.y()), "click", "1"});
}

void desktop::press(const QString &key, const QByteArray &window) {
    if (!window.isEmpty())
        xdotool({"windowfocus", "--sync", window});
    xdotool({"key", key});
}

QByteArray desktop::visibleWindow(qint64 process, const QString &titlePattern) {
    return xdotool({"search", "--all", "--onlyvisible", "--pid", QString::number(process), "--name", titlePattern})
        .split('\n')
        .first();
}

void desktop::requestClose(quint32 window) {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(nullptr, nullptr),
                                                                                  &xcb_disconnect);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(connection.get(), "WM_PROTOCOLS");
    message.data.data32[0] = atom(connection.get(), "WM_DELETE_WINDOW");
    xcb_send_event(connection.get(), 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&message));
    xcb_flush(connection.get());
    // Only an answered request shows that the message has arrived before the connection goes.
    atom(connection.get(), "WM_PROTOCOLS");
}
