"""Client of Ocela, the eye-tracking service.

The functions of this module use Ocela on this computer. For another computer, create a Client.

    import ocela

    with ocela.recording("P01_reading") as recording:
        ocela.mark("stimulus on")
        for sample in ocela.samples():
            print(sample.time, sample.x, sample.y)
"""
from ._version import __version__
from .bids import BidsExport, BidsSetup, export_bids
from .client import Client
from .errors import CalibrationFailed, NotExported, NotRunning, NotSaved, OcelaError
from .model import (Access, Area, Calibration, CalibrationResult, ClockOffset, Event, LastRecording, Marker, Missed,
                    RecordFile, RunningRecording, Sample, Samples, SavedRecording, Screen, State, Tracker)
from .recording import Recording

_default = Client()

state = _default.state
screens = _default.screens
set_tracker = _default.set_tracker
clock_offset = _default.clock_offset
samples = _default.samples
events = _default.events
samples_after = _default.samples_after
recording = _default.recording
start_recording = _default.start_recording
stop_recording = _default.stop_recording
recordings = _default.recordings
download = _default.download
mark = _default.mark
calibrate = _default.calibrate
cancel_calibration = _default.cancel_calibration

__all__ = [
    "Access", "Area", "BidsExport", "BidsSetup", "Calibration", "CalibrationFailed", "CalibrationResult", "Client",
    "ClockOffset", "Event", "LastRecording", "Marker", "Missed", "NotExported", "NotRunning", "NotSaved", "OcelaError",
    "RecordFile", "Recording", "RunningRecording", "Sample", "Samples", "SavedRecording", "Screen", "State", "Tracker",
    "__version__", "calibrate", "cancel_calibration", "clock_offset", "download", "events", "export_bids", "mark",
    "recording", "recordings", "samples", "samples_after", "screens", "set_tracker", "start_recording", "state",
    "stop_recording",
]
