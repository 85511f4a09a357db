"""The Python client with servers that fail. Ocela does not run."""
import json
import math
import re
import socket
import tempfile
import unittest
from pathlib import Path

from support import ScriptedServer, answer

import ocela
from ocela.stream import EventParser

PROBLEM = "Content-Type: application/problem+json"
SAMPLE = {**dict.fromkeys(ocela.Sample._fields, 0), "x": None}


def events(*numbers):
    """Returns an answer with one event for each sample."""
    blocks = [f"id: run:{number}\nevent: samples\ndata: {json.dumps([{**SAMPLE, 'number': number}])}\n\n"
              for number in numbers]
    return answer("200 OK", ": comment\n\n" + "".join(blocks), "Content-Type: text/event-stream")


class TestFaults(unittest.TestCase):
    def test_answers(self):
        not_saved = '{"title": "Not saved", "status": 500, "detail": "The samples are in /journal."}'
        cases = (
            # name, answer, function, exception, status, text
            ("a problem", answer("500 Internal Server Error", not_saved, PROBLEM), "stop_recording", ocela.NotSaved, 500,
             "The samples are in /journal."),
            ("plain text", answer("503 Service Unavailable", "too many connections\n", "Retry-After: 7"), "state",
             ocela.OcelaError, 503, "too many connections"),
            ("a problem that is not an object", answer("404 Not Found", "[]", PROBLEM), "state", ocela.OcelaError, 404, ""),
            ("an earlier version", answer("200 OK", '{"result": false}'), "state", ocela.OcelaError, 200, "not Ocela 1.3"),
            ("another server", answer("200 OK", "<html>"), "recordings", ocela.OcelaError, 200, "not Ocela 1.3"),
            ("not HTTP", b"SSH-2.0-OpenSSH\r\n", "state", ocela.NotRunning, None, "does not answer"),
            ("no answer", b"", "state", ocela.NotRunning, None, "does not answer"),
            ("a cut answer", answer("200 OK", "{", "Content-Length: 100"), "state", ocela.NotRunning, None, ""),
        )
        for name, sent, function, exception, status, text in cases:
            with self.subTest(name), ScriptedServer(sent) as server:
                with self.assertRaises(exception) as caught:
                    getattr(ocela.Client("127.0.0.1", server.port), function)()
                self.assertEqual(caught.exception.status, status)
                self.assertIn(text, caught.exception.detail)
                self.assertEqual(caught.exception.retry_after_s, 7 if name == "plain text" else None)

    def test_no_server(self):
        with socket.create_server(("127.0.0.1", 0)) as unused:
            port = unused.getsockname()[1]
        for function in (ocela.Client("127.0.0.1", port).state, lambda: next(ocela.Client("127.0.0.1", port).samples())):
            with self.assertRaises(ocela.NotRunning) as caught:
                function()
            self.assertIn(f"127.0.0.1:{port}", caught.exception.detail)

    def test_silent_server(self):
        with socket.create_server(("127.0.0.1", 0)) as silent, self.assertRaises(ocela.NotRunning):
            ocela.Client("127.0.0.1", silent.getsockname()[1], timeout=0.1).mark("x")

    def test_cut_download_leaves_no_file(self):
        with tempfile.TemporaryDirectory() as folder:
            with ScriptedServer(answer("200 OK", "Timestamp,", "Content-Length: 100")) as server:
                with self.assertRaises(ocela.NotRunning):
                    ocela.Client("127.0.0.1", server.port).download("x.csv", folder)
            self.assertEqual(list(Path(folder).iterdir()), [])

    def test_resuming_passes_the_last_id(self):
        busy = answer("503 Service Unavailable", "busy", "Retry-After: 0")
        refused = answer("403 Forbidden", '{"title": "Forbidden", "detail": "No."}', PROBLEM)
        with ScriptedServer(events(1, 2), busy, events(3)[:-1], events(3, 4), refused) as server:
            received = []
            with self.assertLogs("ocela", "WARNING"), self.assertRaises(ocela.OcelaError) as caught:
                for sample in ocela.Client("127.0.0.1", server.port).samples(after=0):
                    received.append(sample)
        self.assertEqual(caught.exception.status, 403)
        self.assertEqual([sample.number for sample in received], [1, 2, 3, 4])
        self.assertTrue(math.isnan(received[0].x))
        ids = [re.findall("Last-Event-ID: (.*)\r", request) for request in server.requests]
        self.assertEqual(ids, [[], ["run:2"], ["run:2"], ["run:2"], ["run:4"]])


class TestEventParser(unittest.TestCase):
    def test_cut_anywhere(self):
        stream = ('retry: 100\n: comment\n\nid: r:1\nevent: samples\ndata: [1,\ndata: 2]\n\n'
                  'event: state\r\ndata:Текст\r\n\r\ndata: {}\nid: r:2\n\nevent: unfinished\ndata: x\n').encode()
        expected = [("samples", "[1,\n2]", "r:1"), ("state", "Текст", "r:1"), ("message", "{}", "r:2")]
        for size in range(1, len(stream) + 1):
            parser = EventParser()
            events = [event for start in range(0, len(stream), size) for event in parser.feed(stream[start:start + size])]
            self.assertEqual(events, expected, size)


if __name__ == "__main__":
    unittest.main()
