// @ts-check
import { byId, inputById, setText } from '../shared/dom.js';
import { number, onLanguage, text } from '../shared/language.js';
import { hideFileForm, showFileForm, startFileForm } from './file_form.js';
import { setQuality } from './quality_of.js';
import { circumstancesOfFile } from './validation.js';
/** @import { ExchangeSamples } from '../shared/exchange_file.js' */
/** @import { FileFacts } from './file_form.js' */
/** @import { Problem, WorkerReply, WorkerRequest } from './open_worker.js' */
/** @import { Validation } from './validation.js' */
/** @import { QualityTable } from './verdict.js' */

/**
 * The file that is being opened. `samples` are those of an exchange file while the form asks for the screen and the distance.
 *
 * @typedef {{ name: string, samples?: ExchangeSamples, problem?: Problem }} ChosenFile
 */

/** @type {ChosenFile | null} */
let chosen = null;

/** @type {Worker | null} */
let worker = null;

/** @type {(validation: Validation) => void} */
let showOpened = () => {};

/**
 * Connects the section, and accepts files that are dropped anywhere on the page.
 *
 * @param {object} requests
 * @param {(validation: Validation) => void} requests.opened called with the validation of a file
 */
export function startOpening({ opened }) {
    showOpened = opened;
    const input = inputById('file');
    byId('open-file').addEventListener('click', () => input.click());
    input.addEventListener('change', () => {
        read(input.files ?? []);
        // Otherwise, choosing the same file again would not cause a change event.
        input.value = '';
    });
    for (const type of /** @type {const} */ (['dragenter', 'dragover', 'dragleave', 'drop']))
        document.addEventListener(type, drag);
    startFileForm({ entered: finish, cancelled: cancel });
    onLanguage(write);
}

/** @param {DragEvent} event */
function drag(event) {
    event.preventDefault();
    document.body.classList.toggle('dropping', event.type === 'dragenter' || event.type === 'dragover');
    // A run must not be replaced by a result.
    if (event.type === 'drop' && document.documentElement.dataset.step !== 'run') read(event.dataTransfer?.files ?? []);
}

/**
 * Reads the first file. Cancels the reading of a previous file.
 *
 * @param {ArrayLike<File>} files
 */
function read({ 0: file }) {
    if (!file) return;
    const { name } = file;
    ask(name, file, reply => {
        if ('validation' in reply) return open(reply.validation, reply.table);
        if ('samples' in reply) show({ name, samples: reply.samples });
        byId('open').scrollIntoView({ block: 'nearest' });
    });
}

/**
 * Opens the exchange file whose screen and distance have been entered.
 *
 * @param {FileFacts} facts
 */
function finish(facts) {
    if (!chosen?.samples) return;
    const { name, samples: entered } = chosen;
    ask(name, { samples: entered, facts }, reply => {
        if (!('table' in reply && 'samples' in reply)) return;
        const time = Date.now();
        open({
            id: `file-${time}`, time, participant: '', session: '', tracker: '', ...facts, samples: reply.samples,
            circumstances: circumstancesOfFile(name),
        }, reply.table);
    });
}

/**
 * Sends a request to a worker, so that the page stays responsive. Shows a problem that the worker replies.
 *
 * @param {string} name
 * @param {WorkerRequest} request
 * @param {(reply: WorkerReply) => void} replied
 */
function ask(name, request, replied) {
    worker?.terminate();
    worker = new Worker(new URL('./open_worker.js', import.meta.url), { type: 'module' });
    worker.onmessage = ({ data }) => {
        if ('problem' in data) show({ name, problem: data.problem });
        replied(data);
    };
    worker.onerror = ({ message }) => show({ name, problem: { key: 'unreadable', values: { reason: message } } });
    worker.postMessage(request);
    show({ name });
}

/**
 * @param {Validation} validation
 * @param {QualityTable} table
 */
function open(validation, table) {
    show(null);
    setQuality(validation, table);
    showOpened(validation);
}

/** Cancels the reading of a file. A file whose screen and distance are being entered stays. */
export function stopReading() {
    if (!chosen?.samples) cancel();
}

function cancel() {
    worker?.terminate();
    show(null);
}

/** @param {ChosenFile | null} file */
function show(file) {
    chosen = file;
    write();
}

function write() {
    const { name = '', samples, problem } = chosen ?? {};
    byId('open-problem').hidden = !problem;
    if (problem) setText('open-problem', text('cannotShow', { name, reason: text(problem.key, problem.values) }));
    setText('open-status', chosen && !problem ? statusText(name, samples) : '');
    if (!samples) hideFileForm();
    else if (byId('file-form').hidden) showFileForm();
}

/**
 * @param {string} name
 * @param {ExchangeSamples} [samples]
 */
function statusText(name, samples) {
    if (!samples) return text('readingValidation', { name });
    const targets = new Set(samples.targetId.filter(id => id >= 0)).size;
    return text('fileRead', { name, samples: number(samples.timestampMs.length), targets: number(targets) });
}
