"""The requests of `/api/v1`."""
from __future__ import annotations

import os
import time as clock
from pathlib import Path
from typing import Any, Callable, Dict, Iterator, Optional, Tuple, TypeVar, Union
from urllib.parse import quote, urlencode

from .errors import CalibrationFailed, NotRunning, NotSaved, OcelaError
from .model import (ClockOffset, Event, Marker, Missed, RecordFile, Sample, Samples, SavedRecording, Screen, State, read,
                    read_all, samples_of, state_of)
from .recording import Recording
from .stream import EventStream, log
from .transport import Answer, Connection

# Ocela answers within 60 s when it saves a recording, and within 10 s otherwise.
SAVE_TIMEOUT_S = 70.0
POLL_INTERVAL_S = 0.1
BLOCK_BYTES = 1 << 20
T = TypeVar("T")


class Client:
    """Ocela at an address. All methods can be called from any thread. They raise OcelaError.

    `timeout` is the number of seconds that Ocela may be silent during a request."""

    def __init__(self, host: str = "localhost", port: int = 3735, timeout: float = 15.0) -> None:
        self.host = host
        self.port = port
        self.timeout = timeout

    # The state

    def state(self) -> State:
        """Returns the state of Ocela: tracker, calibration, recordings, screens."""
        return self._get("state", state_of)

    def screens(self) -> Tuple[Screen, ...]:
        """Returns the screens of Ocela's computer."""
        return self.state().screens

    def set_tracker(self, name: str, timeout: float = 10.0) -> State:
        """Selects a tracker, and waits until it is selected. It may still be connecting then."""
        self._ask("PUT", "tracker", {"name": name})
        return self._wait_for_state(lambda state: state.tracker is not None and state.tracker.name == name,
                                    timeout, OcelaError("Timeout", f"The tracker {name} is not selected yet."))

    def clock_offset(self, rounds: int = 20) -> ClockOffset:
        """Measures the difference between the clocks of Ocela and of this computer.

        Uses the fastest of `rounds` round trips. Its half is the accuracy."""
        measured = []
        with Connection(self.host, self.port, self.timeout) as connection:
            connection.ask("GET", "state").read()  # connects
            for _ in range(rounds):
                sent_ms = clock.time() * 1000
                state = connection.ask("GET", "state").parsed(state_of)
                received_ms = clock.time() * 1000
                measured.append(ClockOffset(state.time - (sent_ms + received_ms) / 2, (received_ms - sent_ms) / 2))
        return min(measured, key=lambda offset: offset.accuracy_ms)

    # Samples

    def samples(self, *, after: Optional[int] = None, interval_ms: int = 0, reconnect_s: float = 60.0,
                on_missed: Optional[Callable[[Missed], object]] = None,
                on_tracker: Optional[Callable[[Optional[str]], object]] = None) -> Iterator[Sample]:
        """Yields each sample of the selected tracker once, as it arrives, without an end.

        Starts with the next sample, or after the sample number `after`. `interval_ms` collects samples to save processor
        time. A lost connection is resumed. NotRunning is raised if that fails for `reconnect_s` seconds.

        Calls `on_missed` when samples were lost, and `on_tracker` with the name when another tracker was selected. Without
        these functions, a warning is logged."""
        report_missed = on_missed or _log_missed
        report_tracker = on_tracker or _log_tracker
        last: Optional[State] = None
        for event in self.events(after=after, interval_ms=interval_ms, reconnect_s=reconnect_s):
            if isinstance(event, Sample):
                yield event
            elif isinstance(event, Missed) and event.count != 0:
                report_missed(event)
            elif isinstance(event, State):
                if last and _tracker_name(last) != _tracker_name(event):
                    report_tracker(_tracker_name(event))
                last = event

    def events(self, *, after: Optional[int] = None, interval_ms: int = 0,
               reconnect_s: float = 60.0) -> Iterator[Event]:
        """Yields samples, markers, states and Missed in the order in which they happen. See `samples()`."""
        return EventStream(self.host, self.port, after, interval_ms, reconnect_s).events()

    def samples_after(self, after: Optional[int] = None, limit: Optional[int] = None) -> Samples:
        """Returns the samples with numbers above `after`, or of the last two seconds. `limit` is the maximum number."""
        query = {"after": after, "limit": limit}
        return self._get("samples?" + urlencode({key: value for key, value in query.items() if value is not None}),
                         samples_of)

    # Recordings and markers

    def recording(self, name: Optional[str] = None, *, path: Union[str, os.PathLike[str], None] = None) -> Recording:
        """Returns a recording for a `with` block. See `start_recording()`."""
        return Recording(self, name, os.fspath(path) if path is not None else None)

    def start_recording(self, name: Optional[str] = None, *,
                        path: Union[str, os.PathLike[str], None] = None) -> str:
        """Starts a recording of the selected tracker, and returns the path of its record file.

        The file is NAME.csv in Ocela's records folder, or `path` on Ocela's computer. By default its name is the date and
        the time."""
        request: Dict[str, str] = {}
        if name is not None:
            request["name"] = name
        if path is not None:
            request["path"] = os.fspath(path)
        return self._parse("POST", "recording", lambda data: str(data["path"]), request)

    def stop_recording(self) -> SavedRecording:
        """Stops the recording of the selected tracker, and waits until it is safely on disk. Otherwise raises NotSaved."""
        try:
            return self._parse("DELETE", "recording", lambda data: read(SavedRecording, data),
                               timeout=max(self.timeout, SAVE_TIMEOUT_S))
        except OcelaError as error:
            if error.status == 500:
                raise NotSaved(error.title, error.detail, error.status) from None
            raise

    def recordings(self) -> Tuple[RecordFile, ...]:
        """Returns the record files in Ocela's records folder, newest first."""
        return self._get("recordings", lambda data: read_all(RecordFile, data["recordings"]))

    def download(self, name: str, to: Union[str, os.PathLike[str]] = ".") -> Path:
        """Copies a record file of Ocela's records folder to a folder or file, and returns its path.

        Raises FileExistsError if the file exists."""
        target = Path(to) / Path(name).name if Path(to).is_dir() else Path(to)
        with Connection(self.host, self.port, self.timeout) as connection:
            answer = connection.ask("GET", "recordings/" + quote(name, safe=""))
            with open(target, "xb") as file:
                try:
                    for block in _blocks(answer):
                        file.write(block)
                except BaseException:
                    file.close()
                    target.unlink()
                    raise
        return target

    def mark(self, text: str, time: Optional[float] = None) -> Marker:
        """Sets a marker now, or at a time in ms since 1970 UTC by the clock of Ocela. See `clock_offset()`.

        Every running recording stores it. `recorded` of the result says whether there was one. `text` has at most 1000
        characters."""
        request: Dict[str, Any] = {"text": text}
        if time is not None:
            request["time"] = time
        return self._parse("POST", "events", lambda data: read(Marker, data, text=text), request)

    # Calibration

    def calibrate(self, screen: int = 1, *, wait: bool = True, timeout: float = 300.0) -> Optional[str]:
        """Calibrates on a screen, and returns "done", or "unknown" if the tracker does not report the result.

        Raises CalibrationFailed if it fails, is cancelled, or takes longer than `timeout` seconds. With `wait=False`,
        returns None at once."""
        before = self.state()
        self._ask("POST", "calibration", {"screen": screen})
        if not wait:
            return None

        def has_ended(state: State) -> bool:
            calibration = state.calibration
            return not calibration.running and calibration.last not in (None, before.calibration.last)

        error = CalibrationFailed("Timeout", f"The calibration is still running after {timeout:g} s.")
        state = self._wait_for_state(lambda state: has_ended(state) or _tracker_name(state) != _tracker_name(before),
                                     timeout, error)
        if _tracker_name(state) != _tracker_name(before):
            raise CalibrationFailed("The calibration was not successful", "Another tracker was selected.")
        result = state.calibration.last.result if state.calibration.last else "unknown"
        if result not in ("done", "unknown"):
            raise CalibrationFailed("The calibration was not successful", result)
        return result

    def cancel_calibration(self) -> None:
        """Cancels the running calibration."""
        self._ask("DELETE", "calibration")

    # Helpers

    def _wait_for_state(self, condition: Callable[[State], bool], timeout: float, error: OcelaError) -> State:
        deadline = clock.monotonic() + timeout
        while True:
            state = self.state()
            if condition(state):
                return state
            if clock.monotonic() >= deadline:
                raise error
            clock.sleep(POLL_INTERVAL_S)

    def _ask(self, method: str, path: str, body: Any = None) -> None:
        with Connection(self.host, self.port, self.timeout) as connection:
            connection.ask(method, path, body).read()

    def _parse(self, method: str, path: str, parse: Callable[[Any], T], body: Any = None,
               timeout: Optional[float] = None) -> T:
        with Connection(self.host, self.port, timeout or self.timeout) as connection:
            return connection.ask(method, path, body).parsed(parse)

    def _get(self, path: str, parse: Callable[[Any], T]) -> T:
        return self._parse("GET", path, parse)


def _blocks(answer: Answer) -> Iterator[bytes]:
    """Yields the body. Raises NotRunning if it is shorter than announced."""
    length = int(answer.headers.get("Content-Length", "-1"))
    received = 0
    while block := answer.read(BLOCK_BYTES):
        received += len(block)
        yield block
    if length >= 0 and received != length:
        raise NotRunning("No answer", f"The connection was lost after {received} of {length} bytes.")


def _tracker_name(state: State) -> Optional[str]:
    return state.tracker.name if state.tracker else None


def _log_missed(missed: Missed) -> None:
    if missed.count is None:
        log.warning("Ocela was restarted. The number of missed samples is unknown.")
    else:
        log.warning("%d samples were missed.", missed.count)


def _log_tracker(name: Optional[str]) -> None:
    log.warning("The selected tracker is now %s.", name or "none")
