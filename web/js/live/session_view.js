// @ts-check
import { byId, element, inputById, setText } from '../shared/dom.js';
import { clock, number, text, timeOfDay } from '../shared/language.js';
import { calibrationResult, screenName } from '../shared/state_texts.js';
/** @import { LiveModel, Marker, Recording, ScreenSize, State } from '../shared/live_model.js' */

const shownMarkerCount = 8;

const lightTexts = /** @type {const} */ ({ on: 'recordingOn', off: 'recordingOff', unknown: 'recordingUnknown' });

/** The contents that are shown now, by the ids of their elements. @type {Record<string, string>} */
const shown = {};

/**
 * Calls `show` if the content of an element or the language has changed since the last call. An unchanged element is not
 * written again, because that would close an open list, and a screen reader would read it aloud.
 *
 * @template T
 * @param {string} id
 * @param {T} content
 * @param {(content: T) => void} show
 */
function update(id, content, show) {
    const next = document.documentElement.lang + JSON.stringify(content);
    if (next === shown[id]) return;
    shown[id] = next;
    show(content);
}

/**
 * Shows the trackers, the recordings, the calibration and the markers.
 *
 * @param {LiveModel} model
 */
export function showSession({ state, markers, lostReason }) {
    update('light', lightOf(state, lostReason), showLight);
    update('markers', markers.slice(-shownMarkerCount).reverse(), showMarkers);
    if (!state) return;
    update('tracker', { names: state.trackers, selected: state.tracker?.name ?? '' }, showTrackers);
    update('screen', state.screens, showScreens);
    update('recordings', recordingsOf(state), showRecordings);
    setText('last-recording', lastRecordingText(state));
    byId('last-recording').classList.toggle('refused', state.lastRecording?.saved === false);
    setText('calibration-state', calibrationText(state));
    const records = state.recordings.some(({ tracker }) => tracker === state.tracker?.name);
    enable('start-record', state.tracker !== null && !records);
    enable('stop-record', records);
    enable('calibrate', (state.tracker?.connected ?? false) && !state.calibration.running);
    enable('stop-calibration', state.calibration.running);
}

/** Selects the tracker of the last state again, after a choice that was refused. */
export function resetTracker() {
    delete shown.tracker;
}

/**
 * @param {string} id
 * @param {boolean} enabled
 */
function enable(id, enabled) {
    const control = inputById(id);
    if (control.disabled === enabled) control.disabled = !enabled;
}

/**
 * Without a connection, it is unknown whether a recording runs.
 *
 * @param {State | null} state
 * @param {string | null} lostReason
 */
function lightOf(state, lostReason) {
    if (!state || lostReason !== null) return 'unknown';
    return state.recordings.length > 0 ? 'on' : 'off';
}

/** @param {keyof typeof lightTexts} light */
function showLight(light) {
    byId('light').dataset.light = light;
    setText('light', text(lightTexts[light]));
}

/** @param {{ names: string[], selected: string }} trackers */
function showTrackers({ names, selected }) {
    const options = (selected ? names : ['', ...names]).map(name => option(name, name || text('noTracker'), name === selected));
    byId('tracker').replaceChildren(...options);
}

/** @param {ScreenSize[]} screens */
function showScreens(screens) {
    const chosen = inputById('screen').value;
    byId('screen').replaceChildren(...screens.map(screen => {
        const value = String(screen.number);
        return option(value, screenName(screen), chosen ? chosen === value : screen.primary);
    }));
}

/**
 * @param {string} value
 * @param {string} label
 * @param {boolean} selected
 */
function option(value, label, selected) {
    const created = /** @type {HTMLOptionElement} */ (element('option', label));
    Object.assign(created, { value, selected });
    return created;
}

/** @param {string[][]} recordings the lines of each recording */
function showRecordings(recordings) {
    byId('recordings').replaceChildren(...recordings.map(lines => {
        const item = element('li');
        item.append(...lines.map(line => element('p', line)));
        return item;
    }));
}

/**
 * Returns the lines of each recording.
 *
 * @param {State} state
 */
function recordingsOf({ recordings, tracker }) {
    return recordings.map(recording => {
        const length = lengthOf(recording);
        return [recording.tracker === tracker?.name ? length : `${recording.tracker}: ${length}`, recording.path];
    });
}

/** @param {Recording} recording */
function lengthOf({ durationMs, samples, events }) {
    return text('recordingLength', { duration: clock(durationMs), samples: number(samples), events: number(events) });
}

/** @param {State} state */
function lastRecordingText({ lastRecording, recordings }) {
    if (!lastRecording || recordings.length > 0) return '';
    const { path, samples, saved, error } = lastRecording;
    if (saved) return text('lastSaved', { path, samples: number(samples) });
    return text('lastNotSaved', { error: error ?? '' });
}

/** @param {State} state */
function calibrationText({ calibration: { running, last } }) {
    if (running) return text('calibrationRuns');
    if (!last) return '';
    return calibrationResult(last);
}

/** @param {Marker[]} markers */
function showMarkers(markers) {
    byId('markers').replaceChildren(...markers.map(marker => {
        const item = element('li', `${timeOfDay(new Date(marker.time))}  `);
        item.append(element('b', marker.text));
        return item;
    }));
}
