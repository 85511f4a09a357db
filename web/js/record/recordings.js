// @ts-check
import { call } from '../shared/api.js';
import { byId, element, setText } from '../shared/dom.js';
import { dateAndTime, number, onLanguage, text } from '../shared/language.js';

/** A record file of the records folder. @typedef {{ name: string, bytes: number, modified: number }} RecordingEntry */

const bytesPerMb = 1e6;

/** Newest first. @type {RecordingEntry[]} */
let entries = [];

/** Why there is no list; empty if there is one. */
let problem = '';

/** Shows the record files of Ocela's records folder, each as a link that opens it. The list is read again when the tab is shown. */
export function startRecordings() {
    onLanguage(show);
    document.addEventListener('visibilitychange', () => document.hidden || update());
    update();
}

/**
 * Returns the address of the page for a record file.
 *
 * @param {string} name
 */
const addressFor = name => `/record.html?${new URLSearchParams({ recording: name })}`;

/** Returns the name of the record file in the page's address, or null. */
export function requestedRecording() {
    return new URLSearchParams(location.search).get('recording');
}

async function update() {
    try {
        entries = (await call('GET', 'recordings')).recordings;
        problem = '';
    } catch (error) {
        entries = [];
        problem = /** @type {Error} */ (error).message;
    }
    show();
}

function show() {
    byId('recordings').replaceChildren(...entries.map(itemOf));
    setText('recordings-note', noteText());
}

function noteText() {
    if (problem) return text('noList', { reason: problem });
    return entries.length === 0 ? text('noRecordings') : '';
}

/** @param {RecordingEntry} entry */
function itemOf({ name, bytes, modified }) {
    const link = /** @type {HTMLAnchorElement} */ (element('a', name));
    link.href = addressFor(name);
    const item = element('li');
    const size = text('megabytes', { value: number(bytes / bytesPerMb, 1) });
    item.append(link, element('span', `${dateAndTime(new Date(modified))} · ${size}`));
    return item;
}
