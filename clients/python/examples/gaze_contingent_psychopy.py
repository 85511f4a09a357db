#!/usr/bin/env python3
"""A gaze-contingent display with PsychoPy: a disc follows the gaze, and covers the part of the text that is looked at.

Not tested: PsychoPy is not part of Ocela's test environment. The part that reads the gaze is the same as in the README.

usage: python gaze_contingent_psychopy.py [--screen 1]

A thread receives the samples, and the loop draws the newest one. So the display never waits for the tracker, and a slow
frame never delays the samples. The gaze is in percent of the calibrated area, which must be the screen of the window.
"""
from __future__ import annotations

import argparse
import threading
import time
from typing import Any, Optional

import ocela
from psychopy import event, visual  # type: ignore[import]

TEXT = "The sea was calm that morning, and nobody on the pier expected the storm."
MAX_AGE_MS = 100  # an older sample does not show where the participant looks now


class LiveGaze:
    """Holds the newest sample. It is received on a thread that ends with the program."""

    def __init__(self) -> None:
        self.newest: Optional[ocela.Sample] = None
        self._offset = ocela.clock_offset()
        threading.Thread(target=self._follow, daemon=True).start()

    def _follow(self) -> None:
        for sample in ocela.samples():
            self.newest = sample

    def position(self, size_px: Any) -> Optional[tuple[float, float]]:
        """Returns the gaze in pixels from the centre of the window, y upwards. None if it is unknown."""
        sample = self.newest
        now_ms = self._offset.to_ocela(time.time())
        if not sample or not sample.valid or now_ms - sample.time > MAX_AGE_MS:
            return None
        return (sample.x / 100 - 0.5) * size_px[0], (0.5 - sample.y / 100) * size_px[1]


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("--screen", type=int, default=1, help="number of the screen in Ocela; PsychoPy counts from 0")
    options = parser.parse_args()

    ocela.calibrate(options.screen)
    window = visual.Window(fullscr=True, screen=options.screen - 1, units="pix", color="white")
    text = visual.TextStim(window, TEXT, color="black", height=40, wrapWidth=window.size[0] * 0.8)
    mask = visual.Circle(window, radius=80, fillColor="grey", lineColor=None)
    gaze = LiveGaze()

    with ocela.recording("gaze_contingent"):
        window.callOnFlip(ocela.mark, "text on")  # sets the marker when the first frame is shown
        while not event.getKeys(["escape", "space"]):
            text.draw()
            position = gaze.position(window.size)
            if position:
                mask.pos = position
                mask.draw()
            window.flip()
        ocela.mark("text off")
    window.close()


if __name__ == "__main__":
    main()
