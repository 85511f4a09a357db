"""A client that sends valid requests during an abuse, and measures their response times."""

import contextlib
import threading
import time

import raw_client

INTERVAL = 0.02  # s between two rounds


class Probe(threading.Thread):
    """Sends requests on a persistent connection and on new ones. Stores failures, the longest wait, and the peak of the
    resources that `measure_resources` returns."""

    def __init__(self, measure_resources):
        super().__init__(daemon=True)
        self._measure_resources = measure_resources
        self._persistent = raw_client.connect()
        self._may_connect = threading.Event()
        self._may_connect.set()
        self._stopped = threading.Event()
        self._round = threading.Lock()
        self._failures_count = True
        self.reset()

    def reset(self):
        self.longest_wait = 0
        self.failures = []
        self.peak = self._measure_resources()

    @contextlib.contextmanager
    def without_new_connections(self):
        self._may_connect.clear()
        with self._round:  # waits until the last new connection is closed
            pass
        time.sleep(10 * INTERVAL)
        try:
            yield
        finally:
            self._may_connect.set()

    @contextlib.contextmanager
    def without_failures(self):
        """Ignores failures, while the program is allowed to refuse requests."""
        self._failures_count = False
        try:
            yield
        finally:
            with self._round:
                self._failures_count = True

    def run(self):
        while not self._stopped.wait(INTERVAL):
            with self._round:
                self._measure("persistent connection", self._get_on_persistent_connection)
                if self._may_connect.is_set():
                    self._measure("new connection", lambda: raw_client.get("/lastsample"))
                self.peak = self.peak.maximum(self._measure_resources())

    def stop(self):
        self._stopped.set()
        self.join()

    def _get_on_persistent_connection(self):
        self._persistent.sendall(raw_client.head("/lastsample"))
        return raw_client.read_response(self._persistent)

    def _measure(self, name, get):
        begin = time.monotonic()
        try:
            response = get()
            if b'"sample":' not in response:
                self._fail(f"probe, {name}: {response[:60]!r}")
        except OSError as error:
            self._fail(f"probe, {name}: {error}")
            self._persistent = raw_client.connect()
        self.longest_wait = max(self.longest_wait, time.monotonic() - begin)

    def _fail(self, text):
        if self._failures_count:
            self.failures.append(text)
