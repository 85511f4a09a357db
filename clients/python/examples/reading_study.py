#!/usr/bin/env python3
"""A reading study: calibrates, records one participant, and sets a marker at the start and the end of each text.

usage: python reading_study.py P01

The texts appear in the terminal. Press Enter after each one. At the end the program reads the record file and prints
how many samples each text has, so it must run on the same computer as Ocela.
"""
from __future__ import annotations

import argparse
import csv
from pathlib import Path
from typing import Dict, List, Tuple

import ocela

TEXTS = {
    "sea": "The sea was calm that morning, and nobody on the pier expected the storm.",
    "train": "The last train left at ten, but the old man on the platform did not seem to mind.",
    "letter": "She read the letter twice, put it back into the drawer, and never spoke of it.",
}


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0] if __doc__ else None)
    parser.add_argument("participant", help="for example P01")
    parser.add_argument("--screen", type=int, default=1, help="the screen to calibrate, counted from 1")
    parser.add_argument("--keep-calibration", action="store_true", help="do not calibrate")
    options = parser.parse_args()

    check_tracker()
    if not options.keep_calibration:
        ocela.calibrate(options.screen)
    with ocela.recording(f"{options.participant}_reading") as recording:
        for name, text in TEXTS.items():
            show(name, text)
    print("Saved as", recording.path)
    for name, (samples, valid) in samples_by_text(Path(recording.path)).items():
        print(f"{name}: {samples} samples, {valid} of them valid")


def check_tracker() -> None:
    tracker = ocela.state().tracker
    if not tracker or not tracker.connected:
        raise SystemExit(f"The tracker is not connected. {(tracker and tracker.reason) or ''}")


def show(name: str, text: str) -> None:
    print("\n" * 40 + text)
    ocela.mark(f"{name} on")
    input()
    ocela.mark(f"{name} off")


def samples_by_text(record_file: Path) -> Dict[str, Tuple[int, int]]:
    """Returns the number of samples and of valid samples between the markers of each text."""
    rows = read_csv(record_file)
    markers = {marker["text"]: int(marker["row"] or 0)
               for marker in read_csv(record_file.with_name(record_file.stem + "_events.csv"))}
    parts = {name: rows[markers[f"{name} on"]:markers[f"{name} off"]] for name in TEXTS}
    return {name: (len(part), sum(row["Valid"] == "1" for row in part)) for name, part in parts.items()}


def read_csv(file: Path) -> List[Dict[str, str]]:
    with open(file, newline="", encoding="utf-8") as lines:
        return list(csv.DictReader(lines))


if __name__ == "__main__":
    main()
