import { byId, element } from '../shared/dom.js';
import { onLanguage, text, timeOfDay } from '../shared/language.js';
import { Refusal, ask, calibratePath, startRecordPath } from './api.js';

/** Older requests are forgotten. */
const mostRequests = 6;

/** Newest first: { item, date, title, outcome, refused }, the texts as functions, as the language may change. */
const requests = [];

/** Settled with the newest request. They go one by one: on two connections a stop may overtake its start. */
let done = Promise.resolve();

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
    onLanguage(() => requests.forEach(show));
}

async function send(path, title) {
    const item = element('li', '');
    const request = { item, date: new Date(), title, outcome: () => text('waiting'), refused: false };
    requests.unshift(request);
    show(request);
    byId('requests').prepend(item);
    for (const old of requests.splice(mostRequests)) old.item.remove();
    done = done.then(() => outcomeOf(path));
    Object.assign(request, await done);
    show(request);
}

/** POST, as it changes something: nothing repeats it behind our back. */
async function outcomeOf(path) {
    try {
        const answer = await ask(path, { method: 'POST' });
        if (answer.result === true) return { outcome: () => text('queued') };
        const outcome = () => (answer.error ? text('refusedBecause', { error: answer.error }) : text('refused'));
        return { outcome, refused: true };
    } catch (error) {
        const key = error instanceof Refusal ? 'refusedBecause' : 'unanswered';
        return { outcome: () => text(key, { error: error.message }), refused: true };
    }
}

/** Touches this request's item alone: a screen reader reads out whatever changes in the list. */
function show({ item, date, title, outcome, refused }) {
    item.className = refused ? 'refused' : '';
    item.replaceChildren(`${timeOfDay(date)}  ${title()} `, element('br', ''), element('b', outcome()));
}
