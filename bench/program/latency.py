"""Measures the time from the server's send() until the pixels of the virtual screen change.

A small server sends records at the full rate. Their values change every time, so that the program has its normal load.
Only one flag is constant. A measurement toggles it, and ends when the pixels of its text change.
"""

import multiprocessing
import random
import socket
import time

from frame_buffer import Region

PORT = 4242
SETTLE_S = 1
TIMEOUT_S = 5


def record(valid, still):
    x, y = (0.5, 0.5) if still else (random.random(), random.random())
    return (f'<REC FPOGX="{x:.5f}" FPOGY="{y:.5f}" FPOGS="1.0" FPOGD="0.1" FPOGID="1" FPOGV="{valid}" '
            f'LPOGX="{y:.5f}" LPOGY="{x:.5f}" LPOGV="1" RPOGX="{x:.5f}" RPOGY="{y:.5f}" RPOGV="1" '
            f'LPCX="0.3" LPCY="0.4" LPD="15.0" LPS="1.0" LPV="1" RPCX="0.6" RPCY="0.4" RPD="15.0" RPS="1.0" RPV="1" '
            f'LPMM="{3 + x:.5f}" LPMMV="1" RPMM="{3 + y:.5f}" RPMMV="1" />\r\n').encode()


class Server:
    """A server for one client, in a separate process."""

    def __init__(self, rate_hz):
        self.valid = multiprocessing.Value("i", 0)
        self.still = multiprocessing.Value("i", 1)
        self.sent = multiprocessing.Value("d", 0)  # when the current state of the flag was first sent
        self._rate_hz = rate_hz
        self._listener = socket.create_server(("127.0.0.1", PORT))
        self._process = multiprocessing.Process(target=self._serve, daemon=True)

    def __enter__(self):
        self._process.start()
        return self

    def __exit__(self, *_):
        self._process.terminate()
        self._process.join()
        self._listener.close()

    def toggle_flag(self):
        self.valid.value = 1 - self.valid.value

    def _serve(self):
        client, _ = self._listener.accept()
        client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        shown = -1
        due = time.monotonic()
        while True:
            self._answer(client)
            valid = self.valid.value
            if valid != shown:
                shown, self.sent.value = valid, time.monotonic()
            client.sendall(record(valid, self.still.value))
            due += 1 / self._rate_hz
            time.sleep(max(0, due - time.monotonic()))

    @staticmethod
    def _answer(client):
        try:
            if b"SCREEN_SIZE" in client.recv(65536, socket.MSG_DONTWAIT):
                client.sendall(b'<ACK ID="SCREEN_SIZE" X="0" Y="0" WIDTH="1920" HEIGHT="1080" />\r\n')
                time.sleep(0.05)  # otherwise the client reads the first record together with the answer
        except BlockingIOError:
            pass


def flag_region(server, buffer):
    time.sleep(SETTLE_S)
    before = buffer.whole()
    server.toggle_flag()
    time.sleep(SETTLE_S)
    return Region(buffer, before, buffer.whole())


def seconds_to_screen(server, region):
    before = region.picture()
    earlier = server.sent.value
    server.toggle_flag()
    deadline = time.monotonic() + TIMEOUT_S
    while region.picture() == before:
        if time.monotonic() > deadline:
            raise SystemExit(f"a change did not reach the screen within {TIMEOUT_S} s")
    seen = time.monotonic()
    while server.sent.value == earlier:
        pass
    return seen - server.sent.value


def latencies(server, buffer, count):
    """Returns the latencies of `count` samples at random times relative to records and frames."""
    region = flag_region(server, buffer)
    server.still.value = 0
    time.sleep(SETTLE_S)
    results = []
    for _ in range(count):
        time.sleep(random.uniform(0.05, 0.15))
        results.append(seconds_to_screen(server, region))
    return results
