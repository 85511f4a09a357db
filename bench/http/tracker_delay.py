"""How long a sample takes from the tracker's measurement to `newSample`, while the server is kept busy.

The samples do not tell when they were measured, but the simulator tells every client that asks: TIME_TICK is this
machine's monotonic clock. A bare client beside the back-end asks for it, and its records are matched with the samples
by their values. The delay includes the simulator's own lateness; how long the same record took to the bare client
stands beside it as the baseline.
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
    """As bench_http_server prints a sample: the wire has fractions where samples have percent."""
    return f"{float(left_mm):.5f} {float(right_mm):.5f} {100 * float(x):.3f} {100 * float(y):.3f}"


class BareClient(threading.Thread):
    """Notes of every record when it was measured and when it arrived here, in nanoseconds of the monotonic clock."""

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
    """Of the samples, and of the same records to the bare client. Values that occur twice, as in a blink, tell nothing
    and are left out."""
    times = {}
    for name, measured, arrived in records:
        times[name] = None if name in times else (measured, arrived)
    own, bare = [], []
    for arrived, name in samples:
        if times.get(name):
            own.append((arrived - times[name][0]) / 1e6)
            bare.append((times[name][1] - times[name][0]) / 1e6)
    return own, bare


def samples_of(output):
    """(arrived, key) of each finished line of the server's output."""
    lines = output.read_text().split("\n")[:-1]
    return [(int(arrived), name) for arrived, _, name in (line.partition(" ") for line in lines)]
