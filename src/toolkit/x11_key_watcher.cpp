#include "toolkit/x11_key_watcher.h"

#include "toolkit/xcb_reply.h"

#include <cstring>
#include <xcb/xcbext.h>

namespace {

// The categories of recorded data, of the protocol; XCB has no names for them.
constexpr std::uint8_t recordedFromServer = 0;

constexpr std::uint8_t eventTypeMask = 0x7f;  // the top bit marks events that a client has sent

bool hasRecord(xcb_connection_t *connection) {
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_record_id);
    return extension && extension->present;
}

}  // namespace

X11KeyWatcher::X11KeyWatcher(const Report &report) : report_(report) {
    if (!connectToServer() || !createContext() || !enableContext())
        return;
    const auto watch = [](const XcbConnection &connection) {
        return std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection.get()), QSocketNotifier::Read);
    };
    notifiers_[0] = watch(data_);
    notifiers_[1] = watch(control_);
    QObject::connect(notifiers_[0].get(), &QSocketNotifier::activated, notifiers_[0].get(), [this] { readKeys(); });
    QObject::connect(notifiers_[1].get(), &QSocketNotifier::activated, notifiers_[1].get(), [this] { readChanges(); });
    readKeys();  // what came together with the answers so far makes no socket readable any more
}

X11KeyWatcher::~X11KeyWatcher() = default;

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

/// The one request has many replies: the first says that the recording runs, every further one brings events.
bool X11KeyWatcher::enableContext() {
    recording_ = xcb_record_enable_context(data_.get(), context_);
    return XcbReply<xcb_record_enable_context_reply_t>(
               xcb_record_enable_context_reply(data_.get(), recording_, nullptr)) != nullptr;
}

void X11KeyWatcher::readKeys() {
    readChanges();  // a new keymap holds for the keys pressed after it
    void *block = nullptr;
    while (xcb_poll_for_reply(data_.get(), recording_.sequence, &block, nullptr)) {
        const XcbReply<xcb_record_enable_context_reply_t> record(
            static_cast<xcb_record_enable_context_reply_t *>(block));
        if (!record) {  // the server has ended the recording, or itself
            notifiers_[0]->setEnabled(false);
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
        notifiers_[1]->setEnabled(false);
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
        down_.reset(event.detail);
        return;
    }
    if (down_.test(event.detail))  // held down: the server repeats the press without a release
        return;
    down_.set(event.detail);
    const bool numLock = event.state & XCB_MOD_MASK_2;
    if (const std::optional<Qt::Key> key = keymap_.key(event.detail, numLock))
        report_(*key);
}
