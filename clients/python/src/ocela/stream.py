"""The stream of samples, markers and states, which continues after a lost connection."""
from __future__ import annotations

import json
import logging
import time
from collections import deque
from typing import Any, Deque, Iterator, List, NamedTuple, Optional
from urllib.parse import urlencode

from .errors import NotRunning, OcelaError
from .model import Event, Marker, Missed, read, sample_of, state_of
from .transport import Answer, Connection

log = logging.getLogger("ocela")

# Ocela sends something at least every second.
SILENCE_TIMEOUT_S = 5.0
FIRST_PAUSE_S = 0.1
MAX_PAUSE_S = 2.0
# The server is busy: too many connections, or too many streams.
BUSY = (429, 503)
# With an id without the position of the markers, Ocela sends the newest markers again.
RECENT_MARKER_COUNT = 1000


class ServerEvent(NamedTuple):
    name: str
    data: str
    id: str


class EventParser:
    """Parses Server-Sent Events (text/event-stream). Data may be cut anywhere."""

    def __init__(self) -> None:
        self._rest = b""
        self._name = ""
        self._data: List[str] = []
        self._id = ""

    def feed(self, data: bytes) -> Iterator[ServerEvent]:
        """Returns the events that are complete. An event is complete at the empty line after it."""
        *lines, self._rest = (self._rest + data).split(b"\n")
        for line in lines:
            if line.strip(b"\r"):
                self._take_field(line.rstrip(b"\r").decode())
            elif self._data:
                yield ServerEvent(self._name or "message", "\n".join(self._data), self._id)
                self._name, self._data = "", []

    def _take_field(self, line: str) -> None:
        name, _, value = line.partition(":")
        value = value[1:] if value.startswith(" ") else value
        if name == "event":
            self._name = value
        elif name == "data":
            self._data.append(value)
        elif name == "id":
            self._id = value


class EventStream:
    """Reads `/api/v1/stream`. After a lost connection it resumes after the last sample that it has returned.

    It gives up if there is no connection for `reconnect_s` seconds. The first connection must succeed at once."""

    def __init__(self, host: str, port: int, after: Optional[int], interval_ms: int, reconnect_s: float) -> None:
        self._host = host
        self._port = port
        self._after = after
        self._interval_ms = interval_ms
        self._reconnect_s = reconnect_s
        self._last_id = ""
        self._recent_markers: Deque[Marker] = deque(maxlen=RECENT_MARKER_COUNT)
        self._received = False
        self._deadline = 0.0
        self._pause_s = FIRST_PAUSE_S

    def events(self) -> Iterator[Event]:
        while True:
            try:
                yield from self._events_of_one_connection()
                error: OcelaError = NotRunning("No answer", f"Ocela has closed the stream at {self._host}:{self._port}.")
            except OcelaError as problem:
                error = problem
            self._wait_after(error)

    def _events_of_one_connection(self) -> Iterator[Event]:
        query = {"interval": str(self._interval_ms)}
        headers = {"Accept": "text/event-stream"}
        if self._last_id:
            headers["Last-Event-ID"] = self._last_id
        elif self._after is not None:
            query["after"] = str(self._after)
        with Connection(self._host, self._port, SILENCE_TIMEOUT_S) as connection:
            answer = connection.ask("GET", "stream?" + urlencode(query), headers=headers)
            parser = EventParser()
            earlier_markers = frozenset(self._recent_markers)
            while data := answer.read_available():
                self._note_success()
                for event in parser.feed(data):
                    for item in self._take(event, answer):
                        if item not in earlier_markers:
                            yield item

    def _take(self, event: ServerEvent, answer: Answer) -> List[Event]:
        try:
            events = _events_in(event)
        except (AttributeError, KeyError, TypeError, ValueError):
            raise answer.unexpected() from None
        if event.id:
            self._last_id = event.id
        for item in events:
            if isinstance(item, Marker):
                self._recent_markers.append(item)
        return events

    def _note_success(self) -> None:
        self._received = True
        self._deadline = 0.0
        self._pause_s = FIRST_PAUSE_S

    def _wait_after(self, error: OcelaError) -> None:
        """Waits before the next attempt. Raises the error if there is none."""
        if not self._received or not (isinstance(error, NotRunning) or error.status in BUSY):
            raise error
        now = time.monotonic()
        if not self._deadline:
            log.warning("The stream is interrupted, and will be resumed. %s", error)
            self._deadline = now + self._reconnect_s
        if now >= self._deadline:
            raise error
        pause_s = max(self._pause_s, error.retry_after_s or 0)
        time.sleep(min(pause_s, self._deadline - now))
        self._pause_s = min(2 * self._pause_s, MAX_PAUSE_S)


def _events_in(event: ServerEvent) -> List[Event]:
    """Returns no events for a name that a later version of Ocela has added."""
    if event.name not in ("samples", "state", "event", "missed"):
        return []
    data: Any = json.loads(event.data)
    if event.name == "samples":
        return [sample_of(item) for item in data]
    if event.name == "state":
        return [state_of(data)]
    if event.name == "event":
        return [read(Marker, data)]
    return [Missed(data["count"], data.get("events", 0))]
