"""The contents of the BIDS files of one recording.

All times are in seconds from the first sample. All positions are in pixels from the top-left corner of the screen."""
from __future__ import annotations

import csv
import gzip
import io
import json
import math
import re
from dataclasses import dataclass
from typing import Any, Dict, Iterable, List, Optional, Sequence, Tuple

from .record_file import Rect, Gaze, RecordMarker

Json = Dict[str, Any]
NOT_AVAILABLE = "n/a"
PHYSIO_COLUMNS = ["timestamp", "x_coordinate", "y_coordinate", "pupil_size"]
MARKER_COLUMNS = ["onset", "duration", "message"]

# Tabs and line ends separate cells. BIDS tools read a cell as one line.
_CONTROL_CHARACTERS = re.compile("[\x00-\x1f\x7f\x85\u2028\u2029]+")

_ONSET = {"Description": "Time of the marker, from the first sample of the recording.", "Units": "s"}
_DURATION = {"Description": "Markers are moments. Their duration is 0.", "Units": "s"}
_TEXT = "Text of the marker, as set by the experiment or by a key."


@dataclass(frozen=True)
class Screen:
    """A screen, and the part of it to which percent are relative."""

    resolution: Tuple[int, int]
    area: Rect  # as shares of the screen, from 0 to 1

    def x_px(self, percent: float) -> float:
        return (self.area.x + percent / 100 * self.area.width) * self.resolution[0]

    def y_px(self, percent: float) -> float:
        return (self.area.y + percent / 100 * self.area.height) * self.resolution[1]


def json_file(value: Json) -> bytes:
    return (json.dumps(value, indent=2, ensure_ascii=False) + "\n").encode()


def physio_tsv(times_s: Sequence[float], gaze: Gaze, screen: Screen) -> bytes:
    """Returns the samples of one eye, compressed, without a header."""
    lines = (f"{time:.6f}\t{_cell(screen.x_px(x), 2)}\t{_cell(screen.y_px(y), 2)}\t{_cell(pupil, 3)}\n"
             for time, x, y, pupil in zip(times_s, gaze.x, gaze.y, gaze.pupil_mm))
    return _compressed("".join(lines))


def physio_json(recorded_eye: str, source: str, rate_hz: float, device: Json) -> bytes:
    """`source` describes the eye, for example "the left eye"."""
    pupil = "Not measured for the combined gaze" if recorded_eye == "cyclopean" else f"Diameter of the pupil of {source}"
    return json_file({
        "PhysioType": "eyetrack",
        "RecordedEye": recorded_eye,
        "SampleCoordinateSystem": "gaze-on-screen",
        "SamplingFrequency": rate_hz,
        "StartTime": 0,
        "Columns": PHYSIO_COLUMNS,
        **device,
        "timestamp": {"Description": "Time of the sample.", "Units": "s", "Origin": "First sample of the recording"},
        "x_coordinate": {"Description": f"Distance of the gaze from the left edge of the screen: {source}.", "Units": "pixel"},
        "y_coordinate": {"Description": f"Distance of the gaze from the top edge of the screen: {source}.", "Units": "pixel"},
        "pupil_size": {"Description": f"{pupil}.", "Units": "mm"},
    })


def physioevents_tsv(markers: Iterable[RecordMarker]) -> bytes:
    """Returns the markers, compressed, without a header."""
    return _compressed(_table(_marker_rows(markers)))


def physioevents_json() -> bytes:
    return json_file({
        "Columns": MARKER_COLUMNS,
        "Description": "Markers that the experiment or its operator has set during the recording.",
        "OnsetSource": "timestamp",
        "onset": _ONSET,
        "duration": _DURATION,
        "message": {"Description": _TEXT},
    })


def events_tsv(markers: Iterable[RecordMarker]) -> bytes:
    """Returns the markers with a header."""
    return _table([["onset", "duration", "value"], *_marker_rows(markers)]).encode()


def events_json(screen: Screen, size_mm: Optional[Tuple[float, float]], distance_mm: Optional[float]) -> bytes:
    return json_file({
        "onset": _ONSET,
        "duration": _DURATION,
        "value": {"Description": _TEXT},
        "StimulusPresentation": {
            "ScreenDistance": NOT_AVAILABLE if distance_mm is None else _metres(distance_mm),
            "ScreenOrigin": ["top", "left"],
            "ScreenResolution": list(screen.resolution),
            "ScreenSize": NOT_AVAILABLE if size_mm is None else [_metres(length) for length in size_mm],
        },
    })


def _cell(value: float, decimals: int) -> str:
    return f"{value:.{decimals}f}" if math.isfinite(value) else NOT_AVAILABLE


def _metres(millimetres: float) -> float:
    return round(millimetres / 1000, 6)


def _marker_rows(markers: Iterable[RecordMarker]) -> List[List[str]]:
    return [[f"{marker.onset_s:.6f}", f"{marker.duration_s:g}", _one_line(marker.text)] for marker in markers]


def _one_line(text: str) -> str:
    return _CONTROL_CHARACTERS.sub(" ", text).strip() or NOT_AVAILABLE


def _table(rows: Iterable[List[str]]) -> str:
    text = io.StringIO()
    csv.writer(text, delimiter="\t", lineterminator="\n").writerows(rows)
    return text.getvalue()


def _compressed(text: str) -> bytes:
    return gzip.compress(text.encode(), compresslevel=6, mtime=0)
