"""The parts of Xlib that the benchmarks need: waiting for a window to be mapped, and closing it."""

import ctypes
import select
import time

SUBSTRUCTURE_NOTIFY = 1 << 19
MAP_NOTIFY = 19
CLIENT_MESSAGE = 33


class MapEvent(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("event", ctypes.c_ulong), ("window", ctypes.c_ulong),
                ("override_redirect", ctypes.c_int)]


class ClientMessage(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5)]


class Event(ctypes.Union):
    _fields_ = [("map", MapEvent), ("client", ClientMessage), ("size_of_every_event", ctypes.c_long * 24)]


def library():
    xlib = ctypes.CDLL("libX11.so.6")
    xlib.XOpenDisplay.restype = ctypes.c_void_p
    xlib.XDefaultRootWindow.restype = ctypes.c_ulong
    xlib.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
    xlib.XSelectInput.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_long]
    xlib.XConnectionNumber.argtypes = [ctypes.c_void_p]
    xlib.XPending.argtypes = [ctypes.c_void_p]
    xlib.XNextEvent.argtypes = [ctypes.c_void_p, ctypes.POINTER(Event)]
    xlib.XFetchName.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.POINTER(ctypes.c_void_p)]
    xlib.XFree.argtypes = [ctypes.c_void_p]
    xlib.XSync.argtypes = [ctypes.c_void_p, ctypes.c_int]
    xlib.XInternAtom.restype = ctypes.c_ulong
    xlib.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
    xlib.XSendEvent.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_long, ctypes.POINTER(Event)]
    return xlib


class Screen:
    """Receives an event for each top-level window that is mapped. There is no window manager, so the windows of the
    programs are children of the root window."""

    def __init__(self):
        self._xlib = library()
        self._display = self._xlib.XOpenDisplay(None)
        if not self._display:
            raise SystemExit("cannot open the display")
        self._xlib.XSelectInput(self._display, self._xlib.XDefaultRootWindow(self._display), SUBSTRUCTURE_NOTIFY)
        self._window = None
        self.forget()

    def forget(self):
        """Discards all events so far."""
        self._xlib.XSync(self._display, True)

    def wait_for_window(self, title, timeout_s):
        """Waits for a window whose title starts with `title`. The title may be set after mapping. Returns the time when
        the window was mapped, in seconds of the monotonic clock."""
        deadline = time.monotonic() + timeout_s
        mapped = {}
        while time.monotonic() < deadline:
            select.select([self._xlib.XConnectionNumber(self._display)], [], [], 0.02)
            while self._xlib.XPending(self._display):
                event = Event()
                self._xlib.XNextEvent(self._display, ctypes.byref(event))
                if event.map.type == MAP_NOTIFY and not event.map.override_redirect:
                    mapped[event.map.window] = time.monotonic()
            for window, moment in mapped.items():
                if self._title(window).startswith(title):
                    self._window = window
                    return moment
        raise SystemExit(f"no window {title!r} within {timeout_s} s")

    def request_close(self):
        """Sends a close request to the window of the last wait_for_window(), like the close button of its frame."""
        event = Event()
        event.client = ClientMessage(type=CLIENT_MESSAGE, window=self._window, message=self._atom(b"WM_PROTOCOLS"),
                                     format=32)
        event.client.data[0] = self._atom(b"WM_DELETE_WINDOW")
        self._xlib.XSendEvent(self._display, self._window, False, 0, ctypes.byref(event))
        self._xlib.XSync(self._display, False)

    def _atom(self, name):
        return self._xlib.XInternAtom(self._display, name, False)

    def _title(self, window):
        name = ctypes.c_void_p()
        if not self._xlib.XFetchName(self._display, window, ctypes.byref(name)):
            return ""
        text = ctypes.string_at(name).decode("utf-8", "replace")
        self._xlib.XFree(name)
        return text
