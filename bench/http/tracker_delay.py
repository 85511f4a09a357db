"""Measures the delay from the tracker's measurement to `newSample` while the server is busy.

Samples do not contain the time of their measurement. The simulator sends it as TIME_TICK, in the time of this machine's
monotonic clock. A minimal client receives the same records as the back-end, and matches them with the samples by their
values. The delay includes the lateness of the simulator. The delay of the same records to the minimal client is the
baseline.
"""

import re
import socket
import threading
import time

PORT = 4242
NANOSECONDS_PER_TICK = 100
SWITCHES = ("TIME_TICK", "POG_LEFT", "PUPILMM", "DATA")
RECORD = re.compile(rb'<REC TIME_TICK="(\d+)" LPOGX="([^"]+)" LPOGY="([^"]+)".* LPMM="([^"]+)".* RPMM="([^"]+)"')


def key(left_mm, right_mm, x, y):
    """Returns the values as bench_http_server prints them: in percent, while records have fractions."""
    return f"{float(left_mm):.5f} {float(right_mm):.5f} {100 * float(x):.3f} {100 * float(y):.3f}"


class MinimalClient(threading.Thread):
    """Stores the times of measurement and arrival of each record, in nanoseconds of the monotonic clock."""

    def __init__(self):
        super().__init__(daemon=True)
        self.records = []  # (key, measured, arrived)
        self._socket = socket.create_connection(("127.0.0.1", PORT))
        for switch in SWITCHES:
            self._socket.sendall(f'<SET ID="ENABLE_SEND_{switch}" STATE="1" />\r\n'.encode())

    def run(self):
        received = b""
        while data := self._socket.recv(65536):
            arrived = time.monotonic_ns()
            *lines, received = (received + data).split(b"\r\n")
            for ticks, x, y, left, right in (match.groups() for match in map(RECORD.match, lines) if match):
                self.records.append((key(left, right, x, y), int(ticks) * NANOSECONDS_PER_TICK, arrived))


def delays_ms(records, samples):
    """Returns the delays of the samples, and of the same records to the minimal client. Omits records whose values are
    not unique, for example during a blink."""
    times = {}
    for name, measured, arrived in records:
        times[name] = None if name in times else (measured, arrived)
    own, baseline = [], []
    for arrived, name in samples:
        if times.get(name):
            own.append((arrived - times[name][0]) / 1e6)
            baseline.append((times[name][1] - times[name][0]) / 1e6)
    return own, baseline


def samples_of(output):
    """Returns (arrived, key) for each complete line of the server's output."""
    lines = output.read_text().split("\n")[:-1]
    return [(int(arrived), name) for arrived, _, name in (line.partition(" ") for line in lines)]
