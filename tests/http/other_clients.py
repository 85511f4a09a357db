"""The HTTP engine and programs that others wrote: curl, Python's own client, openssl, wrk, h2load.

usage: other_clients.py ECHO_SERVER [UNITTEST ARGUMENTS ...]
"""

import hashlib
import http.client
import json
import os
import pathlib
import re
import ssl
import subprocess
import sys
import tempfile
import unittest

LIMIT = 60  # s for any command


class EchoServer:
    def __init__(self, *arguments):
        self._process = subprocess.Popen([PROGRAM, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=subprocess.PIPE, text=True,
                                         env=dict(os.environ, QT_LOGGING_RULES="*.debug=false"))
        self.port = int(self._process.stdout.readline())
        self.url = f"{'https' if arguments else 'http'}://localhost:{self.port}"

    def end(self):
        """What it complained about."""
        complaints = self._process.communicate("\n", LIMIT)[1]
        return complaints + (f"exit code {self._process.returncode}" if self._process.returncode else "")


def run(*command, data=None):
    return subprocess.run(command, input=data, check=True, capture_output=True, timeout=LIMIT).stdout


def curl(*arguments):
    return run("curl", "--silent", "--show-error", "--fail", "--max-time", "30", *arguments)


def described(data):
    return {"size": len(data), "sha256": hashlib.sha256(data).hexdigest()}


class OtherClients(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.certificate = str(cls.folder / "certificate.pem")
        key = str(cls.folder / "key.pem")
        run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost",
            "-addext", "subjectAltName=DNS:localhost", "-keyout", key, "-out", cls.certificate)
        cls.plain, cls.secure = EchoServer(), EchoServer(key, cls.certificate)

    @classmethod
    def tearDownClass(cls):
        for name, server in (("plain", cls.plain), ("TLS", cls.secure)):
            if complaints := server.end():
                raise AssertionError(f"{name} server: {complaints}")

    def write(self, name, data):
        path = self.folder / name
        path.write_bytes(data)
        return path

    def test_versions_and_kept_connections(self):
        for version, connections in (("1.0", "1 1 1"), ("1.1", "1 0 0")):
            for path in ("/", "/parts"):
                with self.subTest(version=version, path=path):
                    answers = curl(f"--http{version}", "-w", "\n%{num_connects}\n", *3 * [self.plain.url + path])
                    lines = answers.decode().split("\n")
                    self.assertEqual(json.loads(lines[0])["version"], f"HTTP/{version}")
                    self.assertEqual(" ".join(lines[1:6:2]), connections)

    def test_request_is_understood(self):
        echo = json.loads(curl("-X", "PUT", "-H", "X-One: 1", "-H", "x-one: 2", "-b", 'a=1; b="2;3"', "-G",
                               "--data-urlencode", "text=ж & +x=", "-d", "flag", self.plain.url + "/a%20b"))
        self.assertEqual((echo["method"], echo["path"], echo["peer"]), ("PUT", "/a b", "127.0.0.1"))
        self.assertEqual(sorted(echo["headers"]["x-one"]), ["1", "2"])
        self.assertEqual(echo["parameters"], {"text": ["ж & +x="], "flag": [""]})
        self.assertEqual(echo["cookies"], {"a": ["1"], "b": ["2;3"]})

    def test_uploads(self):
        data = os.urandom(3_000_000)
        file = f"@{self.write('body', data)}"
        kind = "Content-Type: application/octet-stream"
        for name, server, options in (("plain", self.plain, []), ("TLS", self.secure, ["--cacert", self.certificate]),
                                      ("waiting for leave", self.plain,
                                       ["-H", "Expect: 100-continue", "--expect100-timeout", "0.2"])):
            with self.subTest(name):
                echo = json.loads(curl(*options, "-H", kind, "--data-binary", file, server.url))
                self.assertEqual(echo["body"], described(data))
        echo = json.loads(curl("--data-urlencode", "text=ж & +x=", self.plain.url + "/?first=1"))
        self.assertEqual(echo["parameters"], {"first": ["1"], "text": ["ж & +x="]})

    def test_form_with_files(self):
        contents = {"random": os.urandom(300_000), "lines": b"--\r\n\n\r\r\n--x\r\n" * 1000, "empty": b""}
        form = [f"-F{name}=@{self.write(name, data)}" for name, data in contents.items()]
        for server in (self.plain, self.secure):
            echo = json.loads(curl("--cacert", self.certificate, "-F", "note=two\r\nlines", *form, server.url))
            self.assertEqual(echo["files"], {name: described(data) for name, data in contents.items()})
            self.assertEqual(echo["parameters"], {"note": ["two\r\nlines"], **{name: [name] for name in contents}})

    def test_many_at_a_time(self):
        curl("-Z", "--parallel-max", "20", "--http1.1", "-o", f"{self.folder}/answer#1", self.plain.url + "/?n=[1-200]")
        for number in range(1, 201):
            answer = json.loads((self.folder / f"answer{number}").read_text())
            self.assertEqual(answer["parameters"], {"n": [str(number)]})

    def test_python(self):
        context = ssl.create_default_context(cafile=self.certificate)
        for client in (http.client.HTTPConnection("localhost", self.plain.port, timeout=LIMIT),
                       http.client.HTTPSConnection("localhost", self.secure.port, timeout=LIMIT, context=context)):
            local_port = None
            for path, body in (("/", b"x" * 100_000), ("/parts", b""), ("/", b"")):
                client.request("POST", path, body, {"Content-Type": "text/plain"})
                answer = client.getresponse()
                self.assertEqual(json.loads(answer.read())["body"], described(body))
                self.assertEqual(answer.getheader("Transfer-Encoding"), "chunked" if path == "/parts" else None)
                self.assertIn(local_port, (None, client.sock.getsockname()))  # one connection for all
                local_port = client.sock.getsockname()
            client.close()

    def test_tls(self):
        request = b"GET /tls HTTP/1.1\r\nConnection: close\r\n\r\n"
        for version in ("-tls1_2", "-tls1_3"):
            answer = run("openssl", "s_client", version, "-quiet", "-verify_return_error", "-CAfile", self.certificate,
                         "-verify_hostname", "localhost", "-connect", f"localhost:{self.secure.port}", data=request)
            self.assertRegex(answer, rb'^HTTP/1.1 200 OK\r\n(.|\n)*"path":"/tls"')
        with self.assertRaises(subprocess.CalledProcessError):  # plain HTTP to a TLS port
            curl(f"http://localhost:{self.secure.port}/")

    def test_load_generators(self):
        report = run("wrk", "-t", "1", "-c", "20", "-d", "1s", self.plain.url).decode()
        self.assertGreater(int(re.search(r"(\d+) requests in", report)[1]), 0)
        self.assertNotRegex(report, "Socket errors|Non-2xx")
        for server in (self.plain, self.secure):
            report = run("h2load", "--h1", "-n", "1000", "-c", "20", "-m", "1", server.url).decode()
            self.assertIn("1000 succeeded, 0 failed, 0 errored, 0 timeout", report)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
