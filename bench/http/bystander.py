"""The client that has nothing to do with it, and must not notice."""

import contextlib
import threading
import time

import raw_client

PAUSE = 0.02      # s between two turns


class Bystander(threading.Thread):
    """Asks all the time, on a connection that it keeps and on new ones, and notes the longest wait. Meanwhile it looks
    at the program: the most that was held of everything."""

    def __init__(self, held):
        super().__init__(daemon=True)
        self._held = held
        self._kept = raw_client.connect()
        self._wants_new = threading.Event()
        self._wants_new.set()
        self._ended = threading.Event()
        self._turn = threading.Lock()
        self.begin()

    def begin(self):
        self.longest = 0
        self.failures = []
        self.most = self._held()

    @contextlib.contextmanager
    def keeping_to_one_connection(self):
        self._wants_new.clear()
        with self._turn:  # so that the last new one is over
            pass
        time.sleep(10 * PAUSE)
        yield
        self._wants_new.set()

    def run(self):
        while not self._ended.wait(PAUSE):
            with self._turn:
                self._ask("kept connection", self._ask_kept)
                if self._wants_new.is_set():
                    self._ask("new connection", lambda: raw_client.get("/lastsample"))
                self.most = self.most.highest(self._held())

    def end(self):
        self._ended.set()
        self.join()

    def _ask_kept(self):
        self._kept.sendall(raw_client.head("/lastsample"))
        return raw_client.read_answer(self._kept)

    def _ask(self, name, ask):
        begin = time.monotonic()
        try:
            answer = ask()
            if b'"sample":' not in answer:
                self.failures.append(f"bystander, {name}: {answer[:60]!r}")
        except OSError as error:
            self.failures.append(f"bystander, {name}: {error}")
            self._kept = raw_client.connect()
        self.longest = max(self.longest, time.monotonic() - begin)
