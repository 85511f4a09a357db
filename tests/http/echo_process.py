"""Starts echo_server with given settings. The script's first argument is the path of echo_server."""

import contextlib
import os
import pathlib
import resource
import subprocess
import sys
import tempfile

PROGRAM = sys.argv.pop(1)
TIMEOUT_S = 60


def run(*command, data=None):
    return subprocess.run(command, input=data, check=True, capture_output=True, timeout=TIMEOUT_S).stdout


class EchoServer:
    """With `tls`, the server has a self-signed certificate, in files relative to its settings file."""

    def __init__(self, tls=False, **settings):
        self._temporary = tempfile.TemporaryDirectory()
        folder = pathlib.Path(self._temporary.name)
        settings["host"] = "127.0.0.1"
        if tls:
            settings.update(sslKeyFile="key.pem", sslCertFile="certificate.pem")
            self.key, self.certificate = str(folder / "key.pem"), str(folder / "certificate.pem")
            run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost",
                "-addext", "subjectAltName=DNS:localhost", "-keyout", self.key, "-out", self.certificate)
        file = folder / "server.ini"
        file.write_text("\n".join(["[General]", *(f"{key}={value}" for key, value in settings.items())]))
        self._process = subprocess.Popen([PROGRAM, file], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=subprocess.PIPE, text=True,
                                         env=dict(os.environ, QT_LOGGING_RULES="*.debug=false"))
        self.port = int(self._process.stdout.readline())
        self.url = f"{'https' if tls else 'http'}://localhost:{self.port}"

    @contextlib.contextmanager
    def without_file_descriptors(self):
        """Prevents the server from opening files and accepting connections."""
        limits = resource.prlimit(self._process.pid, resource.RLIMIT_NOFILE)
        resource.prlimit(self._process.pid, resource.RLIMIT_NOFILE, (3, limits[1]))
        try:
            yield
        finally:
            resource.prlimit(self._process.pid, resource.RLIMIT_NOFILE, limits)

    def stop(self):
        """Stops the server. Returns its log, followed by the exit code if it is not 0."""
        log = self._process.communicate("\n", TIMEOUT_S)[1]
        self._temporary.cleanup()
        return log + (f"exit code {self._process.returncode}" if self._process.returncode else "")
