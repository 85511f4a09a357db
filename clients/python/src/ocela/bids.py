"""Exports record files to BIDS, the Brain Imaging Data Structure, with the rules of version 1.11 for eye tracking."""
from __future__ import annotations

import json
import os
import re
from array import array
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Dict, Iterable, List, Mapping, Optional, Sequence, Tuple, Union

from . import bids_content
from ._version import __version__
from .bids_content import Screen
from .errors import NotExported
from .new_files import write_new_files
from .record_file import Rect, Record, companion, read_record

BIDS_VERSION = "1.11.0"
WHOLE_SCREEN = Rect(0, 0, 1, 1)

# Sidecar keys that a tracker's name implies.
DEVICES: Mapping[Optional[str], Dict[str, str]] = {
    "eyetech": {"Manufacturer": "EyeTech"},
    "gazepoint": {"Manufacturer": "GazePoint"},
    "aSee Pro": {"ManufacturersModelName": "aSee Pro"},
}

# What the combined gaze is, if it is not both eyes combined.
COMBINED_GAZE: Mapping[Optional[str], str] = {
    "gazepoint": "the fixation estimate of the tracker, which is missing during saccades and blinks"}

PathLike = Union[str, "os.PathLike[str]"]


@dataclass(frozen=True)
class BidsSetup:
    """Facts that a record does not contain, or that replace those of the record. None if unknown."""

    screen_px: Optional[Tuple[int, int]] = None
    screen_mm: Optional[Tuple[float, float]] = None
    distance_mm: Optional[float] = None  # from the eyes to the screen
    rate_hz: Optional[float] = None  # nominal sample rate of the tracker
    manufacturer: Optional[str] = None
    model: Optional[str] = None
    serial_number: Optional[str] = None


@dataclass(frozen=True)
class BidsExport:
    """The result of an export."""

    files: Tuple[Path, ...]
    notes: Tuple[str, ...]  # what could not be known, and how to add it


def export_bids(records: Sequence[PathLike], output: PathLike, *, subject: str, task: str, session: Optional[str] = None,
                acquisition: Optional[str] = None, run: Optional[str] = None, setup: BidsSetup = BidsSetup()) -> BidsExport:
    """Exports record files to a new or existing BIDS dataset in the folder `output`.

    Several records become runs in their order. `run` is the number of the first one, by default 1, or no run if there is
    one record. Never replaces a file. Raises NotExported, and writes nothing, if a record cannot be read, or if a file
    exists."""
    paths = _records_among([Path(os.path.abspath(record)).resolve() for record in records])
    root = Path(os.path.abspath(output))
    stem = _stem(root, {"sub": subject, "ses": session, "task": task, "acq": acquisition})
    files: Dict[Path, bytes] = {}
    notes: List[str] = []
    for path, suffix in zip(paths, _run_suffixes(run, len(paths))):
        _check_new([Path(f"{stem}{suffix}_events.json")])
        record_files, record_notes = _export(read_record(path), setup)
        files.update({Path(f"{stem}{suffix}_{name}"): content for name, content in record_files.items()})
        notes += [f"{path.name}: {note}" if len(paths) > 1 else note for note in record_notes]
    notes += _unknown_in(setup)
    addition = _add_dataset_files(root, f"sub-{subject}", files, notes)
    _check_new(files)
    try:
        write_new_files(files, addition)
    except OSError as error:
        raise NotExported(f"{error.filename or root}: {error.strerror or error}.") from error
    return BidsExport(tuple(files), tuple(dict.fromkeys(notes)))


def _records_among(paths: List[Path]) -> List[Path]:
    """Returns the record files. A pattern of the shell also finds the files beside them, which are skipped."""
    beside = {companion(path, ending) for path in paths for ending in (".json", "_samples.csv", "_events.csv")}
    records = [path for path in paths if path not in beside]
    if not records:
        raise NotExported("No record file is given.")
    for path in records:
        if records.count(path) > 1:
            raise NotExported(f"{path} is given twice.")
        if not path.is_file():
            raise NotExported(f"{path} is not a file." if path.exists() else f"{path} does not exist.")
    return records


def _stem(root: Path, labels: Mapping[str, Optional[str]]) -> Path:
    """Returns the path that all files of the export have in common, before the run."""
    for name, label in labels.items():
        if label is not None and not re.fullmatch("[0-9A-Za-z]+", label):
            raise NotExported(f"The label {label!r} of {name!r} has other characters than letters and digits, or none. "
                              f"For {name}-01, use 01.")
    entities = [f"{name}-{label}" for name, label in labels.items() if label is not None]
    folders = [entity for entity in entities if entity.startswith(("sub-", "ses-"))]
    return root.joinpath(*folders, "beh", "_".join(entities))


def _run_suffixes(first: Optional[str], count: int) -> List[str]:
    """Returns the entity of each run. Leading zeros of the first one are kept."""
    if first is None and count == 1:
        return [""]
    first = "1" if first is None else first
    if not re.fullmatch("[0-9]+", first):
        raise NotExported(f"The run {first!r} is not a number.")
    return [f"_run-{int(first) + i:0{len(first)}d}" for i in range(count)]


def _check_new(paths: Iterable[Path]) -> None:
    for path in paths:
        if os.path.lexists(path):
            raise NotExported(f"{path} exists already, and no file is replaced. Use another run, session or folder.")


def _export(record: Record, setup: BidsSetup) -> Tuple[Dict[str, bytes], List[str]]:
    """Returns the files by the end of their names, and notes."""
    notes = list(record.notes)
    screen = _screen_of(record, setup, notes)
    rate_hz = _rate_of(record, setup, notes)
    device = _device_of(record, setup, notes)
    files = {"events.tsv": bids_content.events_tsv(record.markers),
             "events.json": bids_content.events_json(screen, setup.screen_mm, setup.distance_mm)}
    combined = COMBINED_GAZE.get(record.tracker, "both eyes combined")
    for number, (recorded_eye, source, gaze) in enumerate((("left", "the left eye", record.left),
                                                           ("right", "the right eye", record.right),
                                                           ("cyclopean", combined, record.combined)), 1):
        recording = f"recording-eye{number}"
        files[f"{recording}_physio.tsv.gz"] = bids_content.physio_tsv(record.times_s, gaze, screen)
        files[f"{recording}_physio.json"] = bids_content.physio_json(recorded_eye, source, rate_hz, device)
        if record.markers:
            files[f"{recording}_physioevents.tsv.gz"] = bids_content.physioevents_tsv(record.markers)
            files[f"{recording}_physioevents.json"] = bids_content.physioevents_json()
        if gaze.is_missing():
            notes.append(f"gaze of {source}: it was never detected")
    if setup.distance_mm is None:
        measured = f". The eyes were {record.distance_mm:.0f} mm from the tracker" if record.distance_mm else ""
        notes.append(f"ScreenDistance: give --distance-mm{measured}")
    return files, notes


def _screen_of(record: Record, setup: BidsSetup, notes: List[str]) -> Screen:
    """Finds the screen. GazePoint's percent and pixels are of the screen that its server tracks."""
    described, area = record.area("screenPx"), record.area("calibratedAreaPx")
    described_px = (round(described.width), round(described.height)) if described else None
    tracks_screen = record.tracker == "gazepoint"
    first, second = (record.size_px, described_px) if tracks_screen else (described_px, record.size_px)
    resolution = setup.screen_px or first or second
    if not resolution:
        raise NotExported(f"{record.path}: the resolution of the screen is not known, because there is no "
                          f"{companion(record.path, '.json').name}. Give --screen-px.")
    if tracks_screen:
        if not setup.screen_px and not record.size_px:
            notes.append("tracked screen: it is taken as the primary screen. To change this, give --screen-px")
        return Screen(resolution, WHOLE_SCREEN)
    if described and area:
        return Screen(resolution, Rect((area.x - described.x) / described.width, (area.y - described.y) / described.height,
                                       area.width / described.width, area.height / described.height))
    notes.append("calibrated area: it is taken as the whole screen")
    return Screen(resolution, WHOLE_SCREEN)


def _rate_of(record: Record, setup: BidsSetup, notes: List[str]) -> float:
    """Returns the sample rate. If the samples have no times, sets them from the rate."""
    measured_hz = record.measured_rate_hz()
    nominal_hz = setup.rate_hz or record.nominal_rate_hz()
    if measured_hz is None:
        if not nominal_hz:
            raise NotExported(f"{record.path}: the sample rate is not known, because the samples have no times. Give "
                              f"--rate-hz, or put {companion(record.path, '_samples.csv').name} beside the record.")
        record.times_s = array("d", (i / nominal_hz for i in range(len(record.times_s))))
        notes.append("times of samples: they are computed from the sample rate")
    if nominal_hz:
        return float(nominal_hz)
    assert measured_hz
    notes.append(f"nominal sample rate: SamplingFrequency is the measured rate, {measured_hz:.3f} Hz. Give --rate-hz")
    return round(measured_hz, 3)


def _device_of(record: Record, setup: BidsSetup, notes: List[str]) -> Dict[str, Any]:
    """Returns the sidecar keys that describe the tracker."""
    options = {"Manufacturer": ("--manufacturer", setup.manufacturer), "ManufacturersModelName": ("--model", setup.model),
               "DeviceSerialNumber": ("--serial-number", setup.serial_number)}
    device: Dict[str, Any] = dict(DEVICES.get(record.tracker) or {})
    for key, (option, value) in options.items():
        if value:
            device[key] = value
        elif key not in device:
            notes.append(f"{key}: give {option}")
    version = record.description.get("programVersion")
    if isinstance(version, str):
        device["SoftwareVersions"] = f"Ocela {version}"
    return device


def _unknown_in(setup: BidsSetup) -> List[str]:
    notes = ["program that showed the stimuli: add SoftwareName and SoftwareVersion to StimulusPresentation in events.json"]
    return notes if setup.screen_mm else ["ScreenSize: give --screen-mm", *notes]


def _add_dataset_files(root: Path, participant: str, files: Dict[Path, bytes],
                       notes: List[str]) -> Optional[Tuple[Path, bytes]]:
    """Adds the files of the dataset that are missing. Returns the line to append to an existing list of participants."""
    description = root / "dataset_description.json"
    if description.exists():
        _check_version(description, notes)
    else:
        files[description] = bids_content.json_file({
            "Name": root.name or "Eye tracking", "BIDSVersion": BIDS_VERSION, "DatasetType": "raw",
            "GeneratedBy": [{"Name": "Ocela", "Version": __version__}]})
        notes.append("name, authors and license of the study: add them to dataset_description.json. Describe the study in "
                     "README")
    participants = root / "participants.tsv"
    if participants.exists():
        return _new_participant(participants, participant, notes)
    files[participants] = f"participant_id\n{participant}\n".encode()
    notes.append("age, sex and handedness of the participant: add columns to participants.tsv")
    return None


def _check_version(description: Path, notes: List[str]) -> None:
    try:
        version = json.loads(description.read_text(encoding="utf-8-sig"))["BIDSVersion"]
        is_older = tuple(map(int, version.split(".")[:2])) < tuple(map(int, BIDS_VERSION.split(".")[:2]))
    except (OSError, ValueError, LookupError, TypeError, AttributeError, RecursionError):
        raise NotExported(f"{description} has no BIDSVersion.") from None
    if is_older:
        notes.append(f"BIDSVersion: dataset_description.json says {version}. Eye tracking needs {BIDS_VERSION} or later")


def _new_participant(participants: Path, participant: str, notes: List[str]) -> Optional[Tuple[Path, bytes]]:
    try:
        text = participants.read_bytes().decode("utf-8-sig")
    except (OSError, UnicodeDecodeError):
        raise NotExported(f"{participants} cannot be read as UTF-8 text.") from None
    header, *rows = [line.split("\t") for line in text.splitlines()] or [[]]
    if "participant_id" not in header:
        raise NotExported(f"{participants} has no column participant_id.")
    column = header.index("participant_id")
    if any(row[column:column + 1] == [participant] for row in rows):
        return None
    end = "\r\n" if "\r\n" in text else "\n"
    cells = [participant if i == column else bids_content.NOT_AVAILABLE for i in range(len(header))]
    if len(header) > 1:
        notes.append(f"other columns of {participant} in participants.tsv: they are n/a")
    return participants, ("" if text.endswith("\n") else end).encode() + ("\t".join(cells) + end).encode()
