#pragma once

#include "toolkit/key_watcher.h"
#include "toolkit/x11_keymap.h"

#include <QSocketNotifier>
#include <bitset>
#include <memory>
#include <xcb/record.h>
#include <xcb/xcb.h>

struct XcbDisconnect {
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, XcbDisconnect>;

/// Watches the keys of the whole X11 desktop through the RECORD extension.
///
/// It has two display connections of its own, as RECORD wants: one that the server fills with key events, and
/// one for everything else. The event loop watches both sockets, so there is no thread to stop. XCB and not
/// Xlib, because Xlib ends the process when its server goes.
class X11KeyWatcher : public KeyWatcher {
public:
    explicit X11KeyWatcher(const Report &report);
    ~X11KeyWatcher() override;

    /// False when the server could not be reached or does not record.
    bool isWatching() const { return notifiers_[0] != nullptr; }

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
    std::bitset<256> down_;  // by keycode
    std::unique_ptr<QSocketNotifier> notifiers_[2];
};
