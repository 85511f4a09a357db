"""Checks the answers of the running program to all requests of /api/v1 against the program's own description.

usage: check_program_api.py RECORDS_FOLDER [ID OF AN EVENT OF AN EARLIER RUN]

The program must run with the GazePoint simulator. Prints the id of the last event with samples.
"""

import http.client
import json
import socket
import sys
import time
from pathlib import Path

from jsonschema import Draft202012Validator

PORT = 3735
ROOT = "/api/v1"
TIMEOUT = 60  # s
JSON = {"Content-Type": "application/json"}
SSE_SCHEMAS = {"state": "State", "samples": "SampleArray", "event": "Marker", "missed": "Missed"}


def request(method, target, body=None, headers=None):
    """Returns the status, the headers and the body of the response."""
    connection = http.client.HTTPConnection("127.0.0.1", PORT, timeout=TIMEOUT)
    connection.request(method, ROOT + target, body, headers or {})
    response = connection.getresponse()
    content = response.read()
    connection.close()
    return response.status, response.headers, content


def wait_for(condition):
    deadline = time.monotonic() + TIMEOUT
    while not condition():
        assert time.monotonic() < deadline, "timeout"
        time.sleep(0.05)


class Description:
    """The program's description of its API. Remembers which responses were checked."""

    def __init__(self):
        self._document = json.loads(request("GET", "/openapi.json")[2])
        for schema in self._document["components"]["schemas"].values():
            Draft202012Validator.check_schema(schema)
        self.unchecked = {
            (path, method, status)
            for path, item in self._document["paths"].items()
            for method, operation in item.items()
            if method != "parameters"
            for status in operation["responses"]
        }

    def _resolve(self, value):
        while "$ref" in value:
            name = value["$ref"]
            value = self._document
            for part in name.split("/")[1:]:
                value = value[part]
        return value

    def validate(self, instance, schema):
        # The references in the schemas are relative to the document.
        whole = {"components": self._document["components"], **schema}
        Draft202012Validator(whole).validate(instance)

    def path_of(self, target):
        path = target.split("?")[0]
        return "/recordings/{name}" if path.startswith("/recordings/") else path

    def ask(self, method, target, expected, body=None, headers=None):
        """Sends a request, and checks the status and that the description has such a response. Returns its value."""
        body = json.dumps(body) if isinstance(body, (dict, list)) else body
        headers = {**(JSON if body else {}), **(headers or {})}
        status, received, content = request(method, target, body, headers)
        what = f"{method} {target} {body}: {status} {content[:300]}"
        assert status == expected, what
        assert received["Cache-Control"] == ("no-cache" if "ETag" in received else "no-store"), what
        if status in (404, 405):
            self.validate(json.loads(content), self._document["components"]["schemas"]["Problem"])
            assert status == 404 or received["Allow"], what
            return None
        path = self.path_of(target)
        response = self._resolve(self._document["paths"][path][method.lower()]["responses"][str(status)])
        self.unchecked.discard((path, method.lower(), str(status)))
        if "content" not in response:
            assert content == b"", what
            return received
        kind = received["Content-Type"].split(";")[0]
        schema = response["content"][kind]["schema"]
        if not kind.endswith("json"):
            return content
        value = json.loads(content)
        self.validate(value, schema)
        if kind == "application/problem+json":
            assert value["status"] == status, what
        return value

    def event_schema(self, name):
        return self._document["components"]["schemas"][SSE_SCHEMAS[name]]


class Stream:
    """A stream, whose events are checked as they arrive."""

    def __init__(self, description, target="/stream", event_id=None):
        self._description = description
        self._connection = http.client.HTTPConnection("127.0.0.1", PORT, timeout=TIMEOUT)
        self._connection.request("GET", ROOT + target, headers={"Last-Event-ID": event_id} if event_id else {})
        self._response = self._connection.getresponse()
        self.status = self._response.status
        self.last_id = None

    def next(self):
        """Returns the name and the data of the next event."""
        fields = {}
        for line in iter(self._response.readline, b""):
            if line == b"\n" and "event" in fields:
                data = json.loads(fields["data"])
                self._description.validate(data, self._description.event_schema(fields["event"]))
                self.last_id = fields.get("id", self.last_id)
                return fields["event"], data
            name, _, value = line.decode().rstrip("\n").partition(": ")
            fields[name] = value
        raise AssertionError("the stream has ended")

    def next_of(self, wanted):
        while True:
            name, data = self.next()
            if name == wanted:
                return data

    def close(self):
        # The response object keeps the socket open.
        self._response.close()
        self._connection.close()


def check_errors(api):
    api.ask("GET", "/openapi.json", 200)
    api.ask("GET", "/nothing", 404)
    api.ask("GET", "", 404)
    api.ask("GET", "/recordings/..%2fSettings.xml", 404)
    for target in ("/state", "/tracker", "/samples", "/stream", "/recording", "/recordings", "/recordings/a.csv",
                   "/events", "/calibration", "/openapi.json"):
        api.ask("PATCH", target, 405)
        api.ask("OPTIONS", target, 204)
        for method in ("GET", "PUT", "POST", "DELETE"):
            if (api.path_of(target), method.lower(), "422") in api.unchecked:
                api.ask(method, target + "?unknown=1", 422)
    for method, target in (("PUT", "/tracker"), ("POST", "/recording"), ("POST", "/events"), ("POST", "/calibration"),
                           ("PUT", "/recordings/a.csv?file=areas")):
        api.ask(method, target, 400, "{")
        api.ask(method, target, 413, '{"text": "' + 65536 * "x" + '"}')
        api.ask(method, target, 415, "{}", {"Content-Type": "text/plain"})
        api.ask(method, target, 422, "[]")
        api.ask(method, target, 422, {"unknown": 1})
    api.ask("PUT", "/tracker", 422, {"name": "none"})
    for target in ("/samples", "/stream"):
        api.ask("GET", target + "?after=x", 400)
        api.ask("GET", target + "?after=99999999999999999999", 422)
    api.ask("GET", "/samples?limit=0", 422)
    api.ask("GET", "/stream?interval=1001", 422)
    for body in ({"name": "a/b"}, {"name": "CON"}, {"path": "relative.csv"}, {"path": "/none/a.csv"}, {"name": 1},
                 {"name": "a", "path": "/tmp/a"}):
        api.ask("POST", "/recording", 422, body)
    for body in ({}, {"text": ""}, {"text": 1001 * "x"}, {"text": "a", "time": "now"}, {"text": "a", "time": 5}):
        api.ask("POST", "/events", 422, body)
    for screen in (0, 99, 1.5, "1"):
        api.ask("POST", "/calibration", 422, {"screen": screen})


def check_tracker(api):
    """Selects the simulated tracker within a stream, which gets the new state before its samples."""
    stream = Stream(api)
    assert stream.next_of("state")["tracker"]["name"] == "eyetech"
    api.ask("POST", "/calibration", 409)  # not connected
    api.ask("PUT", "/tracker", 202, {"name": "gazepoint"})
    name, data = stream.next()
    while name != "samples":
        state = data if name == "state" else None
        name, data = stream.next()
    assert state["tracker"]["name"] == "gazepoint"
    numbers = [sample["number"] for sample in data]
    while len(numbers) < 300:
        numbers += [sample["number"] for sample in stream.next_of("samples")]
    assert numbers == list(range(numbers[0], numbers[0] + len(numbers)))
    stream.close()

    last_id = stream.last_id
    resumed = Stream(api, "/stream?interval=100&after=1", last_id)
    assert resumed.next_of("samples")[0]["number"] == numbers[-1] + 1
    resumed.close()
    return last_id


def check_samples(api):
    first = api.ask("GET", "/samples?limit=10", 200)
    assert len(first["samples"]) == 10 and first["missed"] == 0
    rest = api.ask("GET", f"/samples?after={first['next']}", 200)
    assert rest["samples"][0]["number"] == first["next"] + 1
    assert api.ask("GET", f"/samples?after={2 ** 53}", 200)["missed"] is None
    state = api.ask("GET", "/state", 200)
    assert state["run"] == first["run"] and state["tracker"]["connected"]
    assert abs(state["time"] - time.time() * 1000) < 10_000


def check_recording(api, folder):
    api.ask("DELETE", "/recording", 409)
    path = api.ask("POST", "/recording", 201, {"name": "P01"})["path"]
    assert Path(path) == folder / "P01.csv", path
    api.ask("POST", "/recording", 409)
    stream = Stream(api)
    marker = api.ask("POST", "/events", 201, {"text": "onset \u00e4"})
    assert marker["recorded"]
    assert stream.next_of("event")["text"] == "onset \u00e4"
    stream.close()
    wait_for(lambda: api.ask("GET", "/state", 200)["recordings"][0]["samples"] > 100)
    saved = api.ask("DELETE", "/recording", 200)
    assert saved["path"] == path and saved["samples"] > 100
    assert api.ask("GET", "/state", 200)["lastRecording"]["saved"]

    files = api.ask("GET", "/recordings", 200)["recordings"]
    assert [file["name"] for file in files] == ["P01.csv"] and files[0]["bytes"] == Path(path).stat().st_size
    content = api.ask("GET", "/recordings/P01.csv", 200)
    assert content == Path(path).read_bytes() and content.count(b"\r\n") == saved["samples"] + 1
    _, headers, _ = request("GET", "/recordings/P01.csv")
    assert api.ask("GET", "/recordings/P01.csv", 206, headers={"Range": "bytes=0-8"}) == b"Timestamp"
    api.ask("GET", "/recordings/P01.csv", 416, headers={"Range": f"bytes={len(content)}-"})
    api.ask("GET", "/recordings/P01.csv", 304, headers={"If-None-Match": headers["ETag"]})
    beside = {kind: api.ask("GET", f"/recordings/P01.csv?file={kind}", 200) for kind in ("samples", "events")}
    assert beside["samples"].count(b"\r\n") == saved["samples"] + 1
    assert ",onset \u00e4,".encode() in beside["events"]
    areas = {"format": "Ocela areas", "areas": [{"name": "\u00e4"}]}
    saved_areas = api.ask("PUT", "/recordings/P01.csv?file=areas", 200, areas)
    assert saved_areas["path"] == str(folder / "P01_areas.json"), saved_areas
    assert api.ask("GET", "/recordings/P01.csv?file=areas", 200) == areas


def check_calibration(api):
    api.ask("DELETE", "/calibration", 409)
    api.ask("POST", "/calibration", 202, {"screen": 1})
    api.ask("POST", "/calibration", 409)
    api.ask("DELETE", "/calibration", 202)
    wait_for(lambda: api.ask("GET", "/state", 200)["calibration"]["last"])


def check_foreign_origin(api):
    headers = {"Origin": "https://elsewhere.example"}
    for path, method, status in sorted(api.unchecked):
        if status == "403":
            api.ask(method.upper(), path.replace("{name}", "a.csv"), 403, headers=headers)


def check_too_many_streams(api):
    streams = [Stream(api) for _ in range(20)]
    assert [stream.status for stream in streams] == 20 * [200]
    api.ask("GET", "/stream", 429)
    for stream in streams:
        stream.close()


def check_restart(api, event_id):
    stream = Stream(api, "/stream", event_id)
    assert stream.next_of("missed")["count"] is None
    stream.close()


def main():
    api = Description()
    if len(sys.argv) > 2:
        check_restart(api, sys.argv[2])
        return
    check_errors(api)
    event_id = check_tracker(api)
    check_samples(api)
    check_recording(api, Path(sys.argv[1]))
    check_calibration(api)
    check_foreign_origin(api)
    check_too_many_streams(api)
    # Streams have their own check. tests/api/ checks what needs a program that is busy, starting or cannot save.
    left = {entry for entry in api.unchecked if entry[2] not in ("404", "405", "500", "503")}
    assert left == {("/stream", "get", "200")}, left
    print(event_id)


main()
