"""Sends requests to Ocela, and turns everything that goes wrong into an OcelaError."""
from __future__ import annotations

import http.client
import json
from contextlib import contextmanager
from email.message import Message
from types import TracebackType
from typing import Any, Callable, Iterator, Mapping, Optional, Type, TypeVar

from .errors import NotRunning, OcelaError

BASE = "/api/v1/"
T = TypeVar("T")


class Answer:
    """The answer to a request. Its body has not been read yet."""

    def __init__(self, connection: Connection, response: http.client.HTTPResponse) -> None:
        self._connection = connection
        self._response = response
        self.headers: Message = response.headers

    def read(self, size: Optional[int] = None) -> bytes:
        """Returns at most `size` bytes of the body, or all. Returns no bytes at the end."""
        with self._connection.reporting_errors():
            return self._response.read(size)

    def read_available(self) -> bytes:
        """Waits for data, and returns what has arrived. Returns no bytes at the end."""
        with self._connection.reporting_errors():
            return self._response.read1(65536)

    def json(self) -> Any:
        body = self.read()
        try:
            return json.loads(body)
        except ValueError:
            raise self.unexpected() from None

    def parsed(self, read: Callable[[Any], T]) -> T:
        """Returns the body as an object that `read` makes from its JSON."""
        data = self.json()
        try:
            return read(data)
        except (AttributeError, KeyError, TypeError, ValueError):
            raise self.unexpected() from None

    def unexpected(self) -> OcelaError:
        return OcelaError("Unexpected answer", f"The program at {self._connection} is not Ocela 1.3 or later.",
                          self._response.status)


class Connection:
    """A connection to Ocela. It stays open for further requests if each answer is read to its end."""

    def __init__(self, host: str, port: int, timeout: float) -> None:
        self._http = http.client.HTTPConnection(host, port, timeout=timeout)

    def __str__(self) -> str:
        host = f"[{self._http.host}]" if ":" in self._http.host else self._http.host
        return f"{host}:{self._http.port}"

    def __enter__(self) -> Connection:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self._http.close()

    def ask(self, method: str, path: str, body: Any = None, headers: Optional[Mapping[str, str]] = None) -> Answer:
        """Sends a request. Raises OcelaError if the status is not a success."""
        all_headers = dict(headers or {})
        content = None
        if body is not None:
            content = json.dumps(body).encode()
            all_headers["Content-Type"] = "application/json"
        with self.reporting_errors():
            self._http.request(method, BASE + path, content, all_headers)
            response = self._http.getresponse()
        answer = Answer(self, response)
        if not 200 <= response.status < 300:
            raise _problem(answer, response)
        return answer

    @contextmanager
    def reporting_errors(self) -> Iterator[None]:
        try:
            yield
        except (OSError, http.client.HTTPException) as error:
            reason = str(error) or type(error).__name__
            raise NotRunning("No answer", f"Ocela does not answer at {self} ({reason}). Is it running?") from error


def _problem(answer: Answer, response: http.client.HTTPResponse) -> OcelaError:
    """Reads a problem as RFC 9457 defines it. The HTTP server itself answers with plain text."""
    body = answer.read()
    retry_after = response.headers.get("Retry-After", "")
    retry_after_s = float(retry_after) if retry_after.isdecimal() else None
    try:
        problem = json.loads(body)
        title, detail = str(problem["title"]), str(problem.get("detail", ""))
    except (AttributeError, KeyError, TypeError, ValueError):
        title, detail = response.reason, body.decode("utf-8", "replace").strip()[:500]
    return OcelaError(title, detail, response.status, retry_after_s)
