// @ts-check
import { byId, element, inputById } from '../shared/dom.js';
import { onLanguage, text, timeOfDay } from '../shared/language.js';
import { Refusal, ask, calibratePath, startRecordPath } from './api.js';

const maxRequestCount = 6;

/** Texts are functions, because the language may change. @typedef {() => string} Text */
/** @typedef {{ item: HTMLElement, date: Date, title: Text, outcome: Text, refused: boolean }} Request */

/** The shown requests, newest first. @type {Request[]} */
const requests = [];

/**
 * Resolves with the outcome of the newest request. Each request waits for the answer to the previous one. Otherwise, they
 * could use two connections, and /stoprecord could arrive before /startrecord.
 *
 * @type {Promise<Partial<Request>>}
 */
let lastOutcome = Promise.resolve({});

/** Connects the buttons and shows the outcome of each request. */
export function startControls() {
    byId('record').addEventListener('submit', event => {
        event.preventDefault();
        const path = inputById('path').value.trim();
        send(startRecordPath(path), () => text('startRecordAt', { path: path || text('defaultPath') }));
    });
    byId('calibration').addEventListener('submit', event => {
        event.preventDefault();
        const screen = inputById('screen').valueAsNumber;
        send(calibratePath(screen), () => text('calibrateScreen', { screen }));
    });
    byId('stop-record').addEventListener('click', () => send('/stoprecord', () => text('stopRecord')));
    byId('stop-calibration').addEventListener('click', () => send('/stopcalibration', () => text('stopCalibration')));
    onLanguage(() => requests.forEach(show));
}

/**
 * @param {string} path
 * @param {Text} title
 */
async function send(path, title) {
    const request = {
        item: element('li'), date: new Date(), title, outcome: () => text('waiting'), refused: false,
    };
    requests.unshift(request);
    show(request);
    byId('requests').prepend(request.item);
    for (const old of requests.splice(maxRequestCount)) old.item.remove();
    lastOutcome = lastOutcome.then(() => outcomeOf(path));
    Object.assign(request, await lastOutcome);
    show(request);
}

/**
 * Sends a POST request, because the browser never repeats it automatically, unlike GET.
 *
 * @param {string} path
 * @returns {Promise<Partial<Request>>}
 */
async function outcomeOf(path) {
    try {
        const answer = await ask(path, { method: 'POST' });
        if (answer.result === true) return { outcome: () => text('queued') };
        const outcome = () => (answer.error ? text('refusedBecause', { error: answer.error }) : text('refused'));
        return { outcome, refused: true };
    } catch (error) {
        const key = error instanceof Refusal ? 'refusedBecause' : 'unanswered';
        return { outcome: () => text(key, { error: /** @type {Error} */ (error).message }), refused: true };
    }
}

/**
 * Updates only the item of this request, because a screen reader reads every change of the list aloud.
 *
 * @param {Request} request
 */
function show({ item, date, title, outcome, refused }) {
    item.className = refused ? 'refused' : '';
    item.replaceChildren(`${timeOfDay(date)}  ${title()} `, element('br'), element('b', outcome()));
}
