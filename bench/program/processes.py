"""Starting the programs that are measured, and reading what they used."""

import contextlib
import os
import pathlib
import signal
import subprocess
import sys
import time

TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")
PAGE_BYTES = os.sysconf("SC_PAGE_SIZE")
SLICE_SECONDS = 0.05


def inside_own_namespaces(script, arguments):
    """Runs `script` again where it has the tracker's fixed port, the list of processes and the displays to
    itself: a second Ocela on this machine, or a second simulator, would end or falsify the run."""
    prepare = "mkdir -p /tmp/.X11-unix && mount -t tmpfs tmpfs /tmp/.X11-unix && ip link set lo up"
    return subprocess.call(
        ["unshare", "--map-root-user", "--net", "--pid", "--fork", "--kill-child", "--mount", "--mount-proc",
         "sh", "-c", prepare + ' && exec "$@"', "sh", sys.executable, script, *arguments],
        env=dict(os.environ, OCELA_BENCH_ISOLATED="1"))


def private_profile(folder):
    """An environment without the person's own settings and records."""
    environment = {key: os.environ[key] for key in ("PATH", "LD_LIBRARY_PATH") if key in os.environ}
    environment.update(HOME=folder, LANG="C.UTF-8", QT_QPA_PLATFORM="xcb")
    for name in ("CONFIG", "DATA", "CACHE"):
        environment[f"XDG_{name}_HOME"] = f"{folder}/{name.lower()}"
    environment["XDG_RUNTIME_DIR"] = folder
    return environment


class Program:
    """A started process; ends with the `with` block."""

    def __init__(self, command, environment, pass_fds=(), output=subprocess.DEVNULL):
        self.begin = time.monotonic()
        self._process = subprocess.Popen(command, env=environment, pass_fds=pass_fds, stdout=output,
                                         stderr=subprocess.DEVNULL)
        self._proc = pathlib.Path(f"/proc/{self._process.pid}")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def end(self):
        if self._process.poll() is None:
            self._process.send_signal(signal.SIGTERM)
        self._process.wait()

    def exit_code(self, limit):
        """Waits for its end; None if it has not ended within `limit` seconds."""
        try:
            return self._process.wait(limit)
        except subprocess.TimeoutExpired:
            return None

    def require_running(self):
        if self._process.poll() is not None:
            raise SystemExit(f"{self._process.args[0]} ended with {self._process.returncode}")

    def cpu_seconds(self):
        fields = (self._proc / "stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / TICKS_PER_SECOND

    def main_thread_cpu_seconds(self):
        """Of the GUI thread alone, to the nanosecond where cpu_seconds() knows ticks."""
        return int((self._proc / "schedstat").read_text().split()[0]) / 1e9

    def seconds_until_idle(self):
        """How much longer the GUI thread stays busy: until the first slice in which it works for less than a
        tenth of it."""
        begin = time.monotonic()
        cpu = self.main_thread_cpu_seconds()
        while True:
            slice_begin = time.monotonic()
            time.sleep(SLICE_SECONDS)
            before, cpu = cpu, self.main_thread_cpu_seconds()
            if cpu - before < SLICE_SECONDS / 10:
                return slice_begin - begin

    def resident_bytes(self):
        return int((self._proc / "statm").read_text().split()[1]) * PAGE_BYTES

    def threads(self):
        return len(os.listdir(self._proc / "task"))

    def open_files(self):
        """What its descriptors stand for; those that are closed meanwhile are left out."""
        names = []
        for link in (self._proc / "fd").iterdir():
            with contextlib.suppress(FileNotFoundError):
                names.append(os.readlink(link))
        return names

    def bytes_read(self):
        """By read(): the tracker's socket, but not the X server's."""
        return int((self._proc / "io").read_text().split()[1])


class VirtualScreen(Program):
    """An X server without a screen, on the first display that is free; `name` tells which. The pixels are in a
    file in `folder`."""

    def __init__(self, folder):
        read, write = os.pipe()
        super().__init__(["Xvfb", "-displayfd", str(write), "-nolock", "-nolisten", "tcp",
                          "-screen", "0", "1920x1080x24", "-fbdir", folder], None, pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as number:
            self.name = ":" + number.readline().strip()
