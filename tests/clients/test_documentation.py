"""Runs the examples of the documentation in their order, with the running program."""
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from support import PACKAGE, ROOT, TIMEOUT_S, Program, Simulator

NUMBER = r"-?\d+(\.\d+)?"
GAZE = rf"^(\d+ {NUMBER} (True|False|true|false) {NUMBER} {NUMBER}\n)+$"

# What an example prints: under a heading, and in a language if the languages differ.
PRINTED = {
    "State": "gazepoint",
    "Select a tracker": {"python": "gazepoint", "js": "202", "sh": "^"},
    "Recent samples": "number",
    "Stream": {"python": GAZE, "js": r"gazepoint\n(.*\n)*\d+ \d+\.\d+ (true|false) ", "sh": r"event: samples\ndata: \[\{"},
    "Record": {"python": r"P01_python\.csv \d+\n", "js": r"P01_javascript\.csv(.*\n)+.*samples: \d+",
               "sh": r'P01_curl\.csv.*"samples":\d+'},
    "Set a marker": {"python": rf"^{NUMBER} \d+ False\n$", "js": "recorded: false", "sh": '"recorded":false'},
    "Fetch record files": {"python": r"P01_javascript\.csv \d+\n(.*\n)*P01_python.csv\n$", "sh": "P01_curl.csv",
                           "js": "(.*\n)*Timestamp,Time,"},
    "Calibrate": {"python": r"(^|\n)done\n$", "js": "^done\n$", "sh": "^"},
    "OpenAPI": {"python": "state", "js": "state", "sh": "^"},
    "Clocks of two computers": {"python": f"{NUMBER} ± {NUMBER}\n", "js": f"{NUMBER} ± {NUMBER}\n", "sh": '"time":'},
    "Problems": "409",
    "Try it": {"sh": r'^\{"hello".*"result":true.*\}\{"result":true,"sample":\{.*\}$',
               "python": r"^(\{'result': True.*\}\n){2}Timestamp,Time,.*\n$",
               "js": rf"^((true|false) {NUMBER} {NUMBER}\n){{5}}$"},
    # clients/python/README.md
    "Record a trial": r"P01_reading\.csv \d+\n$",
    "Follow the gaze": r"\d",
    "Export to BIDS": r"/study/sub-02/beh/sub-02_task-reading_recording-eye3_physio\.json\n",
    "Functions": os.environ["OCELA_VERSION"],
    "Time": f"{NUMBER} ± {NUMBER}\n$",
}


def examples_in(file):
    """Yields the heading, the language and the text of each example."""
    text = file.read_text(encoding="utf-8")
    heading = ""
    for match in re.finditer(r"^```(\w*)\n(.*?)^```$|^#+ ([^\n]*)$", text, re.M | re.S):
        if match[3]:
            heading = match[3]
        elif match[1]:
            yield heading, match[1], match[2]


class TestDocumentation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.simulator = Simulator("--rate", "150")
        cls.addClassCleanup(cls.simulator.stop)
        cls.program = Program()
        cls.addClassCleanup(cls.program.close)

    def run_examples(self, file, languages):
        node = [os.environ["OCELA_NODE"], "--import", str(Path(__file__).with_name("event_source.mjs")),
                "--input-type=module", "-e"]
        commands = {"sh": ["bash", "-ec"], "python": [sys.executable, "-c"], "js": node}
        found = set()
        with tempfile.TemporaryDirectory() as folder:
            for heading, language, text in examples_in(file):
                with self.subTest(heading=heading, language=language):
                    found.add(language)
                    run = subprocess.run([*commands[language], text], cwd=folder, capture_output=True, text=True,
                                         timeout=TIMEOUT_S, check=False)
                    self.assertEqual((run.returncode, run.stderr), (0, ""), run.stdout)
                    pattern = PRINTED[heading]
                    self.assertRegex(run.stdout, pattern if isinstance(pattern, str) else pattern[language])
        self.assertEqual(found, languages)

    def test_http_api(self):
        self.run_examples(ROOT / "docs" / "http-api.md", {"sh", "python", "js"})

    def test_python_client(self):
        self.run_examples(PACKAGE / "README.md", {"python"})


if __name__ == "__main__":
    unittest.main()
