"""The exceptions of this package. Each of them is an OcelaError."""
from __future__ import annotations

from typing import Optional


class OcelaError(Exception):
    """A request that Ocela refused or could not carry out."""

    def __init__(self, title: str, detail: str = "", status: Optional[int] = None,
                 retry_after_s: Optional[float] = None) -> None:
        super().__init__(": ".join(part for part in (title, detail) if part))
        self.title = title
        """The kind of problem, in a few words."""
        self.detail = detail
        """What is wrong, and what to do."""
        self.status = status
        """The HTTP status. None if there is no answer."""
        self.retry_after_s = retry_after_s
        """After how many seconds to try again. None if Ocela does not say so."""


class NotRunning(OcelaError):
    """No Ocela answers at the address, or the connection was lost."""


class NotSaved(OcelaError):
    """A recording was not saved as expected. `detail` says where its data is."""


class CalibrationFailed(OcelaError):
    """A calibration failed, was cancelled, or did not end in time."""


class NotExported(OcelaError):
    """Records that cannot be exported. Nothing was written."""

    def __init__(self, detail: str) -> None:
        super().__init__("Nothing was exported", detail)
