"""The Python client with the running program."""
import csv
import itertools
import os
import subprocess
import sys
import threading
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from support import PACKAGE, BrokenNetwork, Program, Simulator, wait_for

import ocela


def rows_of(file):
    with open(file, newline="", encoding="utf-8") as lines:
        return list(csv.DictReader(lines))


class RunningProgram(unittest.TestCase):
    """One Ocela for all tests of the class."""

    @classmethod
    def setUpClass(cls):
        cls.simulator = Simulator("--rate", "150")
        cls.addClassCleanup(cls.simulator.stop)
        cls.program = Program()
        cls.addClassCleanup(cls.program.close)

    def run(self, result=None):
        super().run(result)
        if result and any(test is self for test, _ in result.errors + result.failures):
            print("The log of the program:", self.program.output(), sep="\n", file=sys.stderr)

    def problem(self, status, function, *arguments, **named):
        with self.assertRaises(ocela.OcelaError) as caught:
            function(*arguments, **named)
        self.assertEqual(caught.exception.status, status, caught.exception)
        self.assertTrue(caught.exception.title)
        self.assertTrue(caught.exception.detail)


class TestRequests(RunningProgram):
    def test_state(self):
        state = ocela.state()
        self.assertEqual(state.version, os.environ["OCELA_VERSION"])
        self.assertEqual(set(state.trackers), {"eyetech", "gazepoint", "aSee Pro"})
        self.assertEqual((state.tracker.name, state.tracker.connected), ("gazepoint", True))
        wait_for(lambda: 100 < (ocela.state().tracker.sample_rate_hz or 0) < 200, "the sample rate is measured")
        wait_for(lambda: ocela.state().tracker.newest > state.tracker.newest, "there is a newer sample")
        self.assertEqual([screen.number for screen in ocela.screens()], list(range(1, len(state.screens) + 1)))
        self.assertEqual(sum(screen.primary for screen in state.screens), 1)

    def test_samples_after(self):
        wait_for(lambda: len(ocela.samples_after().samples) > 5, "there are recent samples")
        self.assertEqual(len(ocela.samples_after(limit=5).samples), 5)
        newest = ocela.samples_after().samples[-5:]
        self.assertEqual([sample.number for sample in newest], list(range(newest[0].number, newest[0].number + 5)))
        times = [sample.time for sample in newest]
        self.assertEqual(times, sorted(times))
        following = wait_for(lambda: ocela.samples_after(newest[-1].number).samples, "there are new samples")
        self.assertEqual(following[0].number, newest[-1].number + 1)
        self.assertIs(type(following[0].x), float)
        self.assertIs(type(following[0].l_valid), bool)

    def test_clock_offset(self):
        offset = ocela.clock_offset()
        # The clocks are the same. Ocela's time comes from the steady clock, which time services do not correct.
        self.assertLessEqual(abs(offset.offset_ms), offset.accuracy_ms + 20)

    def test_problems(self):
        self.problem(409, ocela.stop_recording)
        self.problem(409, ocela.cancel_calibration)
        self.problem(404, ocela.download, "missing.csv")
        for name, function, value in (("a folder in the name", ocela.start_recording, "a/b"),
                                      ("an empty name", ocela.start_recording, ""),
                                      ("a tracker that does not exist", ocela.set_tracker, "other"),
                                      ("a screen that does not exist", ocela.calibrate, 99),
                                      ("a long marker", ocela.mark, 1001 * "x")):
            with self.subTest(name):
                self.problem(422, function, value)
        with self.subTest("a missing folder"):
            self.problem(422, ocela.start_recording, path="/missing/record.csv")

    def test_calibration(self):
        with ThreadPoolExecutor() as pool:
            calibration = pool.submit(ocela.calibrate)
            wait_for(lambda: ocela.state().calibration.running, "the calibration runs")
            self.problem(409, ocela.calibrate)
            self.assertEqual(calibration.result(), "done")
            self.assertIsNone(ocela.calibrate(wait=False))
            ocela.cancel_calibration()  # is accepted, but has no effect on GazePoint trackers
            wait_for(lambda: not ocela.state().calibration.running, "the calibration has ended")

            calibration = pool.submit(ocela.calibrate)
            wait_for(lambda: ocela.state().calibration.running, "the calibration runs")
            ocela.set_tracker("eyetech")
            with self.assertRaises(ocela.CalibrationFailed):
                calibration.result()
            ocela.set_tracker("gazepoint")


class TestRecording(RunningProgram):
    def test_recording(self):
        text = 'stimulus "on", Текст 👁'
        with ocela.recording("P01 Чтение") as recording:
            self.problem(409, ocela.start_recording)
            received = list(itertools.islice(ocela.samples(), 100))
            marker = recording.mark(text)
            late = recording.mark("earlier", received[50].time)
            following = list(itertools.islice(ocela.samples(after=received[-1].number), 50))
        file = self.program.records_folder / "P01 Чтение.csv"
        self.assertEqual(Path(recording.path), file)
        self.assertTrue(marker.recorded)
        self.assertAlmostEqual(late.time, received[50].time, places=2)

        rows = rows_of(file)
        numbers = [int(row["Number"]) for row in rows_of(file.with_name("P01 Чтение_samples.csv"))]
        self.assertEqual(len(rows), recording.saved.samples)
        self.assertEqual(numbers, list(range(numbers[0], numbers[0] + len(rows))))
        for sample in received + following:
            row = rows[sample.number - numbers[0]]
            self.assertEqual((float(row["X"]), int(row["L_X_px"]), row["Valid"] == "1"),
                             (sample.x, sample.l_x_px, sample.valid))
        self.assertEqual([sample.number for sample in received + following],
                         list(range(received[0].number, received[0].number + 150)))

        events = {row["text"]: row for row in rows_of(file.with_name("P01 Чтение_events.csv"))}
        self.assertEqual(set(events), {text, "earlier"})
        self.assertEqual(int(events[text]["number"]), marker.number)
        self.assertEqual(numbers[int(events[text]["row"])], marker.number)

    def test_recordings(self):
        for name in ("first", "second"):
            with ocela.recording(name) as recording:
                next(ocela.samples())
            self.assertFalse(ocela.state().recordings)
            self.assertTrue(ocela.state().last_recording.saved)
        listed = ocela.recordings()
        self.assertEqual([file.name for file in listed[:2]], ["second.csv", "first.csv"])
        folder = self.program.home
        copy = ocela.download("second.csv", folder)
        self.assertEqual(copy.read_bytes(), Path(recording.path).read_bytes())
        self.assertEqual(copy.stat().st_size, listed[0].bytes)
        with self.assertRaises(FileExistsError):
            ocela.download("second.csv", folder)

    def test_exception_in_the_block(self):
        with self.assertRaises(ZeroDivisionError), ocela.recording("interrupted") as recording:
            next(ocela.samples())
            raise ZeroDivisionError
        self.assertGreater(recording.saved.samples, 0)
        self.assertTrue(Path(recording.path).is_file())

    def test_stopped_by_somebody_else(self):
        with self.assertRaises(ocela.NotSaved) as caught, ocela.recording("stopped"):
            next(ocela.samples())
            saved = ocela.stop_recording()
        self.assertIn(saved.path, caught.exception.detail)

    def test_other_tracker_selected(self):
        with self.assertRaises(ocela.NotSaved) as caught, ocela.recording("left open") as recording:
            next(ocela.samples())
            ocela.set_tracker("eyetech")
        self.assertIn(f"gazepoint to {recording.path} still runs", caught.exception.detail)
        ocela.set_tracker("gazepoint")
        self.assertEqual(ocela.stop_recording().path, recording.path)

    def test_end_of_ocela(self):
        with self.assertRaises(ocela.NotSaved) as caught, ocela.recording("killed") as recording:
            for _ in itertools.islice(ocela.samples(), 300):
                pass
            self.program.kill()
        self.assertIn(f"recovers the recording beside {recording.path}", caught.exception.detail)
        self.program.start()
        recovered = self.program.records_folder / "killed_recovered.csv"
        wait_for(recovered.is_file, "the recording is recovered")

    def test_folder_is_lost(self):
        folder = self.program.home / "removed"
        folder.mkdir()
        with ocela.recording(path=folder / "record.csv") as recording:
            next(ocela.samples())
            self.assertEqual(Path(recording.path), folder / "record.csv")
            folder.rmdir()
        self.assertEqual(Path(recording.path).parent, self.program.records_folder)
        self.assertTrue(Path(recording.path).is_file())


class TestStream(RunningProgram):
    def setUp(self):
        network = BrokenNetwork()
        self.network = self.enterContext(network)
        self.client = ocela.Client("127.0.0.1", network.port)
        self.missed = []

    def samples(self, **options):
        return self.client.samples(on_missed=self.missed.append, **options)

    def test_resumes_after_a_cut(self):
        samples = self.samples()
        last = next(samples).number
        complete_count = 0
        for _ in range(5):
            self.missed.clear()
            numbers = [last, *(sample.number for sample in itertools.islice(samples, 100))]
            with self.assertLogs("ocela", "WARNING") as logged:
                self.network.cut()
                # The samples that have arrived before the cut come first.
                while not logged.records:
                    numbers.append(next(samples).number)
            last = numbers[-1]
            self.assertEqual(numbers, sorted(set(numbers)))
            gap = last - numbers[0] + 1 - len(numbers)
            self.assertEqual(gap, sum(missed.count for missed in self.missed))
            complete_count += gap == 0
        # A machine that stops for two seconds makes Ocela drop samples that the client has not received.
        self.assertGreater(complete_count, 0)

    def test_reports_missed_samples(self):
        samples = self.samples(interval_ms=50)
        last = next(samples)
        self.network.down = True
        self.network.cut()
        window = ocela.samples_after
        wait_for(lambda: window(limit=1).samples[0].number > last.number + 200, "the window does not have the next samples")
        self.network.down = False
        numbers = []
        with self.assertLogs("ocela", "WARNING"):
            while not self.missed:
                numbers.append(next(samples).number)
        numbers += [sample.number for sample in itertools.islice(samples, 100)]
        gap = sum(after - before - 1 for before, after in zip([last.number, *numbers], numbers))
        self.assertGreater(gap, 0)
        self.assertEqual(gap, sum(missed.count for missed in self.missed))

    def test_starts_after_a_number(self):
        number = ocela.samples_after().samples[-1].number
        self.assertEqual(next(self.samples(after=number)).number, number + 1)

    def test_change_of_tracker(self):
        trackers = []
        samples = self.samples(on_tracker=trackers.append)
        next(samples)
        ocela.set_tracker("eyetech")
        ocela.set_tracker("gazepoint")
        for _ in samples:
            if trackers[-1:] == ["gazepoint"]:
                break
        self.assertEqual(trackers, ["eyetech", "gazepoint"])

    def test_events(self):
        events = self.client.events()
        state = next(event for event in events if isinstance(event, ocela.State))
        self.assertEqual(state.run, ocela.state().run)
        marker = ocela.mark("unrecorded")
        self.assertFalse(marker.recorded)
        self.assertEqual(next(event for event in events if isinstance(event, ocela.Marker)), marker)

    def test_restart(self):
        samples = self.samples()
        last = list(itertools.islice(samples, 200))[-1]
        self.missed.clear()
        with self.assertLogs("ocela", "WARNING"):
            self.program.kill()
            starting = threading.Thread(target=self.program.start)
            starting.start()
            later = list(itertools.islice(samples, 1000))
            starting.join()
        # Samples that were still in the pipe come before the restart.
        run = [sample.number for sample in later if sample.time > last.time + 500]
        self.assertEqual(run, sorted(set(run)))
        counts = [missed.count for missed in self.missed]
        self.assertEqual(counts.count(None), 1)
        self.assertEqual(run[-1] - run[0] + 1 - len(run), sum(count or 0 for count in counts))

    def test_gives_up(self):
        samples = self.samples(reconnect_s=0.5)
        next(samples)
        self.network.down = True
        self.network.cut()
        with self.assertLogs("ocela", "WARNING"), self.assertRaises(ocela.NotRunning):
            for _ in samples:
                pass


class TestCommands(RunningProgram):
    maxDiff = None  # of the output of a command

    def command(self, *arguments, file=("-m", "ocela"), keys=""):
        environment = {**os.environ, "PYTHONPATH": str(PACKAGE / "src")}
        run = subprocess.run([sys.executable, *map(str, file), *arguments], env=environment, input=keys,
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout, run.stderr

    def test_commands(self):
        for arguments, pattern in ((["state"], r'"version": "\d'),
                                   (["samples", "--count", "3"], r"^number,time,.*\n(\d+,\d+\.\d+,.*\n){3}$"),
                                   (["record", "short", "--seconds", "1"], r"Saved \d+ samples as .*short\.csv\n$"),
                                   (["mark", "from the shell"], "no recording")):
            with self.subTest(arguments):
                status, output, errors = self.command(*arguments)
                self.assertEqual((status, errors), (0, ""))
                self.assertRegex(output, pattern)
        status, output, errors = self.command("--port", "1", "state")
        self.assertEqual((status, output), (1, ""))
        self.assertIn("Is it running?", errors)

    def test_reading_study(self):
        study = PACKAGE / "examples" / "reading_study.py"
        status, output, errors = self.command("P07", file=[study], keys="\n\n\n")
        self.assertEqual((status, errors), (0, ""))
        self.assertRegex(output, r"Saved as .*P07_reading\.csv\n(\w+: \d+ samples, \d+ of them valid\n){3}$")
        self.assertTrue((self.program.records_folder / "P07_reading.csv").is_file())


if __name__ == "__main__":
    unittest.main()
