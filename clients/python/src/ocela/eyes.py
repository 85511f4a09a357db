"""Rules for the eyes of a sample. The dashboard uses the same rules; docs/records.md describes the one for crossed eyes."""
from __future__ import annotations

import math
from typing import Optional, Tuple

# Noise changes measured values in every sample. An eye whose values repeat more often than this is lost.
MAX_REPEAT_COUNT = 2

# Rule for the crossed right eye: near the diagonal, both orders of the axes fit. A decision needs one order to be this
# many times closer than the other.
MIN_SAMPLE_COUNT = 30
CLEAR_RATIO = 2

Values = Tuple[float, float, float]
MISSING: Values = (math.nan, math.nan, math.nan)


class Eye:
    """Finds the samples in which one eye is lost. For a lost eye, trackers send zeros or repeat the last values."""

    def __init__(self) -> None:
        self._last = MISSING
        self._repeat_count = 0

    def read(self, values: Values, detected: Optional[bool]) -> Values:
        """Returns x, y and the pupil diameter; NaN for missing values.

        `detected` is the tracker's flag. If it is None, repeated values mean that the eye is lost."""
        self._repeat_count = self._repeat_count + 1 if values == self._last else 0
        self._last = values
        lost = self._repeat_count > MAX_REPEAT_COUNT if detected is None else not detected
        if lost:
            return MISSING
        x, y, pupil = values
        has_gaze = math.isfinite(x) and math.isfinite(y) and (x, y) != (0, 0)
        has_pupil = math.isfinite(pupil) and pupil > 0
        return (x if has_gaze else math.nan, y if has_gaze else math.nan, pupil if has_pupil else math.nan)


class CrossedEye:
    """Detects a tracker that exchanges the axes of the right eye."""

    def __init__(self) -> None:
        self.crossed = False
        self._count = 0
        self._as_delivered = 0.0
        self._exchanged = 0.0

    def add(self, x: float, y: float, right_x: float, right_y: float) -> None:
        """Adds the combined gaze and the right eye of a sample. A sample with a value that is not finite is skipped."""
        as_delivered = abs(right_x - x) + abs(right_y - y)
        exchanged = abs(right_y - x) + abs(right_x - y)
        if not math.isfinite(as_delivered + exchanged):
            return
        self._count += 1
        self._as_delivered += as_delivered
        self._exchanged += exchanged
        if self._count < MIN_SAMPLE_COUNT:
            return
        if self._exchanged * CLEAR_RATIO < self._as_delivered:
            self.crossed = True
        elif self._as_delivered * CLEAR_RATIO < self._exchanged:
            self.crossed = False
