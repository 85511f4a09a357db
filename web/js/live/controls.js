// @ts-check
import { call, saveTimeoutMs } from '../shared/api.js';
import { byId, inputById } from '../shared/dom.js';
import { clock, number, text } from '../shared/language.js';
import { showRequest } from './requests.js';
import { resetTracker } from './session_view.js';

/**
 * Returns the description of a recording for POST /recording. A file name without a folder means the records folder.
 *
 * @param {string} file
 */
export function recordingAt(file) {
    if (!file) return {};
    return /[/\\]/.test(file) ? { path: file } : { name: file.replace(/\.csv$/i, '') };
}

/** Connects the fields and buttons, and shows the outcome of each request. */
export function startControls() {
    onSubmit('record', startRecording);
    onSubmit('marker', setMarker);
    onSubmit('calibration', startCalibration);
    byId('stop-record').addEventListener('click', stopRecording);
    byId('stop-calibration').addEventListener('click', stopCalibration);
    byId('tracker').addEventListener('change', chooseTracker);
}

/**
 * @param {string} id
 * @param {() => void} submit
 */
function onSubmit(id, submit) {
    byId(id).addEventListener('submit', event => {
        event.preventDefault();
        submit();
    });
}

function startRecording() {
    const file = inputById('path').value.trim();
    showRequest(() => text('startRecordAt', { path: file || text('defaultPath') }), async () => {
        const { path } = await call('POST', 'recording', { body: recordingAt(file) });
        return () => text('recordingTo', { path });
    });
}

function stopRecording() {
    showRequest(() => text('stopRecord'), async () => {
        const { path, samples, durationMs } = await call('DELETE', 'recording', { waitMs: saveTimeoutMs });
        return () => text('savedTo', { path, samples: number(samples), duration: clock(durationMs) });
    });
}

/** The text stays in the field and is selected: Enter sets it again, and typing replaces it. */
function setMarker() {
    const field = inputById('marker-text');
    const marker = field.value.trim();
    field.select();
    showRequest(() => text('setMarkerOf', { text: marker }), async () => {
        const { recorded } = await call('POST', 'events', { body: { text: marker } });
        return () => text(recorded ? 'markerRecorded' : 'markerNotRecorded');
    });
}

function startCalibration() {
    const screen = Number(inputById('screen').value);
    showRequest(() => text('calibrateScreen', { screen }), async () => {
        await call('POST', 'calibration', { body: { screen } });
        return () => text('calibrationStarts');
    });
}

function stopCalibration() {
    showRequest(() => text('stopCalibration'), async () => {
        await call('DELETE', 'calibration');
        return () => text('calibrationStops');
    });
}

async function chooseTracker() {
    const name = inputById('tracker').value;
    const done = await showRequest(() => text('chooseTracker', { name }), async () => {
        await call('PUT', 'tracker', { body: { name } });
        return () => text('trackerChosen');
    });
    if (!done) resetTracker();
}
