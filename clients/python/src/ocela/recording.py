"""A recording as a `with` block."""
from __future__ import annotations

from types import TracebackType
from typing import TYPE_CHECKING, Optional, Type

from .errors import NotRunning, NotSaved, OcelaError
from .model import Marker, SavedRecording

if TYPE_CHECKING:
    from .client import Client

CONFLICT = 409


class Recording:
    """Starts when the `with` block begins. Is stopped and saved when the block ends, also after an exception.

    The end of the block raises NotSaved if the recording is not safely on disk, or was stopped by the user or another
    program."""

    def __init__(self, client: Client, name: Optional[str], path: Optional[str]) -> None:
        self._client = client
        self._name = name
        self._path = path
        self.path = ""
        """The record file on Ocela's computer. It can be another one after the end, if the file could not be written."""
        self.saved: Optional[SavedRecording] = None
        """Number of samples and duration. None until the recording is saved."""

    def __enter__(self) -> Recording:
        self.path = self._client.start_recording(self._name, path=self._path)
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        try:
            self.saved = self._client.stop_recording()
        except NotSaved:
            raise
        except OcelaError as problem:
            raise NotSaved(problem.title, f"{problem.detail} {self._whereabouts(problem)}", problem.status) from problem
        self.path = self.saved.path

    def mark(self, text: str, time: Optional[float] = None) -> Marker:
        """Sets a marker. See `Client.mark()`."""
        return self._client.mark(text, time)

    def _whereabouts(self, problem: OcelaError) -> str:
        """Describes where the data of the recording is."""
        if isinstance(problem, NotRunning):
            return f"If Ocela has ended, its next start recovers the recording beside {self.path}."
        if problem.status != CONFLICT:
            return f"The recording to {self.path} still runs."
        state = self._client.state()
        for running in state.recordings:
            if running.path == self.path:
                return (f"The recording of {running.tracker} to {running.path} still runs, because another tracker was "
                        f"selected. Select {running.tracker} and stop it.")
        last = state.last_recording
        if last and last.saved:
            return f"The recording was stopped by somebody else. The last recording was saved as {last.path}."
        reason = f" The last recording was not saved: {last.error}" if last and last.error else ""
        return f"The recording to {self.path} was stopped by somebody else.{reason}"
