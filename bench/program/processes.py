"""Starts the measured programs and reads their resource usage."""

import contextlib
import os
import pathlib
import resource
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")
PAGE_BYTES = os.sysconf("SC_PAGE_SIZE")
SLICE_SECONDS = 0.05


def inside_own_namespaces(script, arguments):
    """Runs `script` again in isolation, because another Ocela or simulator on this machine would stop or distort the
    run."""
    return subprocess.call([ROOT / "tools/isolated", sys.executable, script, *arguments],
                           env=dict(os.environ, OCELA_BENCH_ISOLATED="1"))


def private_profile(folder):
    """Returns an environment without the settings and record files of the user."""
    environment = {key: os.environ[key] for key in ("PATH", "LD_LIBRARY_PATH") if key in os.environ}
    environment.update(HOME=folder, XDG_RUNTIME_DIR=folder, LANG="C.UTF-8", QT_QPA_PLATFORM="xcb")
    return environment


class Program:
    """A process that is terminated at the end of the `with` block."""

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

    def exit_code(self, timeout_s):
        """Waits until the process exits. Returns None after `timeout_s`."""
        try:
            return self._process.wait(timeout_s)
        except subprocess.TimeoutExpired:
            return None

    def require_running(self):
        if self._process.poll() is not None:
            raise SystemExit(f"{self._process.args[0]} exited with {self._process.returncode}")

    def cpu_seconds(self):
        fields = (self._proc / "stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / TICKS_PER_SECOND

    def main_thread_cpu_seconds(self):
        """Returns the CPU time of the main thread. Its resolution is 1 ns, unlike the clock ticks of cpu_seconds()."""
        return int((self._proc / "schedstat").read_text().split()[0]) / 1e9

    def seconds_until_idle(self):
        """Waits for the first slice in which the main thread works for less than a tenth of the time. Returns the
        seconds until that slice."""
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

    def reset_peak(self):
        (self._proc / "clear_refs").write_text("5")

    def peak_resident_bytes(self):
        """Returns the maximum since reset_peak()."""
        return self._status("VmHWM")

    @contextlib.contextmanager
    def limited_memory(self, additional_bytes):
        """Lets the program use at most `additional_bytes` more than now, of address space and of writable memory. The
        second limit is needed because malloc reserves address space in advance."""
        limits = {resource.RLIMIT_AS: "VmSize", resource.RLIMIT_DATA: "VmData"}
        before = {limit: resource.prlimit(self._process.pid, limit) for limit in limits}
        for limit, name in limits.items():
            resource.prlimit(self._process.pid, limit, (self._status(name) + additional_bytes, before[limit][1]))
        try:
            yield
        finally:
            for limit, values in before.items():
                resource.prlimit(self._process.pid, limit, values)

    def _status(self, key):
        """Returns the number of bytes from a line with a number of kB."""
        lines = (self._proc / "status").read_text().splitlines()
        return next(int(line.split()[1]) for line in lines if line.startswith(key + ":")) * 1024

    def threads(self):
        return len(os.listdir(self._proc / "task"))

    def open_files(self):
        """Returns the targets of the open file descriptors. Skips descriptors that are closed during the call."""
        names = []
        for link in (self._proc / "fd").iterdir():
            with contextlib.suppress(FileNotFoundError):
                names.append(os.readlink(link))
        return names

    def bytes_read(self):
        """Returns the bytes read by read(). They include the tracker's socket, but not the connection to the X
        server."""
        return int((self._proc / "io").read_text().split()[1])


class VirtualScreen(Program):
    """Xvfb on the first free display, which is `name`. The frame buffer is a file in `folder`."""

    def __init__(self, folder):
        read, write = os.pipe()
        super().__init__(["Xvfb", "-displayfd", str(write), "-nolock", "-nolisten", "tcp",
                          "-screen", "0", "1920x1080x24", "-fbdir", folder], None, pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as number:
            self.name = ":" + number.readline().strip()
