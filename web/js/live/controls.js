import { byId, element } from '../shared/dom.js';
import { onLanguage, text, timeOfDay } from '../shared/language.js';
import { ask, calibratePath, startRecordPath } from './api.js';

/** Older requests are forgotten. */
const mostRequests = 6;

/** Newest first: { date, title, outcome, refused }, the texts as functions, as the language may change. */
const requests = [];

/** Makes the buttons work, and shows what became of each request as far as the service tells. */
export function startControls() {
    byId('record').addEventListener('submit', event => {
        event.preventDefault();
        const path = byId('path').value.trim();
        send(startRecordPath(path), () => text('startRecordAt', { path: path || text('defaultPath') }));
    });
    byId('calibration').addEventListener('submit', event => {
        event.preventDefault();
        const screen = byId('screen').valueAsNumber;
        send(calibratePath(screen), () => text('calibrateScreen', { screen }));
    });
    byId('stop-record').addEventListener('click', () => send('/stoprecord', () => text('stopRecord')));
    byId('stop-calibration').addEventListener('click', () => send('/stopcalibration', () => text('stopCalibration')));
    onLanguage(showRequests);
}

async function send(path, title) {
    const request = { date: new Date(), title, outcome: () => text('waiting'), refused: false };
    requests.unshift(request);
    requests.splice(mostRequests);
    showRequests();
    Object.assign(request, await outcomeOf(path));
    showRequests();
}

/** POST, as it changes something: nothing repeats it behind our back. */
async function outcomeOf(path) {
    try {
        const answer = await ask(path, { method: 'POST' });
        if (answer.result === true) return { outcome: () => text('queued') };
        const outcome = () => (answer.error ? text('refusedBecause', { error: answer.error }) : text('refused'));
        return { outcome, refused: true };
    } catch (error) {
        return { outcome: () => text('unanswered', { error: error.message }), refused: true };
    }
}

function showRequests() {
    byId('requests').replaceChildren(...requests.map(toItem));
}

function toItem(request) {
    const item = element('li', `${timeOfDay(request.date)}  ${request.title()} `, request.refused ? 'refused' : '');
    item.append(element('br', ''), element('b', request.outcome()));
    return item;
}
