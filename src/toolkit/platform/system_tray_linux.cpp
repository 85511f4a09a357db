#include "toolkit/platform/system_tray.h"
#include "toolkit/platform/xcb_pointers.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QGuiApplication>
#include <QVariant>

namespace {

constexpr int timeoutMs = 200;

/// Returns whether a StatusNotifier tray is on the session bus. Without a watcher, the bus answers at once.
bool hasDBusTray() {
    const QString watcher = "org.kde.StatusNotifierWatcher";
    QDBusMessage request =
        QDBusMessage::createMethodCall(watcher, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get");
    request.setArguments({watcher, "IsStatusNotifierHostRegistered"});
    request.setAutoStartService(false);
    const QDBusReply<QVariant> reply = QDBusConnection::sessionBus().call(request, QDBus::Block, timeoutMs);
    return reply.isValid() && reply.value().toBool();
}

/// Returns whether the default screen has a tray, which owns the selection of this name.
bool hasX11Tray() {
    if (QGuiApplication::platformName() != "xcb")
        return false;
    int screen = 0;
    const XcbConnection connection(xcb_connect(nullptr, &screen));
    if (xcb_connection_has_error(connection.get()))
        return false;
    const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(screen);
    const auto atomCookie =
        xcb_intern_atom(connection.get(), 1, static_cast<std::uint16_t>(name.size()), name.constData());
    const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection.get(), atomCookie, nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const auto ownerCookie = xcb_get_selection_owner(connection.get(), atom->atom);
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection.get(), ownerCookie, nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace

bool system_tray::isRunning() {
    return hasX11Tray() || hasDBusTray();
}
