"""Runs the scripts of docs/lab.md. What they calculate from a recording is compared with own calculations."""
import csv
import gzip
import math
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from statistics import fmean

import ocela
from support import ROOT, TIMEOUT_S, Program, Simulator, wait_for
from test_documentation import examples_in

EXTRA_MARKER = 'Стимул "A", left'
COMMANDS = {"python": ["python"], "r": ["Rscript"], "matlab": ["octave", "--no-gui", "--no-init-file"], "sh": ["bash", "-e"]}

MISSING = {"": -1, "NA": -1, "NaN": -1}  # for pandas, R and Octave


def read_csv(path, **options):
    with open(path, newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file, **options))


class TestLab(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        simulator = Simulator("--rate", "150", "--blink-interval", "1")
        cls.addClassCleanup(simulator.stop)
        cls.program = Program()
        cls.addClassCleanup(cls.program.close)
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = Path(folder.name)
        (cls.folder / "python").symlink_to(sys.executable)
        cls.examples = {(heading, language): text for heading, language, text in examples_in(ROOT / "docs/lab.md")}

        running = cls.start("Plain Python", "python")
        wait_for(lambda: ocela.state().recordings, "the recording runs")
        ocela.mark(EXTRA_MARKER)
        path = Path(running.communicate(timeout=TIMEOUT_S)[0].strip())
        for file in path.parent.glob("P01_reading*"):
            shutil.copy(file, cls.folder)
        # The simulated person closes both eyes at the same time. So every fifth sample loses the left eye alone here.
        samples = cls.folder / "P01_reading_samples.csv"
        lines = samples.read_text().splitlines()
        lines[::5] = [lines[0], *(re.sub(",1,(.)$", r",0,\1", line) for line in lines[5::5])]
        samples.write_text("\n".join(lines) + "\n")
        cls.rows = [{**row, **sample} for row, sample in zip(read_csv(path), read_csv(samples))]
        cls.markers = read_csv(cls.folder / "P01_reading_events.csv")

    @classmethod
    def start(cls, heading, language, adapt=str, **variables):
        file = cls.folder / ("lab_script." + language)
        file.write_text(adapt(cls.examples[heading, language]), encoding="utf-8")
        environment = {**os.environ, "PATH": f"{cls.folder}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8", **variables}
        return subprocess.Popen([*COMMANDS[language], file.name], cwd=cls.folder, env=environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def run_example(self, *arguments, **options):
        process = self.start(*arguments, **options)
        output, errors = process.communicate(timeout=TIMEOUT_S)
        self.assertEqual(process.returncode, 0, errors)
        return output

    def expected_intervals(self):
        """Yields text, number of samples, share of valid samples and mean pupil of the interval after each marker."""
        starts = [float(self.rows[0]["Arrival_ms"]) + 1000 * float(marker["onset"]) for marker in self.markers]
        for marker, start, end in zip(self.markers, starts, [*starts[1:], math.inf]):
            part = [row for row in self.rows if start <= float(row["Arrival_ms"]) < end]
            eyes = ([float(row[eye + "_Pupil_mm"]) for eye in "LR" if row[eye + "_Valid"] == "1"] for row in part)
            pupils = [fmean(seen) for seen in eyes if seen]
            yield (marker["text"], len(part), fmean(row["Valid"] == "1" for row in part) if part else -1,
                   fmean(pupils) if pupils else -1)

    def test_intervals(self):
        self.assertEqual({row["L_Valid"] + row["R_Valid"] for row in self.rows}, {"00", "01", "11"})
        self.assertIn(EXTRA_MARKER, [marker["text"] for marker in self.markers])
        table, picture = (self.folder / ("P01_reading_" + name) for name in ("trials.csv", "pupil.png"))
        for heading, language in (("pandas", "python"), ("R", "r"), ("MATLAB and Octave", "matlab")):
            with self.subTest(heading):
                self.run_example(heading, language)
                for row, expected in zip(read_csv(table), self.expected_intervals(), strict=True):
                    self.assertEqual((row["text"], int(row["samples"])), expected[:2])
                    for cell, value in zip((row["valid"], row["pupil_mm"]), expected[2:]):
                        self.assertAlmostEqual(float(MISSING.get(cell, cell)), value, 5)
                self.assertEqual(picture.read_bytes()[:4], b"\x89PNG")
                table.unlink()
                picture.unlink()

    def test_psychopy(self):
        output = self.run_example("PsychoPy", "python",
                                  PYTHONPATH=f"{Path(__file__).with_name('fake_psychopy')}:{os.environ['PYTHONPATH']}")
        flips = [line.split(" ") for line in output.splitlines()]
        name = str(self.program.records_folder / "P01_psychopy_")
        first_ms = float(read_csv(name + "samples.csv")[0]["Arrival_ms"]) - ocela.clock_offset().offset_ms
        markers = read_csv(name + "events.csv")
        self.assertEqual([marker["text"] for marker in markers], [word or "end" for _, word in flips])
        for marker, (flip, _), (next_flip, _) in zip(markers, flips, flips[1:] + [("inf", "")]):
            time_ms = first_ms + 1000 * float(marker["onset"])
            self.assertTrue(float(flip) - 10 < time_ms < float(next_flip), f"{flip} {time_ms} {next_flip}")

    def test_live_gaze(self):
        self.assertIn(self.run_example("Live gaze", "python"), ("left\n", "right\n"))

    def test_bids(self):
        self.run_example("BIDS", "sh")
        name = str(self.folder / "study/sub-01/beh/sub-01_task-reading_")
        self.assertEqual([(event["onset"], event["value"]) for event in read_csv(name + "events.tsv", delimiter="\t")],
                         [(marker["onset"], marker["text"]) for marker in self.markers])
        with gzip.open(name + "recording-eye1_physio.tsv.gz", "rt") as file:
            self.assertEqual(len(list(file)), len(self.rows))

    def test_fit_of_two_clocks(self):
        onsets = [float(marker["onset"]) for marker in self.markers if marker["text"] != EXTRA_MARKER]
        triggers = [5 + 1.001 * onset for onset in onsets]
        output = self.run_example("Choose a method", "python", lambda text: re.sub(r"= \[12.*]", f"= {triggers}", text))
        self.assertEqual(output, f"recording = {1 / 1.001:.6f} * device + {-5 / 1.001:.6f} s, within 0.000 ms\n")

    def test_lab_streaming_layer(self):
        self.skipTest("pyxdf and load_xdf, which read the files of LabRecorder, are not packages of Debian")


if __name__ == "__main__":
    unittest.main()
