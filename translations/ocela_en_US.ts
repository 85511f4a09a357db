<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>AccessButton</name>
    <message>
        <source>Other computers can reach Ocela</source>
        <translation>Other computers can reach Ocela</translation>
    </message>
    <message>
        <source>Only this computer can reach Ocela</source>
        <translation>Only this computer can reach Ocela</translation>
    </message>
    <message>
        <source>%1. Click to change it in the settings.</source>
        <translation>%1. Click to change it in the settings.</translation>
    </message>
</context>
<context>
    <name>AccessTab</name>
    <message>
        <source>These entries are not web origins and are ignored: %1. Write each origin without a path, for example https://lab.example or http://192.0.2.20:8080.</source>
        <translation>These entries are not web origins and are ignored: %1. Write each origin without a path, for example https://lab.example or http://192.0.2.20:8080.</translation>
    </message>
</context>
<context>
    <name>CalibrationWidget</name>
    <message>
        <source>Нажмите ESC для выхода</source>
        <translation>Press ESC to exit</translation>
    </message>
    <message>
        <source>Нажмите Пробел для начала калибровки</source>
        <translation>Press Space to start the calibration</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>Calibration</translation>
    </message>
    <message>
        <source>Move until the orange circle (your eyes) is in the grey box</source>
        <translation>Move until the orange circle (your eyes) is in the grey box</translation>
    </message>
    <message>
        <source>Point %1 of %2</source>
        <translation>Point %1 of %2</translation>
    </message>
</context>
<context>
    <name>Dashboard</name>
    <message>
        <source>The browser cannot be opened. Open this page:</source>
        <translation>The browser cannot be opened. Open this page:</translation>
    </message>
</context>
<context>
    <name>EyetechCalibrationWidget</name>
    <message>
        <source>Save</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>Recalibrate</source>
        <translation>Recalibrate</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>Calibration</translation>
    </message>
    <message>
        <source>Press Escape or click to close this screen.</source>
        <translation>Press Escape or click to close this screen.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker refused to start it.</source>
        <translation>The calibration has failed: the tracker refused to start it.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker did not return its targets.</source>
        <translation>The calibration has failed: the tracker did not return its targets.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker was lost. Check its cable and calibrate again.</source>
        <translation>The calibration has failed: the tracker was lost. Check its cable and calibrate again.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker refused its result.</source>
        <translation>The calibration has failed: the tracker refused its result.</translation>
    </message>
    <message>
        <source>The tracker does not accept this target and tries again. Look at its centre, or press Escape to cancel.</source>
        <translation>The tracker does not accept this target and tries again. Look at its centre, or press Escape to cancel.</translation>
    </message>
    <message>
        <source>L: left eye, R: right eye</source>
        <translation>L: left eye, R: right eye</translation>
    </message>
    <message>
        <source>A smaller score is better, below 10 is good</source>
        <translation>A smaller score is better, below 10 is good</translation>
    </message>
</context>
<context>
    <name>EyetechDeviceQuestion</name>
    <message>
        <source>%1, serial number %2</source>
        <translation>%1, serial number %2</translation>
    </message>
    <message>
        <source>Choose an EyeTech tracker</source>
        <translation>Choose an EyeTech tracker</translation>
    </message>
    <message>
        <source>Several EyeTech trackers are attached. Which one do you want to use?</source>
        <translation>Several EyeTech trackers are attached. Which one do you want to use?</translation>
    </message>
    <message>
        <source>Ocela remembers its serial number. You can change the number in the settings.</source>
        <translation>Ocela remembers its serial number. You can change the number in the settings.</translation>
    </message>
    <message>
        <source>Use</source>
        <translation>Use</translation>
    </message>
    <message>
        <source>Not now</source>
        <translation>Not now</translation>
    </message>
</context>
<context>
    <name>EyetechGrabber</name>
    <message>
        <source>no device found</source>
        <translation>no device found</translation>
    </message>
    <message>
        <source>device not available</source>
        <translation>device not available</translation>
    </message>
    <message>
        <source>several devices attached, none chosen</source>
        <translation>several devices attached, none chosen</translation>
    </message>
</context>
<context>
    <name>EyetechVideoDisplayWidget</name>
    <message>
        <source>The colour of the markers rates your distance: green is good, red is too near or too far. Click to see the pupils under the markers.</source>
        <translation>The colour of the markers rates your distance: green is good, red is too near or too far. Click to see the pupils under the markers.</translation>
    </message>
</context>
<context>
    <name>EyetrackerConnectedWidget</name>
    <message>
        <source>No tracker</source>
        <translation>No tracker</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Connected</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>Disconnected</translation>
    </message>
</context>
<context>
    <name>EyetrackerInterface</name>
    <message>
        <source>library %1 not found</source>
        <translation>library %1 not found</translation>
    </message>
    <message>
        <source>library %1 cannot be loaded, see Ocela.log</source>
        <translation>library %1 cannot be loaded, see Ocela.log</translation>
    </message>
</context>
<context>
    <name>EyetrackerSampleViewer</name>
    <message>
        <source>Left eye</source>
        <translation>Left eye</translation>
    </message>
    <message>
        <source>Right eye</source>
        <translation>Right eye</translation>
    </message>
    <message>
        <source>Common</source>
        <translation>Common</translation>
    </message>
    <message>
        <source>Valid</source>
        <translation>Valid</translation>
    </message>
    <message>
        <source>Eyes</source>
        <translation>Eyes</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Focus</source>
        <translation>Focus</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Distance</translation>
    </message>
    <message>
        <source>Pupil</source>
        <translation>Pupil</translation>
    </message>
    <message>
        <source>cm</source>
        <translation>cm</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>mm</translation>
    </message>
    <message>
        <source>0: the eye was detected. -: the eye was not detected.</source>
        <translation>0: the eye was detected. -: the eye was not detected.</translation>
    </message>
    <message>
        <source>0.0 if the tracker does not measure this value.</source>
        <translation>0.0 if the tracker does not measure this value.</translation>
    </message>
    <message>
        <source>No sample yet</source>
        <translation>No sample yet</translation>
    </message>
    <message>
        <source>Not live since %1</source>
        <translation>Not live since %1</translation>
    </message>
</context>
<context>
    <name>GazePoint</name>
    <message>
        <source>server not running at %1</source>
        <translation>server not running at %1</translation>
    </message>
    <message>
        <source>no connection to %1: %2</source>
        <translation>no connection to %1: %2</translation>
    </message>
</context>
<context>
    <name>GazeTrailView</name>
    <message>
        <source>No gaze</source>
        <translation>No gaze</translation>
    </message>
</context>
<context>
    <name>Generic</name>
    <message>
        <source>Common</source>
        <translation>Common</translation>
    </message>
    <message>
        <source>AutoRun</source>
        <translation>Start with the system</translation>
    </message>
    <message>
        <source>RecordsPath</source>
        <translation>Records folder</translation>
    </message>
    <message>
        <source>DescribeRecordings</source>
        <translation>Add a description to recordings</translation>
    </message>
    <message>
        <source>HideWindowOnStart</source>
        <translation>Hide the window at start</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Ocela уже запущена</source>
        <translation>Ocela is already running</translation>
    </message>
    <message>
        <source>Calibration_5_points</source>
        <translation>5 points</translation>
    </message>
    <message>
        <source>Calibration_9_points</source>
        <translation>9 points</translation>
    </message>
    <message>
        <source>Calibration_16_points</source>
        <translation>16 points</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>Calibration</translation>
    </message>
    <message>
        <source>CalibrationTimeMs</source>
        <translation>Time on a target</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>ms</translation>
    </message>
    <message>
        <source>CalibrationAnimationMs</source>
        <translation>Time of movement</translation>
    </message>
    <message>
        <source>CalibrationDelayMs</source>
        <translation>Pause before a target</translation>
    </message>
    <message>
        <source>DeviceSerialNumber</source>
        <translation>Serial number of the device</translation>
    </message>
    <message>
        <source>Several devices</source>
        <translation>Several devices</translation>
    </message>
    <message>
        <source>AllowOtherComputers</source>
        <translation>Other computers may use Ocela</translation>
    </message>
    <message>
        <source>Access</source>
        <translation>Access</translation>
    </message>
    <message>
        <source>AllowForeignPages</source>
        <translation>Web pages of other sites may use the simple API</translation>
    </message>
    <message>
        <source>AllowedOrigins</source>
        <translation>Allowed web origins</translation>
    </message>
    <message>
        <source>ServeAnyFile</source>
        <translation>Serve any file of this computer</translation>
    </message>
    <message>
        <source>Every computer that can connect to this one can read the gaze and control Ocela. There is no password. If this is off, only programs and web pages on this computer can use Ocela.</source>
        <translation>Every computer that can connect to this one can read the gaze and control Ocela. There is no password. If this is off, only programs and web pages on this computer can use Ocela.</translation>
    </message>
    <message>
        <source>Every web page that is open in a browser can read the gaze, control Ocela and fetch files. If this is off, only Ocela&apos;s own pages and pages of the allowed web origins can use Ocela.</source>
        <translation>Every web page that is open in a browser can read the gaze, control Ocela and fetch files. If this is off, only Ocela&apos;s own pages and pages of the allowed web origins can use Ocela.</translation>
    </message>
    <message>
        <source>Web sites whose pages can always use Ocela and its API for programs, separated by spaces. For example: https://lab.example http://192.0.2.20:8080</source>
        <translation>Web sites whose pages can always use Ocela and its API for programs, separated by spaces. For example: https://lab.example http://192.0.2.20:8080</translation>
    </message>
    <message>
        <source>Programs and web pages that use Ocela can read every file that you can read, and save recordings in every folder. If this is off, they can read only the files of Ocela&apos;s web pages and the recordings in the records folder, and save recordings only there.</source>
        <translation>Programs and web pages that use Ocela can read every file that you can read, and save recordings in every folder. If this is off, they can read only the files of Ocela&apos;s web pages and the recordings in the records folder, and save recordings only there.</translation>
    </message>
    <message>
        <source>LslStreams</source>
        <translation>Streams for the Lab Streaming Layer (LSL)</translation>
    </message>
    <message>
        <source>LSL</source>
        <translation>LSL</translation>
    </message>
    <message>
        <source>Programs of the Lab Streaming Layer, for example LabRecorder, can receive the gaze of the selected tracker and the markers. There is no password: every computer in the local network can receive them.</source>
        <translation>Programs of the Lab Streaming Layer, for example LabRecorder, can receive the gaze of the selected tracker and the markers. There is no password: every computer in the local network can receive them.</translation>
    </message>
</context>
<context>
    <name>LslStreams</name>
    <message>
        <source>LSL streams could not be opened. Other programs may use all of their ports.</source>
        <translation>LSL streams could not be opened. Other programs may use all of their ports.</translation>
    </message>
    <message>
        <source>LSL streams need the library liblsl, which cannot be used: %1. Get it from https://github.com/sccn/liblsl/releases and copy it beside the program. Then turn the setting off and on again.</source>
        <translation>LSL streams need the library liblsl, which cannot be used: %1. Get it from https://github.com/sccn/liblsl/releases and copy it beside the program. Then turn the setting off and on again.</translation>
    </message>
    <message>
        <source>The LSL library does not respond, so the LSL streams send nothing. If this message stays, restart Ocela.</source>
        <translation>The LSL library does not respond, so the LSL streams send nothing. If this message stays, restart Ocela.</translation>
    </message>
</context>
<context>
    <name>MainPage</name>
    <message>
        <source>Open dashboard</source>
        <translation>Open dashboard</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Main</source>
        <translation>Main</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>Ocela</source>
        <translation>Ocela</translation>
    </message>
    <message>
        <source>Other programs cannot reach Ocela: %1</source>
        <translation>Other programs cannot reach Ocela: %1</translation>
    </message>
    <message>
        <source>&quot;Start with the system&quot; could not be changed:</source>
        <translation>&quot;Start with the system&quot; could not be changed:</translation>
    </message>
</context>
<context>
    <name>OcelaHTTPExchange</name>
    <message>
        <source>Port %1 is used by another program</source>
        <translation>Port %1 is used by another program</translation>
    </message>
    <message>
        <source>Port %1 cannot be used: %2</source>
        <translation>Port %1 cannot be used: %2</translation>
    </message>
</context>
<context>
    <name>PropertyEditor</name>
    <message>
        <source>on</source>
        <translation>on</translation>
    </message>
    <message>
        <source>off</source>
        <translation>off</translation>
    </message>
    <message>
        <source>empty</source>
        <translation>empty</translation>
    </message>
    <message>
        <source>Choose a folder</source>
        <translation>Choose a folder</translation>
    </message>
</context>
<context>
    <name>PropertyListControl</name>
    <message>
        <source>Reset to default: %1</source>
        <translation>Reset to default: %1</translation>
    </message>
</context>
<context>
    <name>RecordingKeeper</name>
    <message>
        <source>A recording is running: %1</source>
        <translation>A recording is running: %1</translation>
    </message>
    <message>
        <source>Stop it and save the record file before Ocela closes?</source>
        <translation>Stop it and save the record file before Ocela closes?</translation>
    </message>
    <message>
        <source>Stop and save</source>
        <translation>Stop and save</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Discard</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>A recording could not be saved.</source>
        <translation>A recording could not be saved.</translation>
    </message>
    <message>
        <source>Its samples stay in memory until Ocela closes.</source>
        <translation>Its samples stay in memory until Ocela closes.</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Try again</translation>
    </message>
    <message>
        <source>Choose a folder...</source>
        <translation>Choose a folder...</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Later</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>Save as</translation>
    </message>
    <message>
        <source>Record files (*.csv)</source>
        <translation>Record files (*.csv)</translation>
    </message>
</context>
<context>
    <name>RecordingStatusLine</name>
    <message>
        <source>Open folder</source>
        <translation>Open folder</translation>
    </message>
    <message>
        <source>Open in the viewer</source>
        <translation>Open in the viewer</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>Retry</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>Save as</translation>
    </message>
    <message>
        <source>discarded</source>
        <translation>discarded</translation>
    </message>
    <message>
        <source>The folder cannot be opened:</source>
        <translation>The folder cannot be opened:</translation>
    </message>
</context>
<context>
    <name>SessionStrip</name>
    <message>
        <source>A file name cannot contain these characters: %1</source>
        <translation>A file name cannot contain these characters: %1</translation>
    </message>
    <message>
        <source>The text has at most %1 characters.</source>
        <translation>The text has at most %1 characters.</translation>
    </message>
    <message>
        <source>Participant</source>
        <translation>Participant</translation>
    </message>
    <message>
        <source>Session</source>
        <translation>Session</translation>
    </message>
    <message>
        <source>Task</source>
        <translation>Task</translation>
    </message>
    <message>
        <source>Optional. Added to the file name of recordings that you start with &quot;Start record&quot;.</source>
        <translation>Optional. Added to the file name of recordings that you start with &quot;Start record&quot;.</translation>
    </message>
</context>
<context>
    <name>SettingsNotice</name>
    <message>
        <source>The settings file %1 cannot be read: %2</source>
        <translation>The settings file %1 cannot be read: %2</translation>
    </message>
    <message>
        <source>The defaults apply, and changes are not saved. Start Ocela again to use the file.</source>
        <translation>The defaults apply, and changes are not saved. Start Ocela again to use the file.</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Доступна новая версия</source>
        <translation>A new version is available</translation>
    </message>
</context>
<context>
    <name>StatusTexts</name>
    <message>
        <source>Not connected</source>
        <translation>Not connected</translation>
    </message>
    <message>
        <source>Not connected: %1</source>
        <translation>Not connected: %1</translation>
    </message>
    <message>
        <source>Connected, but no samples for %1</source>
        <translation>Connected, but no samples for %1</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Connected</translation>
    </message>
    <message>
        <source>Connected, %1 Hz, %2 % valid</source>
        <translation>Connected, %1 Hz, %2 % valid</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Recording</translation>
    </message>
    <message>
        <source>Recording (%1)</source>
        <translation>Recording (%1)</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>Saved %1</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Not saved: %1</translation>
    </message>
    <message numerus="yes">
        <source>%1 sample(s)</source>
        <translation>
            <numerusform>%1 sample</numerusform>
            <numerusform>%1 samples</numerusform>
        </translation>
    </message>
    <message>
        <source>connection lost</source>
        <translation>connection lost</translation>
    </message>
    <message>
        <source>Calibration done</source>
        <translation>Calibration done</translation>
    </message>
    <message>
        <source>Calibration failed</source>
        <translation>Calibration failed</translation>
    </message>
    <message>
        <source>Calibration cancelled</source>
        <translation>Calibration cancelled</translation>
    </message>
    <message>
        <source>Calibration result unknown</source>
        <translation>Calibration result unknown</translation>
    </message>
    <message>
        <source>Interrupted recording recovered: %1</source>
        <translation>Interrupted recording recovered: %1</translation>
    </message>
    <message numerus="yes">
        <source>%1 marker(s)</source>
        <translation>
            <numerusform>%1 marker</numerusform>
            <numerusform>%1 markers</numerusform>
        </translation>
    </message>
    <message>
        <source>Marker %1 set</source>
        <translation>Marker %1 set</translation>
    </message>
    <message>
        <source>Marker set; no recording is running</source>
        <translation>Marker set; no recording is running</translation>
    </message>
    <message>
        <source>Marker not stored: the recording has too many markers</source>
        <translation>Marker not stored: the recording has too many markers</translation>
    </message>
</context>
<context>
    <name>TrackerStatusLine</name>
    <message>
        <source>Reconnect</source>
        <translation>Reconnect</translation>
    </message>
    <message>
        <source>Opens the tracker again. A running recording continues.</source>
        <translation>Opens the tracker again. A running recording continues.</translation>
    </message>
    <message>
        <source>Validate</source>
        <translation>Validate</translation>
    </message>
    <message>
        <source>Opens a page in the browser that measures the accuracy of the calibration in degrees.</source>
        <translation>Opens a page in the browser that measures the accuracy of the calibration in degrees.</translation>
    </message>
</context>
<context>
    <name>TrackerViewWidget</name>
    <message>
        <source>Calibrate</source>
        <translation>Calibrate</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Start record</source>
        <translation>Start record</translation>
    </message>
    <message>
        <source>Stop record</source>
        <translation>Stop record</translation>
    </message>
    <message>
        <source>Control cursor (Press F10)</source>
        <translation>Control cursor (Press F10)</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Screen</translation>
    </message>
    <message>
        <source>F9 sets a marker in the recording.</source>
        <translation>F9 sets a marker in the recording.</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Show window</source>
        <translation>Show window</translation>
    </message>
    <message>
        <source>Open dashboard</source>
        <translation>Open dashboard</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>Eye Tracker Service</source>
        <translation>Eye Tracker Service</translation>
    </message>
    <message>
        <source>Recording: %1</source>
        <translation>Recording: %1</translation>
    </message>
    <message>
        <source>Recording saved</source>
        <translation>Recording saved</translation>
    </message>
    <message>
        <source>Recording not saved</source>
        <translation>Recording not saved</translation>
    </message>
    <message>
        <source>Connection lost</source>
        <translation>Connection lost</translation>
    </message>
    <message>
        <source>Interrupted recording recovered</source>
        <translation>Interrupted recording recovered</translation>
    </message>
    <message>
        <source>Ocela continues in the background. To end it, choose Quit in the menu of this icon.</source>
        <translation>Ocela continues in the background. To end it, choose Quit in the menu of this icon.</translation>
    </message>
    <message>
        <source>No samples</source>
        <translation>No samples</translation>
    </message>
    <message>
        <source>%1 is recording, but sends no samples. Open the window, choose this tracker and press Reconnect.</source>
        <translation>%1 is recording, but sends no samples. Open the window, choose this tracker and press Reconnect.</translation>
    </message>
</context>
<context>
    <name>VTSettings</name>
    <message>
        <source>it is not a regular file</source>
        <translation>it is not a regular file</translation>
    </message>
    <message>
        <source>it is damaged and cannot be renamed</source>
        <translation>it is damaged and cannot be renamed</translation>
    </message>
</context>
<context>
    <name>aSeePro</name>
    <message>
        <source>not calibrated</source>
        <translation>not calibrated</translation>
    </message>
    <message>
        <source>device cannot be opened (error %1)</source>
        <translation>device cannot be opened (error %1)</translation>
    </message>
    <message>
        <source>device does not start (error %1)</source>
        <translation>device does not start (error %1)</translation>
    </message>
    <message>
        <source>calibrated, reconnect to use it</source>
        <translation>calibrated, reconnect to use it</translation>
    </message>
</context>
<context>
    <name>asee::CalibrationOutcome</name>
    <message>
        <source>The calibration is finished and saved</source>
        <translation>The calibration is finished and saved</translation>
    </message>
    <message>
        <source>The calibration has failed</source>
        <translation>The calibration has failed</translation>
    </message>
    <message>
        <source>Scores: left eye %1, right eye %2</source>
        <translation>Scores: left eye %1, right eye %2</translation>
    </message>
    <message>
        <source>The tracker did not start the calibration (%1)</source>
        <translation>The tracker did not start the calibration (%1)</translation>
    </message>
    <message>
        <source>The tracker refused point %1 of %2 (%3)</source>
        <translation>The tracker refused point %1 of %2 (%3)</translation>
    </message>
    <message>
        <source>The tracker could not compute the calibration (%1)</source>
        <translation>The tracker could not compute the calibration (%1)</translation>
    </message>
    <message>
        <source>The tracker refused the new calibration (%1)</source>
        <translation>The tracker refused the new calibration (%1)</translation>
    </message>
    <message>
        <source>The calibration is used, but not saved, see Ocela.log</source>
        <translation>The calibration is used, but not saved, see Ocela.log</translation>
    </message>
    <message>
        <source>its library is not available</source>
        <translation>its library is not available</translation>
    </message>
    <message>
        <source>error %1</source>
        <translation>error %1</translation>
    </message>
</context>
</TS>
