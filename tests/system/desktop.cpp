#include "system/desktop.h"

#include "app/startup.h"
#include "system/text_picture.h"
#include "system/timeout.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMap>
#include <QPainter>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

// The macro declares a function, which must not be inside a namespace.
static void initResources() {
    Q_INIT_RESOURCE(ocela);
}

namespace {

void useStyle(desktop::Look look) {
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

/// Draws the text `offset` pixels to the right of a pixel's left edge, which changes the shape of each character.
QImage draw(const QLabel &label, double offset) {
    constexpr int margin = 8;
    QImage image(label.sizeHint() + 2 * QSize(margin, margin), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(label.font());
    painter.drawText(QPointF(margin + offset, margin + label.fontMetrics().ascent()), label.text());
    return image;
}

/// Returns the text drawn at different offsets within a pixel, because centred text can start anywhere.
std::vector<TextPicture> drawPictures(const QString &text, desktop::Look look) {
    constexpr int offsetCount = 20;
    useStyle(look);
    QLabel label(text);
    label.ensurePolished();
    std::vector<TextPicture> pictures;
    QList<QImage> drawings;
    for (int i = 0; i < offsetCount; ++i) {
        const QImage drawing = draw(label, static_cast<double>(i) / offsetCount);
        if (drawings.contains(drawing))
            continue;
        drawings << drawing;
        pictures.emplace_back(drawing);
    }
    return pictures;
}

const std::vector<TextPicture> &picturesOf(const QString &text, desktop::Look look) {
    static QMap<QPair<QString, desktop::Look>, std::vector<TextPicture>> cache;
    std::vector<TextPicture> &pictures = cache[{text, look}];
    if (pictures.empty())
        pictures = drawPictures(text, look);
    return pictures;
}

QByteArray xdotool(const QStringList &arguments) {
    QProcess process;
    process.start("xdotool", arguments);
    process.waitForFinished(timeoutMs);
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

void desktop::save(const QImage &screen, const QString &name) {
    QVERIFY(QDir().mkpath(OCELA_ARTEFACTS));
    QVERIFY(screen.save(QString("%1/%2.png").arg(OCELA_ARTEFACTS, name)));
}

QRect desktop::find(const QString &text, const QImage &picture, Look look) {
    const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
    for (const TextPicture &shape : picturesOf(text, look)) {
        const QRect place = shape.findIn(grey);
        if (!place.isEmpty())
            return place;
    }
    return {};
}

bool desktop::shows(const QString &text, Look look) {
    return !find(text, screenshot(), look).isEmpty();
}

bool desktop::showsAll(const QStringList &texts, const QImage &picture) {
    return std::all_of(texts.begin(), texts.end(), [&](const QString &text) { return !find(text, picture).isEmpty(); });
}

QRect desktop::waitFor(const QString &text, Look look) {
    QRect place;
    const auto found = [&] { return !(place = find(text, screenshot(), look)).isEmpty(); };
    return QTest::qWaitFor(found, timeoutMs) ? place : QRect();
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
    constexpr int minPixelCount = 100;  // a disc with a diameter of 16 pixels and a blended edge
    return count(colour, screenshot()) >= minPixelCount;
}

bool desktop::click(const QString &text) {
    const QRect place = waitFor(text);
    click(place.center());
    return !place.isEmpty();
}

void desktop::click(QPoint position) {
    xdotool({"mousemove", QString::number(position.x()), QString::number(position.y()), "click", "1"});
}

bool desktop::choose(const QString &current, const QString &next) {
    return click(current) && click(next) && QTest::qWaitFor([&] { return !shows(current); }, timeoutMs);
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
    // The reply shows that the server has processed the message. Only then may the connection be closed.
    atom(connection.get(), "WM_PROTOCOLS");
}
