"""Tests the HTTP engine with other HTTP clients, and with plain sockets that send and close at chosen times.

usage: http_clients.py ECHO_SERVER [UNITTEST ARGUMENTS ...]
"""

import contextlib
import hashlib
import http.client
import json
import os
import pathlib
import re
import socket
import ssl
import subprocess
import tempfile
import time
import unittest

from echo_process import TIMEOUT_S, EchoServer, run

MAX_ATTEMPTS = 5
MAX_LINGER_S = 5  # the engine drains a refused connection for up to 1 s
MAX_REQUEST_BYTES = 10000
LARGE_DATA = 500_000 * b"x"  # more than the engine reads at once

RESPONSES = {
    "400": b"HTTP/1.1 400 bad request\r\nConnection: close\r\n\r\n400 Bad request\r\n",
    "413": b"HTTP/1.1 413 entity too large\r\nConnection: close\r\n\r\n413 Entity too large\r\n",
    "503": b"HTTP/1.1 503 too many connections\r\nConnection: close\r\n\r\nToo many connections\r\n",
}


def curl(*arguments):
    return run("curl", "--silent", "--show-error", "--fail", "--max-time", "30", *arguments)


def described(data):
    return {"size": len(data), "sha256": hashlib.sha256(data).hexdigest()}


def connect(server, data, receive_buffer=None):
    connection = socket.socket()
    if receive_buffer:
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
    connection.settimeout(TIMEOUT_S)
    connection.connect(("127.0.0.1", server.port))
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    connection.sendall(data)
    return connection


def read_to_end(connection):
    return b"".join(iter(lambda: connection.recv(65536), b""))


class OtherClients(unittest.TestCase):
    """curl, Python's http.client, openssl, wrk and h2load."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.plain, cls.secure = EchoServer(), EchoServer(tls=True)
        cls.certificate = cls.secure.certificate

    @classmethod
    def tearDownClass(cls):
        for name, server in (("plain", cls.plain), ("TLS", cls.secure)):
            if log := server.stop():
                raise AssertionError(f"{name} server: {log}")

    def write(self, name, data):
        path = self.folder / name
        path.write_bytes(data)
        return path

    def test_uploads(self):
        data = os.urandom(3_000_000)
        file = f"@{self.write('body', data)}"
        kind = "Content-Type: application/octet-stream"
        for name, server, options in (("plain", self.plain, []), ("TLS", self.secure, ["--cacert", self.certificate]),
                                      ("with Expect: 100-continue", self.plain,
                                       ["-H", "Expect: 100-continue", "--expect100-timeout", "0.2"])):
            with self.subTest(name):
                echo = json.loads(curl(*options, "-H", kind, "--data-binary", file, server.url))
                self.assertEqual(echo["body"], described(data))

    def test_forms(self):
        contents = {"random": os.urandom(300_000), "lines": b"--\r\n\n\r\r\n--x\r\n" * 1000, "empty": b""}
        form = [f"-F{name}=@{self.write(name, data)}" for name, data in contents.items()]
        for server in (self.plain, self.secure):
            echo = json.loads(curl("--cacert", self.certificate, "-F", "note=two\r\nlines", *form, server.url))
            self.assertEqual(echo["files"], {name: described(data) for name, data in contents.items()})
            self.assertEqual(echo["parameters"], {"note": ["two\r\nlines"], **{name: [name] for name in contents}})
        echo = json.loads(curl("--data-urlencode", "text=ж & +x=", self.plain.url + "/?first=1"))
        self.assertEqual(echo["parameters"], {"first": ["1"], "text": ["ж & +x="]})

    def test_large_response_to_slow_tls_client(self):
        data = os.urandom(16_000_000)
        body = curl("--limit-rate", "10M", "--cacert", self.certificate, "-H", "Connection: close",
                    "-H", "Content-Type: text/plain", "--data-binary", f"@{self.write('large', data)}",
                    f"{self.secure.url}/body")
        self.assertEqual(described(body), described(data))

    def test_concurrent_requests(self):
        curl("-Z", "--parallel-max", "20", "--http1.1", "-o", f"{self.folder}/answer#1", self.plain.url + "/?n=[1-200]")
        for number in range(1, 201):
            answer = json.loads((self.folder / f"answer{number}").read_text())
            self.assertEqual(answer["parameters"], {"n": [str(number)]})

    def test_keep_alive(self):
        context = ssl.create_default_context(cafile=self.certificate)
        for client in (http.client.HTTPConnection("localhost", self.plain.port, timeout=TIMEOUT_S),
                       http.client.HTTPSConnection("localhost", self.secure.port, timeout=TIMEOUT_S, context=context)):
            local_port = None
            for path, body in (("/", b"x" * 100_000), ("/parts", b""), ("/", b"")):
                client.request("POST", path, body, {"Content-Type": "text/plain"})
                answer = client.getresponse()
                echo = json.loads(answer.read())
                self.assertEqual((echo["path"], echo["body"], echo["peer"]), (path, described(body), "127.0.0.1"))
                self.assertEqual(answer.getheader("Transfer-Encoding"), "chunked" if path == "/parts" else None)
                self.assertIn(local_port, (None, client.sock.getsockname()))  # all requests use one connection
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

    def test_client_certificates(self):
        server = EchoServer(tls=True, caCertFile="certificate.pem", verifyPeer="true")
        self.addCleanup(server.stop)
        own = ["--cert", server.certificate, "--key", server.key]
        self.assertIn(b'"path":"/"', curl("--cacert", server.certificate, *own, server.url))
        with self.assertRaises(subprocess.CalledProcessError):
            curl("--cacert", server.certificate, server.url)

    def test_load_generators(self):
        report = run("wrk", "-t", "1", "-c", "20", "-d", "1s", "--timeout", "30s", self.plain.url).decode()
        self.assertGreater(int(re.search(r"(\d+) requests in", report)[1]), 0)
        self.assertNotRegex(report, "Socket errors|Non-2xx")
        for server in (self.plain, self.secure):
            report = run("h2load", "--h1", "-n", "1000", "-c", "20", "-m", "1", server.url).decode()
            self.assertIn("1000 succeeded, 0 failed, 0 errored, 0 timeout", report)


class RefusedClients(unittest.TestCase):
    """How the server closes connections that it refuses."""

    def serve(self, *expected_warnings, **settings):
        server = EchoServer(**settings)
        self.addCleanup(lambda: self.assertEqual(server.stop().splitlines(),
                                                 [f"ocela.http: {warning}" for warning in expected_warnings]))
        return server

    def check_refusal(self, response, connection):
        self.assertEqual(read_to_end(connection), response)
        # The server has half-closed the connection: a reset could destroy the response before the client reads it.
        connection.sendall(b"x")
        connection.sendall(b"x")
        deadline = time.monotonic() + MAX_LINGER_S
        with self.assertRaises((ConnectionResetError, BrokenPipeError)):
            while time.monotonic() < deadline:
                connection.sendall(b"x")
                time.sleep(0.01)
        connection.close()

    def test_refused_requests(self):
        server = self.serve("HttpRequest: received broken HTTP request, invalid first line",
                            "HttpRequest: expected body is too large",
                            "HttpRequest: received too many bytes", maxRequestSize=MAX_REQUEST_BYTES)
        header = f"POST / HTTP/1.1\r\nContent-Length: {len(LARGE_DATA)}\r\n\r\n".encode()
        for name, status, begin in (("invalid first line", "400", b"GET  / HTTP/1.1\r\n"),
                                    ("large body", "413", header),
                                    ("large header", "413", b"GET / HTTP/1.1\r\nX: ")):
            with self.subTest(name):
                self.check_refusal(RESPONSES[status], connect(server, begin + LARGE_DATA))

    def test_refused_connections(self):
        server = self.serve(maxThreads=1)
        request = b"GET / HTTP/1.1\r\nConnection: %s\r\n\r\n"
        with connect(server, request % b"keep-alive") as served:
            self.assertTrue(served.recv(1))
            self.check_refusal(RESPONSES["503"], connect(server, LARGE_DATA))
            served.sendall(request % b"close")
            self.assertEqual(read_to_end(served).count(b"HTTP/1.1 200 OK"), 1)

    def test_lack_of_file_descriptors(self):
        server = self.serve("HttpListener: Cannot accept a connection: Too many open files")
        request = b"GET / HTTP/1.1\r\nConnection: close\r\n\r\n"
        # UBSan needs descriptors when a thread starts or ends a connection, so this one stays open.
        earlier = connect(server, b"GET / HTTP/1.1\r\n\r\n")
        self.addCleanup(earlier.close)
        earlier.recv(1)
        with server.without_file_descriptors():
            waiting = connect(server, request)
            waiting.settimeout(0.5)
            with self.assertRaises(TimeoutError):
                waiting.recv(1)
        waiting.settimeout(TIMEOUT_S)
        self.assertTrue(read_to_end(waiting).startswith(b"HTTP/1.1 200 OK"))
        waiting.close()

    def test_slow_readers_are_served_until_they_stop(self):
        for tls in (False, True):
            with self.subTest(tls=tls):
                # A machine that stops for longer than the window makes an attempt fail.
                self.assertTrue(any(self.slow_reader_is_served_until_it_stops(tls) for _ in range(MAX_ATTEMPTS)))

    def slow_reader_is_served_until_it_stops(self, tls):
        request = b"POST /body HTTP/1.1\r\nContent-Length: 20000000\r\n\r\n" + bytes(20_000_000)
        window_s = 0.6
        with contextlib.ExitStack() as stack:
            server = EchoServer(tls=tls, maxThreads=1, rateWindow=int(1000 * window_s), minBytesPerSecond=1000)
            stack.callback(server.stop)
            reader = stack.enter_context(connect(server, b"", receive_buffer=8192))
            if tls:
                context = ssl.create_default_context(cafile=server.certificate)
                reader = stack.enter_context(context.wrap_socket(reader, server_hostname="localhost"))

            def is_reader_served():
                with connect(server, b"GET / HTTP/1.1\r\nConnection: close\r\n\r\n") as other:
                    return read_to_end(other) == RESPONSES["503"]

            try:
                reader.sendall(request)
                # In one window, it reads much more than required, but less than a third of the server's send buffer.
                end = time.monotonic() + 5 * window_s
                while time.monotonic() < end:
                    if not reader.recv(4096):
                        return False
                    time.sleep(0.02)
            except OSError:
                return False
            if not is_reader_served():
                return False
            deadline = time.monotonic() + TIMEOUT_S
            while is_reader_served():
                self.assertLess(time.monotonic(), deadline)
            return True

    def test_handshake_timeout(self):
        server = self.serve(tls=True, readTimeout=300)
        with connect(server, b"") as connection:
            self.assertEqual(read_to_end(connection), b"")


if __name__ == "__main__":
    unittest.main()
