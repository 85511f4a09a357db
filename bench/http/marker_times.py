"""Measures how exactly a program on the same computer sets markers with the Python client.

The moment of each call is taken from this machine's monotonic clock. The times in the events file are those of Ocela's
clock, which does not jump either. The difference of both clocks is measured before and after the markers.
"""

import csv
import pathlib
import random
import statistics
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "clients/python/src"))
import ocela  # noqa: E402
from ocela.transport import Connection  # noqa: E402

ROUNDS = 500  # of each measurement of the clocks
PAUSES = (0.01, 0.04)  # s between two markers; random, so that they do not follow the samples


def now_ms():
    return time.monotonic_ns() / 1e6


class Clocks:
    """Converts the monotonic clock to Ocela's clock."""

    def __init__(self):
        self._measured = []  # (monotonic, difference, half of the round trip)

    def measure(self):
        best = None
        with Connection("localhost", 3735, 10) as connection:
            for _ in range(ROUNDS):
                sent = now_ms()
                ocela_ms = connection.ask("GET", "state").parsed(lambda data: data["time"])
                received = now_ms()
                middle, half = (sent + received) / 2, (received - sent) / 2
                if best is None or half < best[2]:
                    best = (middle, ocela_ms - middle, half)
        self._measured.append(best)

    @property
    def accuracy_ms(self):
        return max(half for *_, half in self._measured)

    def to_ocela(self, monotonic_ms):
        (begin, first, _), (end, last, _) = self._measured
        return monotonic_ms + first + (last - first) * (monotonic_ms - begin) / (end - begin)


def read_csv(path):
    with open(path, newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file))


def times_in_file(record):
    """Returns the time of each marker by Ocela's clock, in ms."""
    first_ms = float(read_csv(record.with_name(record.stem + "_samples.csv"))[0]["Arrival_ms"])
    return {marker["text"]: first_ms + 1000 * float(marker["onset"])
            for marker in read_csv(record.with_name(record.stem + "_events.csv"))}


def measure(count):
    """Sets `count` markers in each of two ways. Prints how late their times are, and how long the calls take."""
    offset = ocela.clock_offset()
    clocks = Clocks()
    calls = {"mark(text)": [], "mark(text, time)": []}
    with ocela.recording("bench_markers") as recording:
        clocks.measure()
        for number in range(count):
            for way, called in calls.items():
                time.sleep(random.uniform(*PAUSES))
                begin, shown = now_ms(), time.time()
                text = f"{way} {number}"
                ocela.mark(text, offset.to_ocela(shown) if "time" in way else None)
                called.append((text, begin, now_ms() - begin))
        clocks.measure()
    stored = times_in_file(pathlib.Path(recording.path))
    print(f"\n{count} markers of each kind. The clocks are compared to within {clocks.accuracy_ms:.3f} ms; "
          f"clock_offset() is accurate to {offset.accuracy_ms:.3f} ms")
    for way, called in calls.items():
        show(f"{way}: time in the events file, from the call",
             [stored[text] - clocks.to_ocela(begin) for text, begin, _ in called])
        show(f"{way}: duration of the call", [duration for *_, duration in called])


def show(name, values):
    values = sorted(values)
    print(f"  {name:57} median {statistics.median(values):6.3f}   p99 {values[int(0.99 * len(values))]:6.3f}   "
          f"min {values[0]:6.3f}   max {values[-1]:6.3f} ms")
