"""The Python package: its types, and its installation without a network."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from support import PACKAGE


def run(*command, **options):
    # Only what is installed may be found.
    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    result = subprocess.run(list(map(str, command)), capture_output=True, text=True, check=False, env=environment,
                            **options)
    if result.returncode:
        raise AssertionError(f"{command}\n{result.stdout}{result.stderr}")
    return result.stdout


class TestPackage(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def test_types(self):
        run("mypy", "--cache-dir", self.folder, cwd=PACKAGE)

    def test_installation(self):
        source = self.folder / "source"  # setuptools writes into the source folder
        shutil.copytree(PACKAGE, source)
        run(sys.executable, "-m", "venv", "--system-site-packages", self.folder / "venv")
        python = self.folder / "venv/bin/python"
        run(python, "-m", "pip", "install", "--no-index", "--no-build-isolation", source)
        version = run(python, "-c", "import importlib.metadata, ocela; print(ocela.__version__, "
                      "importlib.metadata.version('ocela'), ocela.__file__)", cwd=self.folder)
        expected = os.environ["OCELA_VERSION"]
        self.assertRegex(version, f"^{expected} {expected} {self.folder}/venv/")
        revealed = run("mypy", "--cache-dir", self.folder / "cache", "--python-executable", python, "--strict", "-c",
                       "import ocela; reveal_type(ocela.state())", cwd=self.folder)
        self.assertIn('"ocela.model.State"', revealed)


if __name__ == "__main__":
    unittest.main()
