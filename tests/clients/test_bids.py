"""The export to BIDS. The files are read back without the package, and checked against the rules for eye tracking."""
import csv
import gzip
import json
import math
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from support import PACKAGE, ROOT

import ocela

EYES = {"recording-eye1": "left", "recording-eye2": "right", "recording-eye3": "cyclopean"}
LABEL = "[0-9A-Za-z]+"
NAME = re.compile(rf"sub-(?P<sub>{LABEL})(_ses-(?P<ses>{LABEL}))?_task-{LABEL}(_acq-{LABEL})?(_run-[0-9]+)?"
                  r"(_(?P<recording>recording-eye[1-3]))?_(?P<suffix>physio|physioevents|events)\.(tsv\.gz|tsv|json)")
EYE_HEADER = ["X", "Y", "X_px", "Y_px", "Pupil_mm", "PupilX_px", "PupilY_px"]
HEADER = ["Timestamp", "Time", "Valid", "X", "Y", "X_px", "Y_px", "Distance_cm", *("L_" + name for name in EYE_HEADER),
          *("R_" + name for name in EYE_HEADER), "Focus"]
SCREEN = {"x": 0, "y": 0, "width": 1920, "height": 1080}
DISK_FULL = OSError(28, "No space left on device")
SETUP = ocela.BidsSetup(screen_mm=(531, 299), distance_mm=620, rate_hz=100, model="M1", manufacturer="Maker",
                        serial_number="7")


def row(left=(50, 25, 3.5), right=(50, 25, 3.5), combined=(50, 25), valid=1, time=1700000000000, distance=0,
        size=(1920, 1080)):
    """Returns the cells of one sample. `size` is the size of the calibrated area in pixels."""
    def gaze(x, y):
        return [x, y, *(int(share * pixels / 100) if math.isfinite(share) else 0 for share, pixels in zip((x, y), size))]
    return [time, 0, valid, *gaze(*combined), distance, *gaze(*left[:2]), left[2], 0, 0, *gaze(*right[:2]), right[2], 0, 0,
            0]


def jitter(i, sample=row()):
    """Returns the sample with another pupil, because a tracker never repeats its values."""
    return [*sample[:12], 3 + i / 1000, *sample[13:19], 4 + i / 1000, *sample[20:]]


def write_csv(path, header, rows):
    with open(path, "w", newline="", encoding="utf-8") as file:
        csv.writer(file).writerows([header, *rows])


def write_record(path, rows, *, tracker="eyetech", screen=SCREEN, area=SCREEN, flags=None, markers=None, described=True):
    """Writes a record file and the files beside it, with a sample every 10 ms."""
    write_csv(path, HEADER, rows)
    if described:
        path.with_suffix(".json").write_text(json.dumps({
            "format": 1, "tracker": tracker, "programVersion": "1.3.0", "screenPx": screen, "calibratedAreaPx": area,
            "nominalRateHz": None, "sampleCount": len(rows)}))
        flags = flags or [(1, 1)] * len(rows)
        write_csv(path.with_name(path.stem + "_samples.csv"), ["Number", "Arrival_ms", "L_Valid", "R_Valid"],
                  ([i + 1, f"{1700000000000.25 + 10 * i:.3f}", *eyes] for i, eyes in enumerate(flags)))
    if markers:
        write_csv(path.with_name(path.stem + "_events.csv"), ["onset", "duration", "text", "number", "row"],
                  ([onset, 0, text, "", ""] for onset, text in markers))
    return path


class Dataset:
    """Reads a dataset, and checks that its files have the names and the contents that BIDS requires."""

    def __init__(self, test, root):
        self.test, self.root = test, root
        self.tables, self.sidecars = {}, {}
        for path in (path for path in root.glob("sub-*/**/*") if path.is_file()):
            self._read(path)
        test.assertEqual(self.tables.keys(), self.sidecars.keys(), "each table has a sidecar")
        for name, sidecar in self.sidecars.items():
            match = NAME.fullmatch(name + ".json")
            getattr(self, "_check_" + match["suffix"])(name, sidecar, self.tables[name], match["recording"])
        description = json.loads((root / "dataset_description.json").read_text())
        test.assertTrue(description["Name"])
        test.assertGreaterEqual([int(part) for part in description["BIDSVersion"].split(".")], [1, 11, 0])
        participants = [line.split("\t")[0] for line in (root / "participants.tsv").read_text().splitlines()]
        test.assertCountEqual(participants, ["participant_id", *(path.name for path in root.glob("sub-*"))])

    def _read(self, path):
        match = NAME.fullmatch(path.name)
        self.test.assertTrue(match, f"{path} has no name of BIDS")
        session = [f"ses-{match['ses']}"] if match["ses"] else []
        self.test.assertEqual(path.relative_to(self.root).parts[:-1], ("sub-" + match["sub"], *session, "beh"))
        if path.suffix == ".json":
            self.sidecars[path.stem] = json.loads(path.read_text(encoding="utf-8"))
            return
        content = path.read_bytes()
        if path.suffix == ".gz":
            self.test.assertEqual(content[4:8], bytes(4), "the compressed file has no time")
            content = gzip.decompress(content)
        text = content.decode()
        self.test.assertTrue(text.endswith("\n") or not text)
        self.tables[path.name.split(".")[0]] = list(csv.reader(text.splitlines(), delimiter="\t"))

    def _check_columns(self, sidecar, table, columns):
        self.test.assertEqual(sidecar["Columns"], columns)
        for column in columns:
            self.test.assertTrue(sidecar[column]["Description"])
        self.test.assertEqual({len(cells) for cells in table}, {len(columns)})

    def _check_numbers(self, cells):
        self.test.assertTrue(all(cell == "n/a" or math.isfinite(float(cell)) for cell in cells), cells)

    def _check_physio(self, _, sidecar, table, recording):
        columns = ["timestamp", "x_coordinate", "y_coordinate", "pupil_size"]
        self._check_columns(sidecar, table, columns)
        self.test.assertEqual([sidecar[column]["Units"] for column in columns], ["s", "pixel", "pixel", "mm"])
        self.test.assertEqual((sidecar["PhysioType"], sidecar["RecordedEye"], sidecar["SampleCoordinateSystem"]),
                              ("eyetrack", EYES[recording], "gaze-on-screen"))
        self.test.assertGreater(sidecar["SamplingFrequency"], 0)
        self.test.assertEqual(sidecar["StartTime"], 0)
        times = [float(cells[0]) for cells in table]
        self.test.assertEqual((times[0], times), (0, sorted(times)))
        for cells in table:
            self._check_numbers(cells)

    def _check_physioevents(self, name, sidecar, table, _):
        self._check_columns(sidecar, table, ["onset", "duration", "message"])
        physio = name.replace("_physioevents", "_physio")
        self.test.assertIn(sidecar["OnsetSource"], self.sidecars[physio]["Columns"])
        self.test.assertEqual(sidecar["onset"]["Units"], self.sidecars[physio]["timestamp"]["Units"])
        for cells in table:
            self._check_numbers(cells[:2])

    def _check_events(self, _, sidecar, table, __):
        self.test.assertEqual(table[0][:2], ["onset", "duration"])
        screen = sidecar["StimulusPresentation"]
        self.test.assertEqual(screen["ScreenOrigin"], ["top", "left"])
        self.test.assertTrue(all(type(length) is int for length in screen["ScreenResolution"]))
        size = screen["ScreenSize"]
        for length in (screen["ScreenDistance"], *(size if isinstance(size, list) else [size])):
            self.test.assertTrue(length == "n/a" or 0 < length < 10, "metres")

    def eye(self, number, stem="sub-01_task-reading"):
        """Returns x, y and the pupil of each sample, and the sidecar."""
        name = f"{stem}_recording-eye{number}_physio"
        return [cells[1:] for cells in self.tables[name]], self.sidecars[name]


class TestBids(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.record = self.folder / "a.csv"
        self.output = self.folder / "new" / "dataset"

    def export(self, *records, subject="01", task="reading", **options):
        return ocela.export_bids(records or [self.record], self.output, subject=subject, task=task, **options)

    def read(self):
        return Dataset(self, self.output)

    def contents(self):
        return {path: path.read_bytes() for path in self.output.rglob("*") if path.is_file()}

    def refused(self, pattern, *records, **options):
        before = self.contents(), self.output.parent.exists()
        with self.assertRaisesRegex(ocela.NotExported, pattern):
            self.export(*records, **options)
        self.assertEqual((self.contents(), self.output.parent.exists()), before)

    def test_families(self):
        # The area of the eyetech record is on a second screen. The gazepoint record tracks a screen with 2560 x 1440
        # pixels, of which the description knows nothing. Its right eye is crossed.
        second, area = {**SCREEN, "x": 1920}, {"x": 2020, "y": 50, "width": 1600, "height": 900}
        samples = {
            "eyetech": [jitter(i, row((50, 25, 3), (52, 27, 3), (51, 26), distance=61.2, size=(1600, 900)))
                        for i in range(3)],
            "gazepoint": [jitter(i, row((70.1 + i / 7, 20, 3), (21, 69.9, 3), (70 + i / 7, 20.5 + i / 9), size=(2560, 1440)))
                          for i in range(60)],
            "aSee Pro": [jitter(i, row((50, 25, 3), (-2, 102, 3), (51, 26), time=0)) for i in range(3)],
        }
        # the fields of the first sample, by hand
        expected = {
            "eyetech": (["900.00", "275.00", "3.000"], ["932.00", "293.00", "4.000"], ["916.00", "284.00", "n/a"]),
            "gazepoint": (["1794.56", "288.00", "3.000"], ["1789.44", "302.40", "4.000"], ["1792.00", "295.20", "n/a"]),
            "aSee Pro": (["960.00", "270.00", "3.000"], ["-38.40", "1101.60", "4.000"], ["979.20", "280.80", "n/a"]),
        }
        device = {"eyetech": ("EyeTech", None), "gazepoint": ("GazePoint", None), "aSee Pro": (None, "aSee Pro")}
        for number, (tracker, rows) in enumerate(samples.items()):
            with self.subTest(tracker):
                subject = f"{number:02d}"
                write_record(self.record, rows, tracker=tracker, screen=second if tracker == "eyetech" else SCREEN,
                             area={"eyetech": area, "gazepoint": None, "aSee Pro": SCREEN}[tracker])
                notes = "\n".join(self.export(subject=subject).notes)
                dataset, stem = self.read(), f"sub-{subject}_task-reading"
                for eye, values in enumerate(expected[tracker], 1):
                    table, sidecar = dataset.eye(eye, stem)
                    self.assertEqual((len(table), table[0]), (len(rows), values))
                    self.assertEqual((sidecar.get("Manufacturer"), sidecar.get("ManufacturersModelName")), device[tracker])
                    self.assertEqual(sidecar["SamplingFrequency"], 100)
                    self.assertEqual(dataset.tables[f"{stem}_recording-eye{eye}_physio"][2][0], "0.020000")
                screen = dataset.sidecars[stem + "_events"]["StimulusPresentation"]["ScreenResolution"]
                self.assertEqual(screen, [2560, 1440] if tracker == "gazepoint" else [1920, 1080])
                self.assertEqual("612 mm" in notes, tracker == "eyetech", notes)

    def test_lost_eyes(self):
        seen, gone = (50, 25, 3.5), (0, 0, 0)
        point, lost = ["960.00", "270.00", "3.500"], ["n/a", "n/a", "n/a"]
        # name, left eyes, their flags, expected. Without flags there is no samples file.
        cases = (
            ("the flag wins over values that stay", [seen] * 5, [1, 1, 0, 0, 1], [point, point, lost, lost, point]),
            ("values repeat more than twice", [seen] * 5, None, [point, point, point, lost, lost]),
            ("zeros", [seen, gone, seen], None, [point, lost, point]),
            ("a pupil without gaze", [(0, 0, 3.5)], [1], [["n/a", "n/a", "3.500"]]),
            ("gaze without a pupil", [(50, 0, 0)], [1], [["960.00", "0.00", "n/a"]]),
            ("not a number", [(math.nan, 25, math.inf)], [1], [lost]),
        )
        for number, (name, eyes, flags, expected) in enumerate(cases):
            with self.subTest(name):
                record = write_record(self.folder / f"{number}.csv", [row(eye, time=10 * i) for i, eye in enumerate(eyes)],
                                      flags=flags and [(flag, 1) for flag in flags], described=flags is not None)
                self.export(record, subject=str(number), setup=ocela.BidsSetup(screen_px=(1920, 1080), rate_hz=100))
                self.assertEqual(self.read().eye(1, f"sub-{number}_task-reading")[0], expected)

    def test_invalid_combined_gaze(self):
        write_record(self.record, [row(), row(valid=0)])
        self.export()
        dataset = self.read()
        self.assertEqual(dataset.eye(3)[0], [["960.00", "270.00", "n/a"], ["n/a"] * 3])
        self.assertEqual(dataset.eye(1)[0], [["960.00", "270.00", "3.500"]] * 2)

    def test_crossed_eye(self):
        cases = json.loads((ROOT / "tests/data/crossed_eye.json").read_text())
        for number, case in enumerate(case for case in cases if case["samples"]):
            with self.subTest(case["name"]):
                samples = [[math.nan if value is None else value for value in values]
                           for count, *values in case["samples"] for _ in range(count)]
                write_record(self.record, [row((50, 25, 3), (r_x, r_y, 3), (x, y)) for x, y, r_x, r_y in samples],
                             tracker=None)
                self.export(subject=str(number))
                r_x, r_y = samples[0][3:1:-1] if case["crossed"] else samples[0][2:]
                found = self.read().eye(2, f"sub-{number}_task-reading")[0][0][:2]
                self.assertEqual(found, [f"{r_x * 19.2:.2f}", f"{r_y * 10.8:.2f}"])

    def test_crossed_eye_of_a_known_tracker(self):
        central, crossed = [(50, 50, 52, 48)] * 40, [(70, 20, 20, 70)] * 40
        # tracker, samples from which the rule would decide wrongly, expected order of the axes
        cases = (("gazepoint", central, -1), ("gazepoint", crossed[:29], -1), ("eyetech", crossed, 1),
                 ("aSee Pro", crossed, 1))
        for number, (tracker, samples, order) in enumerate(cases):
            with self.subTest(tracker, number=number):
                write_record(self.record, [row((50, 25, 3), (r_x, r_y, 3), (x, y)) for x, y, r_x, r_y in samples],
                             tracker=tracker)
                self.export(subject=str(number))
                x, y = samples[0][2:][::order]
                found = self.read().eye(2, f"sub-{number}_task-reading")[0][0][:2]
                self.assertEqual(found, [f"{x * 19.2:.2f}", f"{y * 10.8:.2f}"])

    def test_markers(self):
        texts = {'Stimulus "A", left': 'Stimulus "A", left', "two\r\nlines\tand a tab": "two lines and a tab",
                 "é 目": "é 目", "\n": "n/a"}
        onsets = ("-0.500000", "0", "1.500250", "3600.000001")
        write_record(self.record, [jitter(i) for i in range(3)], markers=list(zip(onsets, texts))[::-1])
        self.export()
        dataset, stem = self.read(), "sub-01_task-reading"
        expected = [[onset, "0", text] for onset, text in
                    zip(("-0.500000", "0.000000", "1.500250", "3600.000001"), texts.values())]
        self.assertEqual(dataset.tables[stem + "_events"], [["onset", "duration", "value"], *expected])
        for recording in EYES:
            self.assertEqual(dataset.tables[f"{stem}_{recording}_physioevents"], expected)

    def test_names(self):
        records = [write_record(self.folder / name, [row(valid=1), row(valid=number)]) for number, name in
                   enumerate(("z.csv", "b.csv"))]
        # options, stems of the exported records; the folder also has the files beside them
        cases = (
            ({"subject": "01"}, ["sub-01_task-reading_run-1", "sub-01_task-reading_run-2"]),
            ({"subject": "01", "run": "09"}, ["sub-01_task-reading_run-09", "sub-01_task-reading_run-10"]),
            ({"subject": "01", "session": "2", "acquisition": "fast", "run": "1"},
             ["sub-01_ses-2_task-reading_acq-fast_run-1", "sub-01_ses-2_task-reading_acq-fast_run-2"]),
        )
        everything = records + [path for path in sorted(self.folder.glob("*.*")) if path not in records]
        for options, stems in cases:
            with self.subTest(options):
                exported = self.export(*everything, setup=SETUP, **options)
                self.assertEqual({path.name.partition("_events")[0] for path in exported.files if "_events" in path.name},
                                 set(stems))
                dataset = self.read()
                self.assertEqual([dataset.eye(3, stem)[0][1][0] for stem in stems], ["n/a", "960.00"])
        self.assertEqual(dataset.tables["sub-01_task-reading_run-1_events"], [["onset", "duration", "value"]])
        self.assertNotIn("sub-01_task-reading_run-1_recording-eye1_physioevents", dataset.tables)

    def test_existing_files_stay(self):
        write_record(self.record, [row(), row()], markers=[("0", "a")])
        self.output.mkdir(parents=True)
        description = b'{"Name": "Mine", "BIDSVersion": "1.8.0"}'
        (self.output / "dataset_description.json").write_bytes(description)
        (self.output / "participants.tsv").write_bytes(b"age\tparticipant_id\r\n30\tsub-01\r\n41\tsub-03")
        files = [path for path in self.export().files if self.output / "sub-01" in path.parents]
        self.assertEqual(len(files), 14)
        notes = "\n".join(self.export(subject="02").notes)
        self.assertIn("says 1.8.0", notes)
        self.assertEqual((self.output / "dataset_description.json").read_bytes(), description)
        self.assertEqual((self.output / "participants.tsv").read_bytes(),
                         b"age\tparticipant_id\r\n30\tsub-01\r\n41\tsub-03\r\nn/a\tsub-02\r\n")
        self.refused("exists already")
        for kept in files:
            with self.subTest(kept.name):
                for path in files:
                    path.unlink(missing_ok=True)
                kept.write_bytes(b"mine")
                self.refused(f"{kept.name} exists already")
                self.assertEqual(kept.read_bytes(), b"mine")

    def test_failures_leave_nothing_behind(self):
        write_record(self.record, [row(), row()], markers=[("0", "a")])
        for error in (DISK_FULL, KeyboardInterrupt()):
            for renamed in (0, 1, 15):
                with self.subTest(error, renamed=renamed):
                    effects = [mock.DEFAULT] * renamed + [error]
                    with mock.patch("os.replace", side_effect=effects, wraps=os.replace):
                        with self.assertRaises((ocela.NotExported, KeyboardInterrupt)):
                            self.export()
                    self.assertFalse(self.output.parent.exists())
        self.export()

        def fail_to_append(path, mode):
            file = open(path, mode)
            if mode == "ab":
                with file:
                    file.write(b"sub")
                raise DISK_FULL
            return file

        with mock.patch("ocela.new_files.open", fail_to_append, create=True):
            self.refused("No space left", subject="02")

    def test_file_of_another_program(self):
        # It appears while the files get their names.
        write_record(self.record, [row(), row()])
        theirs = self.output / "participants.tsv"
        rename = os.replace
        with mock.patch("os.replace", lambda *paths: (rename(*paths), theirs.write_bytes(b"theirs"))):
            with self.assertRaisesRegex(ocela.NotExported, "participants.tsv: File exists"):
                self.export()
        self.assertEqual(self.contents(), {theirs: b"theirs"})

    def test_bad_input(self):
        good = [jitter(i) for i in range(3)]
        record, samples, description, events = (self.folder / ("a" + ending)
                                                for ending in (".csv", "_samples.csv", ".json", "_events.csv"))
        text = {}

        def cut(path, count):
            path.write_bytes(text[path][:-count])

        def describe(key, value):
            description.write_text(json.dumps({**json.loads(text[description]), key: value}))

        # name, what happens to the files, the message
        cases = (
            ("missing", record.unlink, "a.csv does not exist"),
            ("a folder", lambda: (record.unlink(), record.mkdir()), "a.csv is not a file"),
            ("empty", lambda: record.write_bytes(b""), "a.csv is empty"),
            ("a header only", lambda: write_csv(record, HEADER, []), "a.csv has no samples"),
            ("a samples file", lambda: record.write_bytes(text[samples]), "a.csv is not a record file: .*Number"),
            ("binary", lambda: record.write_bytes(b"\x89PNG\r\n\x80"), "a.csv is not a record file: .*not UTF-8"),
            ("cut off in a line", lambda: cut(record, 30), "a.csv is cut off in line 4: 1?[0-9] columns instead of 23"),
            ("cut off between lines", lambda: write_csv(record, HEADER, good[:2]), "has 2 samples, but a.json says 3"),
            ("cut off, not described", lambda: (description.unlink(), write_csv(record, HEADER, good[:2])),
             "2 samples, but a_samples.csv has 3"),
            ("text in a cell", lambda: write_csv(record, HEADER, [["x", *good[0][1:]], *good[1:]]), "a.csv, line 2: .*'x'"),
            ("a cut samples file", lambda: cut(samples, 6), "a_samples.csv is cut off in line 4"),
            ("times that go back", lambda: samples.write_bytes(text[samples].replace(b"020.250", b"000.250")),
             "a_samples.csv: .* sample 3"),
            ("another description", lambda: description.write_text('{"format": 2}'), "a.json is not a description"),
            ("a broken description", lambda: cut(description, 4), "a.json is not a description"),
            ("a broken events file", lambda: events.write_text("onset,duration,text,number,row\r\n0,0,\"a"), "a_events.csv"),
            ("a nested description", lambda: description.write_text("[" * 100_000), "a.json is not a description"),
            ("a rate that is a text", lambda: describe("nominalRateHz", "60"), "a.json: nominalRateHz is not"),
            ("an infinite screen", lambda: describe("screenPx", {"x": 0, "y": 0, "width": math.inf, "height": 1}),
             "a.json: screenPx is not an area"),
            ("an infinite onset", lambda: events.write_text("onset,duration,text,number,row\r\ninf,0,a,,\r\n"),
             "a_events.csv.* line 2: inf,0 is not a time"),
            ("no times", lambda: (samples.unlink(), write_csv(record, HEADER, [[0, *cells[1:]] for cells in good])),
             "a.csv: the sample rate is not known.*--rate-hz.*a_samples.csv"),
            ("no screen", lambda: (description.unlink(), write_csv(record, HEADER, [[*cells[:5], 0, 0, *cells[7:]]
                                                                                    for cells in good])), "--screen-px"),
        )
        for name, change, message in cases:
            with self.subTest(name):
                if record.is_dir():
                    record.rmdir()
                write_record(record, good)
                events.unlink(missing_ok=True)
                text = {path: path.read_bytes() for path in (record, samples, description)}
                change()
                self.refused(message, record)
        write_record(record, good)
        for options, message in (({"subject": "sub-01"}, "'sub-01'.* use 01"), ({"task": ""}, "''"),
                                 ({"session": "é"}, "'é'"), ({"run": "a"}, "run 'a'")):
            with self.subTest(options):
                self.refused(message, **options)
        self.refused("given twice", record, record)

    def test_records_of_earlier_versions(self):
        # Neither a description nor a samples file. The clock is set back by 5 s before the third sample.
        times = [1700000000000 + offset for offset in (0, 10, -4990, -4980)]
        rows = [jitter(i, row(combined=(40.3 + 15 * i, 30.2 + 17 * i), time=time)) for i, time in enumerate(times)]
        notes = "\n".join(self.export(write_record(self.record, rows, described=False)).notes)
        for note in ("there is no a_samples.csv", "system clock was set", "calibrated area"):
            self.assertIn(note, notes)
        dataset = self.read()
        self.assertEqual([cells[0] for cells in dataset.tables["sub-01_task-reading_recording-eye1_physio"]],
                         ["0.000000", "0.010000", "0.010000", "0.020000"])
        self.assertEqual(dataset.eye(3)[0][0][0], f"{40.3 * 19.2:.2f}")
        # A tracker without times, and the rate that the user knows.
        write_record(self.record, [[0, *cells[1:]] for cells in rows], described=False)
        self.export(subject="02", setup=ocela.BidsSetup(rate_hz=50))
        dataset = self.read()
        self.assertEqual(dataset.tables["sub-02_task-reading_recording-eye1_physio"][3][0], "0.060000")
        self.assertEqual(dataset.eye(1, "sub-02_task-reading")[1]["SamplingFrequency"], 50)

    def test_measured_rate(self):
        # An interruption of 5 s, and a missing sample.
        times = [0, 10, 20, 30, 50, 60, 70, 5070, 5080, 5090]
        write_record(self.record, [row(time=time) for time in times], described=False)
        self.export(setup=ocela.BidsSetup(screen_px=(1920, 1080)))
        self.assertEqual(self.read().eye(1)[1]["SamplingFrequency"], 88.889)

    def test_setup(self):
        write_record(self.record, [row(), row()])
        unknown = ("ManufacturersModelName", "DeviceSerialNumber", "ScreenDistance", "ScreenSize", "SamplingFrequency")
        for setup in (ocela.BidsSetup(), SETUP):
            notes = "\n".join(self.export(subject="1" if setup is SETUP else "0", setup=setup).notes)
            self.assertEqual([name for name in unknown if name in notes], [] if setup is SETUP else list(unknown))
        dataset = self.read()
        screens = [dataset.sidecars[f"sub-{i}_task-reading_events"]["StimulusPresentation"] for i in (0, 1)]
        self.assertEqual([(screen["ScreenSize"], screen["ScreenDistance"]) for screen in screens],
                         [("n/a", "n/a"), ([0.531, 0.299], 0.62)])
        sidecar = dataset.eye(1, "sub-1_task-reading")[1]
        self.assertEqual([sidecar[key] for key in ("Manufacturer", "ManufacturersModelName", "DeviceSerialNumber",
                                                   "SoftwareVersions")], ["Maker", "M1", "7", "Ocela 1.3.0"])

    def test_command_of_the_documentation(self):
        readme = (PACKAGE / "README.md").read_text(encoding="utf-8").replace("\\\n", "")
        command = shlex.split(re.search("^python -m ocela export-bids .*$", readme, re.M)[0])
        for name in (argument for argument in command if argument.endswith(".csv")):
            write_record(self.folder / name, [row(), row()], markers=[("0", "a")])
        results = []
        for _ in range(2):
            run = subprocess.run([sys.executable, *command[1:]], cwd=self.folder, capture_output=True, text=True,
                                 check=False)
            results.append(run.returncode)
            self.output = self.folder / command[command.index("--output") + 1]
            self.read()
            self.assertEqual(run.returncode == 0, run.stderr.startswith("Not known:\n- "), run.stderr)
            files = self.contents()
        self.assertEqual(results, [0, 1])
        self.assertIn("Nothing was exported: ", run.stderr)
        self.assertIn("exists already", run.stderr)
        self.output.rename(self.folder / "first")
        subprocess.run([sys.executable, *command[1:]], cwd=self.folder, capture_output=True, check=True)
        self.assertEqual(self.contents(), files, "the same records give the same files")


if __name__ == "__main__":
    unittest.main()
