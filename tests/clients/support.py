"""Starts Ocela and its simulator, and plays networks and servers that fail."""
import contextlib
import http.client
import os
import socket
import subprocess
import tempfile
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PACKAGE = ROOT / "clients" / "python"
PORT = 3735
TIMEOUT_S = 120  # a busy machine needs far less


def wait_for(condition, description):
    """Returns the first true value of `condition()`."""
    deadline = time.monotonic() + TIMEOUT_S
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise TimeoutError(description)
        time.sleep(0.02)
    return value


class Child:
    """A child process whose output goes to a file."""

    def __init__(self, *command, **options):
        self._output = tempfile.NamedTemporaryFile()
        self._process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=self._output, stderr=self._output,
                                         **options)

    def output(self):
        return Path(self._output.name).read_text(errors="replace")

    def stop(self):
        self._process.terminate()
        self._process.wait(TIMEOUT_S)

    def kill(self):
        self._process.kill()
        self._process.wait(TIMEOUT_S)


class Simulator(Child):
    """A simulated GazePoint tracker."""

    def __init__(self, *options):
        super().__init__(os.environ["OCELA_SIMULATOR"], *options)
        wait_for(lambda: "listening on" in self.output(), "the simulator listens")


class Program:
    """Ocela with a profile of its own, in which the GazePoint tracker is selected."""

    def __init__(self):
        self._profile = tempfile.TemporaryDirectory()
        self.home = Path(self._profile.name)
        settings = self.home / ".local/share/Velmora/OcelaSettings.xml"
        settings.parent.mkdir(parents=True)
        settings.write_text('<settings version="1"><property name="SelectedTracker">gazepoint</property></settings>')
        self._process = None
        self.start()

    @property
    def records_folder(self):
        return self.home / "Documents" / "Ocela"

    def start(self):
        environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": str(self.home),
                       "LC_ALL": "C.UTF-8"}
        program = Path(os.environ["OCELA_PROGRAM"])
        self._process = Child(ROOT / "tools/private-profile", self.home, program, cwd=program.parent, env=environment)
        wait_for(self._delivers, "Ocela delivers samples")

    def kill(self):
        self._process.kill()

    def restart(self):
        self.kill()
        self.start()

    def close(self):
        self.kill()
        self._profile.cleanup()

    def output(self):
        return self._process.output()

    @staticmethod
    def _delivers():
        connection = http.client.HTTPConnection("127.0.0.1", PORT, timeout=TIMEOUT_S)
        with contextlib.suppress(OSError), contextlib.closing(connection):
            connection.request("GET", "/api/v1/samples")
            return b'"number"' in connection.getresponse().read()
        return False


class Server:
    """Accepts connections on a free port of this machine, and serves each one on a thread."""

    def __init__(self):
        self._listener = socket.create_server(("127.0.0.1", 0))
        self.port = self._listener.getsockname()[1]
        threading.Thread(target=self._accept, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._listener.close()

    def _accept(self):
        with contextlib.suppress(OSError):
            while True:
                client, _ = self._listener.accept()
                threading.Thread(target=self._serve_quietly, args=(client,), daemon=True).start()

    def _serve_quietly(self, client):
        with client, contextlib.suppress(OSError):
            self.serve(client)


class BrokenNetwork(Server):
    """Forwards connections to Ocela until they are cut. Refuses new ones while `down` is set."""

    def __init__(self):
        self.down = False
        self._sockets = set()
        super().__init__()

    def cut(self):
        for side in list(self._sockets):
            with contextlib.suppress(OSError):
                side.shutdown(socket.SHUT_RDWR)

    def serve(self, client):
        if self.down:
            return
        with socket.create_connection(("127.0.0.1", PORT)) as program:
            self._sockets |= {client, program}
            threading.Thread(target=self._forward, args=(client, program), daemon=True).start()
            self._forward(program, client)

    @staticmethod
    def _forward(source, target):
        with contextlib.suppress(OSError):
            while data := source.recv(1000):
                target.sendall(data)
        for side in (source, target):
            with contextlib.suppress(OSError):
                side.shutdown(socket.SHUT_RDWR)


class ScriptedServer(Server):
    """Sends one answer after another, each to the next connection, and closes it. Keeps the requests."""

    def __init__(self, *answers):
        self._answers = list(answers)
        self.requests = []
        super().__init__()

    def serve(self, client):
        request = b""
        while b"\r\n\r\n" not in request:
            received = client.recv(1000)
            if not received:
                return
            request += received
        self.requests.append(request.decode())
        client.sendall(self._answers.pop(0))
        client.shutdown(socket.SHUT_WR)
        client.recv(1000)


def answer(status, body, *headers):
    """Returns the bytes of an HTTP answer whose body ends with the connection."""
    return "\r\n".join([f"HTTP/1.1 {status}", "Connection: close", *headers, "", body]).encode()
