"""The data that Ocela returns. Times are in ms since 1970 UTC, by the clock of Ocela."""
from __future__ import annotations

import dataclasses
import math
from dataclasses import dataclass
from typing import Any, Dict, Mapping, NamedTuple, Optional, Tuple, Type, TypeVar, Union, get_type_hints

Json = Mapping[str, Any]
T = TypeVar("T")


class Sample(NamedTuple):
    """A sample of the selected tracker. A value that the tracker does not measure is 0. A non-finite value is NaN."""

    number: int  # 1, 2, 3, ... over all trackers in one run of Ocela
    time: float  # arrival, ms since 1970 UTC
    timestamp: int  # the device's own time, ms; 0 for aSee Pro
    valid: bool  # whether the combined gaze is usable
    x: float  # combined gaze, % of the calibrated area: 0 is the left or top edge
    y: float
    x_px: int  # the same in pixels from the top-left corner of the area
    y_px: int
    l_valid: bool  # whether the left eye was detected
    l_x: float
    l_y: float
    l_x_px: int
    l_y_px: int
    l_pupil_mm: float  # diameter
    l_pupil_x: int  # centre in the camera image, pixels
    l_pupil_y: int
    r_valid: bool
    r_x: float
    r_y: float
    r_x_px: int
    r_y_px: int
    r_pupil_mm: float
    r_pupil_x: int
    r_pupil_y: int
    distance_cm: float  # from the eyes to the tracker
    focus: float  # the device's own quality figure


_SAMPLE_FIELDS = tuple(get_type_hints(Sample).items())


def sample_of(data: Json) -> Sample:
    values = ((data[key], kind) for key, kind in _SAMPLE_FIELDS)
    return Sample(*(math.nan if value is None else kind(value) for value, kind in values))


@dataclass(frozen=True)
class Samples:
    """The answer to `Client.samples_after()`."""

    run: str
    next: int  # pass it as `after` to the next call
    missed: Optional[int]  # number of samples that Ocela had already dropped; None if `after` is of another run
    samples: Tuple[Sample, ...]


@dataclass(frozen=True)
class Missed:
    """Samples and markers that a stream could not deliver."""

    count: Optional[int]  # number of samples; None if unknown, because Ocela was restarted
    markers: int = 0


@dataclass(frozen=True)
class Marker:
    """A labelled moment of the experiment."""

    text: str
    time: float
    number: int  # number of the newest sample when the marker was set; 0 for none
    recorded: bool  # whether a recording has stored the marker


@dataclass(frozen=True)
class Tracker:
    """The selected tracker."""

    name: str
    connected: bool
    reason: Optional[str]  # why it is not connected; None if unknown
    sample_rate_hz: Optional[float]
    valid_share: Optional[float]  # share of samples with a valid combined gaze, from 0 to 1
    last_sample_age_ms: Optional[float]
    newest: Optional[int]  # number of the newest sample


@dataclass(frozen=True)
class CalibrationResult:
    result: str  # "done", "failed", "cancelled" or "unknown"
    time: float


@dataclass(frozen=True)
class Calibration:
    running: bool
    last: Optional[CalibrationResult]


@dataclass(frozen=True)
class RunningRecording:
    tracker: str
    path: str
    started_at: float
    duration_ms: float
    samples: int
    events: int  # number of markers


@dataclass(frozen=True)
class LastRecording:
    """The recording that stopped last."""

    path: Optional[str]  # None if it was discarded
    samples: int
    saved: bool
    error: Optional[str]


@dataclass(frozen=True)
class SavedRecording:
    """A recording that is safely on disk. The path is that of Ocela's computer."""

    path: str
    samples: int
    duration_ms: float


@dataclass(frozen=True)
class RecordFile:
    """A record file in Ocela's records folder."""

    name: str
    bytes: int
    modified: float


@dataclass(frozen=True)
class Area:
    """The area to which percent and pixels of samples are relative."""

    x: int
    y: int
    width: int
    height: int
    unit: str  # unit of the area and of the pixels of samples: "desktop" or "device"


@dataclass(frozen=True)
class Screen:
    """A screen."""

    number: int  # counted from 1
    x: int  # left edge, desktop pixels
    y: int
    width: int  # device pixels
    height: int
    width_mm: float  # as the system reports it; 0 if unknown
    height_mm: float
    scale: float  # device pixels of a desktop pixel
    primary: bool


@dataclass(frozen=True)
class Access:
    """What the settings permit."""

    other_computers: bool
    foreign_pages: bool
    any_file: bool


@dataclass(frozen=True)
class State:
    """The state of Ocela."""

    version: str
    run: str  # a random id of this run of Ocela
    time: float
    trackers: Tuple[str, ...]
    tracker: Optional[Tracker]
    calibration: Calibration
    recordings: Tuple[RunningRecording, ...]  # several trackers can record at once
    last_recording: Optional[LastRecording]
    screens: Tuple[Screen, ...]
    area: Optional[Area]  # None before it is known
    access: Access


@dataclass(frozen=True)
class ClockOffset:
    """The difference between the clocks of Ocela and of this computer."""

    offset_ms: float  # add it to a time of this computer
    accuracy_ms: float  # the true offset differs by at most this much

    def to_ocela(self, time_s: float) -> float:
        """Converts a result of `time.time()` on this computer to a time of Ocela."""
        return time_s * 1000 + self.offset_ms


Event = Union[Sample, Marker, Missed, State]


def _camel_case(name: str) -> str:
    first, *others = name.split("_")
    return first + "".join(map(str.capitalize, others))


def read(kind: Type[T], data: Json, **nested: Any) -> T:
    """Returns a dataclass whose fields are the keys of `data` in camel case, except the given ones."""
    names = [field.name for field in dataclasses.fields(kind) if field.name not in nested]
    values: Dict[str, Any] = {name: data[_camel_case(name)] for name in names}
    return kind(**values, **nested)


def read_optional(kind: Type[T], data: Optional[Json]) -> Optional[T]:
    return None if data is None else read(kind, data)


def read_all(kind: Type[T], data: Any) -> Tuple[T, ...]:
    return tuple(read(kind, item) for item in data)


def samples_of(data: Json) -> Samples:
    return read(Samples, data, samples=tuple(map(sample_of, data["samples"])))


def state_of(data: Json) -> State:
    calibration = data["calibration"]
    return read(State, data,
                trackers=tuple(data["trackers"]),
                tracker=read_optional(Tracker, data["tracker"]),
                calibration=Calibration(calibration["running"],
                                        read_optional(CalibrationResult, calibration["last"])),
                recordings=read_all(RunningRecording, data["recordings"]),
                last_recording=read_optional(LastRecording, data["lastRecording"]),
                screens=read_all(Screen, data["screens"]),
                area=read_optional(Area, data["area"]),
                access=read(Access, data["access"]))
