"""Reads the files of a recording. docs/records.md describes them."""
from __future__ import annotations

import csv
import json
import math
import statistics
from array import array
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any, Callable, Dict, Iterator, List, Mapping, NamedTuple, Optional, Tuple, TypeVar

from .errors import NotExported
from .eyes import CrossedEye, Eye, Values

_EYE = ["X", "Y", "X_px", "Y_px", "Pupil_mm", "PupilX_px", "PupilY_px"]
RECORD_HEADER = ["Timestamp", "Time", "Valid", "X", "Y", "X_px", "Y_px", "Distance_cm",
                 *("L_" + name for name in _EYE), *("R_" + name for name in _EYE), "Focus"]
SAMPLES_HEADER = ["Number", "Arrival_ms", "L_Valid", "R_Valid"]
EVENTS_HEADER = ["onset", "duration", "text", "number", "row"]
DESCRIPTION_FORMAT = 1

# An interval between samples that is this many times the median is an interruption.
INTERRUPTION_RATIO = 5

# Whether a tracker exchanges the axes of the right eye. For other trackers, the data decide.
EXCHANGES_RIGHT_EYE: Mapping[Optional[str], bool] = {"eyetech": False, "gazepoint": True, "aSee Pro": False}

# A pixel column is the percentage times the size, truncated. The percentage is a rounded single-precision number.
PIXEL_TOLERANCE = 0.01
T = TypeVar("T")


class Gaze:
    """The samples of one eye, or of both combined. Positions are in percent. NaN is a missing value."""

    def __init__(self) -> None:
        self.x = array("d")
        self.y = array("d")
        self.pupil_mm = array("d")

    def append(self, values: Values) -> None:
        self.x.append(values[0])
        self.y.append(values[1])
        self.pupil_mm.append(values[2])

    def is_missing(self) -> bool:
        return all(map(math.isnan, self.x))


class RecordMarker(NamedTuple):
    onset_s: float  # from the arrival of the first sample
    duration_s: float
    text: str


class Rect(NamedTuple):
    """A rectangle of the desktop, in pixels."""

    x: float
    y: float
    width: float
    height: float


@dataclass
class Record:
    """A recording. All arrays have one element for each sample."""

    path: Path
    description: Mapping[str, Any]  # empty if there is no description
    left: Gaze = field(default_factory=Gaze)
    right: Gaze = field(default_factory=Gaze)
    combined: Gaze = field(default_factory=Gaze)
    times_s: array[float] = field(default_factory=lambda: array("d"))  # from the first sample; never decreases
    markers: List[RecordMarker] = field(default_factory=list)
    size_px: Optional[Tuple[int, int]] = None  # of the area to which percent are relative; None if it is not known
    distance_mm: Optional[float] = None  # median, from the eyes to the tracker; None if it was not measured
    notes: List[str] = field(default_factory=list)  # what the files do not tell

    @property
    def tracker(self) -> Optional[str]:
        name = self.description.get("tracker")
        return name if isinstance(name, str) else None

    def area(self, key: str) -> Optional[Rect]:
        """Returns an area of the description, or None if it is not known."""
        value = self.description.get(key)
        if value is None:
            return None
        try:
            area = Rect(*(float(value[name]) for name in Rect._fields))
        except (KeyError, TypeError, ValueError):
            area = Rect(math.nan, math.nan, math.nan, math.nan)
        if not all(map(math.isfinite, area)):
            raise NotExported(f"{companion(self.path, '.json')}: {key} is not an area.")
        return area if area.width > 0 and area.height > 0 else None

    def nominal_rate_hz(self) -> Optional[float]:
        """Returns the sample rate of the description, or None if it is not known."""
        value = self.description.get("nominalRateHz")
        if value is None:
            return None
        if isinstance(value, bool) or not isinstance(value, (int, float)) or not 0 < value < math.inf:
            raise NotExported(f"{companion(self.path, '.json')}: nominalRateHz is not a sample rate.")
        return value

    def measured_rate_hz(self) -> Optional[float]:
        """Returns the sample rate without interruptions. None if the samples have no times."""
        intervals_s = [after - before for before, after in zip(self.times_s, self.times_s[1:])]
        if not any(intervals_s):
            return None
        longest_s = (statistics.median(intervals_s) or max(intervals_s)) * INTERRUPTION_RATIO
        intervals_s = [interval for interval in intervals_s if interval <= longest_s]
        return len(intervals_s) / sum(intervals_s)


def companion(record: Path, ending: str) -> Path:
    """Returns the path of a file beside a record file, for example with the ending "_samples.csv"."""
    base = record.name[:-len(".csv")] if record.name.lower().endswith(".csv") else record.name
    return record.with_name(base + ending)


def read_record(path: Path) -> Record:
    """Reads a record file and the files beside it. Raises NotExported if one of them cannot be understood."""
    record = Record(path, _read_description(companion(path, ".json")))
    arrivals_ms, flags = _read_samples(companion(path, "_samples.csv"))
    timestamps_ms = _read_rows(record, flags)
    _check_count(record, len(timestamps_ms))
    record.times_s = _times_of(record, timestamps_ms, arrivals_ms)
    events = companion(path, "_events.csv")
    if events.exists():
        markers = _read_table(events, EVENTS_HEADER, "an events file", _marker)
        record.markers = sorted(markers, key=lambda marker: marker.onset_s)
    return record


def _read_table(path: Path, header: List[str], kind: str, parse: Callable[[List[str]], T]) -> Iterator[T]:
    """Yields the parsed rows. `parse` raises ValueError."""
    try:
        with open(path, newline="", encoding="utf-8-sig") as file:
            reader = csv.reader(file, strict=True)
            found = next(reader, None)
            if found is None:
                raise NotExported(f"{path} is empty.")
            if found != header:
                raise NotExported(f"{path} is not {kind}: its first line is {','.join(found)[:60]!r}.")
            for cells in filter(None, reader):
                try:
                    if len(cells) != len(header):
                        raise ValueError(f"{len(cells)} columns instead of {len(header)}")
                    row = parse(cells)
                except ValueError as error:
                    line = reader.line_num
                    if next(reader, None) is None:
                        raise NotExported(f"{path} is cut off in line {line}: {error}. To export the rest, remove this "
                                          "line from a copy of the file.") from None
                    raise NotExported(f"{path}, line {line}: {error}.") from None
                yield row
    except UnicodeDecodeError:
        raise NotExported(f"{path} is not {kind}: it is not UTF-8 text.") from None
    except csv.Error as error:
        raise NotExported(f"{path}, line {reader.line_num}: {error}.") from None
    except OSError as error:
        raise NotExported(f"{path}: {error.strerror}.") from None


def _numbers(cells: List[str]) -> List[float]:
    return list(map(float, cells))


def _marker(cells: List[str]) -> RecordMarker:
    onset_s, duration_s = _numbers(cells[:2])
    if not math.isfinite(onset_s) or not math.isfinite(duration_s):
        raise ValueError(f"{cells[0]},{cells[1]} is not a time")
    return RecordMarker(onset_s, duration_s, cells[2])


def _read_description(path: Path) -> Mapping[str, Any]:
    try:
        description = json.loads(path.read_text(encoding="utf-8-sig"))
    except FileNotFoundError:
        return {}
    except OSError as error:
        raise NotExported(f"{path}: {error.strerror}.") from None
    except (ValueError, RecursionError) as error:
        raise NotExported(f"{path} is not a description: {error}.") from None
    if not isinstance(description, dict) or description.get("format") != DESCRIPTION_FORMAT:
        raise NotExported(f"{path} is not a description of format {DESCRIPTION_FORMAT}. Update this package, or move the "
                          "file away to export the record without it.")
    return description


def _read_samples(path: Path) -> Tuple[array[float], List[Tuple[bool, bool]]]:
    """Returns the arrival times in ms and the flags of both eyes. They are empty if there is no samples file."""
    arrivals_ms = array("d")
    flags: List[Tuple[bool, bool]] = []
    if not path.exists():
        return arrivals_ms, flags
    for _, arrival_ms, left, right in _read_table(path, SAMPLES_HEADER, "a samples file", _numbers):
        if not math.isfinite(arrival_ms) or (arrivals_ms and arrival_ms < arrivals_ms[-1]):
            raise NotExported(f"{path}: the arrival time of sample {len(flags) + 1} is earlier than the one before it.")
        arrivals_ms.append(arrival_ms)
        flags.append((left != 0, right != 0))
    return arrivals_ms, flags


def _read_rows(record: Record, flags: List[Tuple[bool, bool]]) -> array[float]:
    """Reads the gaze. Returns the timestamps in ms."""
    timestamps_ms = array("d")
    left_eye, right_eye, right_axes = Eye(), Eye(), CrossedEye()
    width, height = _PixelSize(), _PixelSize()
    distances_cm = array("d")
    for cells in _read_table(record.path, RECORD_HEADER, "a record file", _numbers):
        timestamp, _, valid, x, y, x_px, y_px, distance, l_x, l_y, _, _, l_pupil, _, _, r_x, r_y, _, _, r_pupil = cells[:20]
        row = len(timestamps_ms)
        left_found, right_found = flags[row] if row < len(flags) else (None, None)
        if not valid or not math.isfinite(x) or not math.isfinite(y):
            x = y = math.nan
        right = right_eye.read((r_x, r_y, r_pupil), right_found)
        right_axes.add(x, y, right[0], right[1])
        width.add(x, x_px)
        height.add(y, y_px)
        if math.isfinite(distance) and distance > 0:
            distances_cm.append(distance)
        record.left.append(left_eye.read((l_x, l_y, l_pupil), left_found))
        record.right.append(right)
        record.combined.append((x, y, math.nan))
        timestamps_ms.append(timestamp)
    if EXCHANGES_RIGHT_EYE.get(record.tracker, right_axes.crossed):
        record.right.x, record.right.y = record.right.y, record.right.x
    if width.size and height.size:
        record.size_px = (width.size, height.size)
    if distances_cm:
        record.distance_mm = statistics.median(distances_cm) * 10
    return timestamps_ms


class _PixelSize:
    """Finds the size of an area along one axis from positions that are both in percent and in truncated pixels."""

    def __init__(self) -> None:
        self._low = 0.0
        self._high = math.inf

    def add(self, percent: float, pixels: float) -> None:
        if 0 < percent < 100 and pixels > 0:
            self._low = max(self._low, (pixels - PIXEL_TOLERANCE) * 100 / percent)
            self._high = min(self._high, (pixels + 1 + PIXEL_TOLERANCE) * 100 / percent)

    @property
    def size(self) -> Optional[int]:
        """The only integer that agrees with all positions. None if there are several or none."""
        size = math.ceil(self._low)
        return size if 0 < size <= self._high < size + 1 else None


def _check_count(record: Record, count: int) -> None:
    if count == 0:
        raise NotExported(f"{record.path} has no samples.")
    expected = record.description.get("sampleCount", count)
    if count != expected:
        raise NotExported(f"{record.path} has {count} samples, but {companion(record.path, '.json').name} says {expected}. "
                          "The record is cut off, or the description belongs to another record.")


def _times_of(record: Record, timestamps_ms: array[float], arrivals_ms: array[float]) -> array[float]:
    """Returns the times of the samples in seconds from the first one. They are all 0 if the times are not known."""
    count = len(timestamps_ms)
    samples = companion(record.path, "_samples.csv").name
    if len(arrivals_ms) > count:
        raise NotExported(f"{record.path} has {count} samples, but {samples} has {len(arrivals_ms)}. The record is cut "
                          "off, or the samples file belongs to another record.")
    if len(arrivals_ms) == count:
        return array("d", ((arrival - arrivals_ms[0]) / 1000 for arrival in arrivals_ms))
    if arrivals_ms:
        record.notes.append(f"arrival times: {samples} has {len(arrivals_ms)} of {count} samples. Timestamp is used")
    else:
        record.notes.append(f"arrival times and detected eyes: there is no {samples}. The column Timestamp is used, and an "
                            "eye that repeats its values is taken as lost")
    return _without_setbacks(record, timestamps_ms)


def _without_setbacks(record: Record, timestamps_ms: array[float]) -> array[float]:
    """Converts timestamps to seconds. Where the clock was set back, samples follow immediately after the earlier ones."""
    times_s = array("d")
    last_ms, elapsed_ms, setbacks = math.nan, 0.0, 0
    for timestamp_ms in timestamps_ms:
        if timestamp_ms >= last_ms:
            elapsed_ms += timestamp_ms - last_ms
        setbacks += timestamp_ms < last_ms
        if math.isfinite(timestamp_ms):
            last_ms = timestamp_ms
        times_s.append(elapsed_ms / 1000)
    if setbacks or record.description.get("systemClockStepped"):
        record.notes.append("times: the system clock was set during the recording. Later samples and markers may not fit")
    return times_s
