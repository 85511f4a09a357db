#include "toolkit/base/toolkit_log.h"
#include "toolkit/platform/key_watcher.h"
#include "toolkit/platform/x11_keymap.h"
#include "toolkit/platform/xcb_pointers.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <bitset>
#include <cstring>
#include <xcb/record.h>
#include <xcb/xcbext.h>

namespace {

/// The category FromServer of the RECORD protocol. XCB has no name for it.
constexpr std::uint8_t recordedFromServer = 0;

/// Removes the highest bit of an event's type, which marks events that another client sent.
constexpr std::uint8_t eventTypeMask = 0x7f;

bool hasRecord(xcb_connection_t *connection) {
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_record_id);
    return extension && extension->present;
}

/// Watches the keys of the whole X11 desktop with the RECORD extension.
///
/// RECORD requires two connections: one receives the key events, the other controls the recording. The event loop
/// watches both sockets, so no thread is needed. Xlib is not used because it ends the process when the X server exits.
class X11KeyWatcher : public KeyWatcher {
public:
    explicit X11KeyWatcher(const Report &report);

    /// Returns false if there is no X server or it has no RECORD extension.
    bool isWatching() const { return dataNotifier_ != nullptr; }

private:
    bool connectToServer();
    bool createContext();
    bool enableContext();
    void readKeys();
    void readChanges();
    void handle(const xcb_record_enable_context_reply_t &record);
    void handle(const xcb_key_press_event_t &event);

    Report report_;
    XcbConnection control_;
    XcbConnection data_;
    xcb_record_context_t context_ = 0;
    xcb_record_enable_context_cookie_t recording_ = {};
    X11Keymap keymap_;
    std::bitset<256> pressed_;  // by keycode
    std::unique_ptr<QSocketNotifier> dataNotifier_;
    std::unique_ptr<QSocketNotifier> controlNotifier_;
};

X11KeyWatcher::X11KeyWatcher(const Report &report) : report_(report) {
    if (!connectToServer() || !createContext() || !enableContext())
        return;
    const auto watch = [](const XcbConnection &connection, auto read) {
        auto notifier =
            std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection.get()), QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), read);
        return notifier;
    };
    dataNotifier_ = watch(data_, [this] { readKeys(); });
    controlNotifier_ = watch(control_, [this] { readChanges(); });
    // XCB may have read events together with the replies so far. The sockets do not become readable for these events.
    readKeys();
}

bool X11KeyWatcher::connectToServer() {
    control_.reset(xcb_connect(nullptr, nullptr));
    data_.reset(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(control_.get()) || xcb_connection_has_error(data_.get()))
        return false;
    keymap_.load(control_.get());
    return hasRecord(control_.get());
}

bool X11KeyWatcher::createContext() {
    xcb_record_range_t range = {};
    range.device_events.first = XCB_KEY_PRESS;
    range.device_events.last = XCB_KEY_RELEASE;
    const xcb_record_client_spec_t clients = XCB_RECORD_CS_ALL_CLIENTS;
    context_ = xcb_generate_id(control_.get());
    const auto cookie = xcb_record_create_context_checked(control_.get(), context_, 0, 1, 1, &clients, &range);
    return !XcbReply<xcb_generic_error_t>(xcb_request_check(control_.get(), cookie));
}

/// The request has many replies. The first confirms that the recording runs, and the others contain events.
bool X11KeyWatcher::enableContext() {
    recording_ = xcb_record_enable_context(data_.get(), context_);
    return XcbReply<xcb_record_enable_context_reply_t>(
               xcb_record_enable_context_reply(data_.get(), recording_, nullptr)) != nullptr;
}

void X11KeyWatcher::readKeys() {
    readChanges();  // a new keymap applies to the following key presses
    void *block = nullptr;
    while (xcb_poll_for_reply(data_.get(), recording_.sequence, &block, nullptr)) {
        const XcbReply<xcb_record_enable_context_reply_t> record(
            static_cast<xcb_record_enable_context_reply_t *>(block));
        if (!record) {  // the server stopped the recording or exited
            dataNotifier_->setEnabled(false);
            return;
        }
        handle(*record);
    }
}

void X11KeyWatcher::readChanges() {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(control_.get())})
        if ((event->response_type & eventTypeMask) == XCB_MAPPING_NOTIFY)
            keymap_.load(control_.get());
    if (xcb_connection_has_error(control_.get()))
        controlNotifier_->setEnabled(false);
}

void X11KeyWatcher::handle(const xcb_record_enable_context_reply_t &record) {
    if (record.category != recordedFromServer)
        return;
    const std::uint8_t *data = xcb_record_enable_context_data(&record);
    const auto size = static_cast<std::size_t>(xcb_record_enable_context_data_length(&record));
    xcb_key_press_event_t event;
    for (std::size_t at = 0; at + sizeof event <= size; at += sizeof event) {
        std::memcpy(&event, data + at, sizeof event);
        handle(event);
    }
}

void X11KeyWatcher::handle(const xcb_key_press_event_t &event) {
    if ((event.response_type & eventTypeMask) == XCB_KEY_RELEASE) {
        pressed_.reset(event.detail);
        return;
    }
    if (pressed_.test(event.detail))  // automatic repeat: a press without a release in between
        return;
    pressed_.set(event.detail);
    const bool numLock = event.state & XCB_MOD_MASK_2;
    if (const std::optional<Qt::Key> key = keymap_.key(event.detail, numLock))
        report_(*key);
}

}  // namespace

std::unique_ptr<KeyWatcher> createDesktopKeyWatcher(const KeyWatcher::Report &report) {
    // DISPLAY is also set under Wayland. Its X server sees only the keys of its own clients.
    if (QGuiApplication::platformName() != "xcb") {
        qCDebug(lcToolkit) << "No X11 display: keys are seen only while the application has the focus";
        return nullptr;
    }
    auto watcher = std::make_unique<X11KeyWatcher>(report);
    if (watcher->isWatching())
        return watcher;
    qCDebug(lcToolkit) << "No X11 RECORD extension: keys are seen only while the application has the focus";
    return nullptr;
}
