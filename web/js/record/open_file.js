// @ts-check
import { addressOf, reasonOf } from '../shared/api.js';
import { allOf, inputById } from '../shared/dom.js';
import { isAttachment, nameBeside, recordingOf } from './chosen_files.js';
import { fetchAreas } from './folder_areas.js';
/** @import { FolderAreas } from './folder_areas.js' */
/** @import { Problem, RecordFile, WorkerMessage } from './parse_worker.js' */

/**
 * @typedef {object} Handlers
 * @property {(share: number) => void} progress called while a file is read, first with 0
 * @property {(file: RecordFile, fileName: string, folder: FolderAreas | null) => void} record called with the content of a record
 *     file, and with what is beside it if it is one of the records folder
 * @property {(problem: Problem, fileName: string) => void} problem called for a file that cannot be shown
 * @property {(files: File[], withRecord: boolean) => void} attachments called with the chosen areas files and images, before
 *     `progress`. `withRecord` says whether they were chosen together with a record file
 */

/** @type {Worker | null} */
let worker = null;

/** Cancels the download of a recording. */
let download = new AbortController();

/**
 * Reads the files of a recording in a worker, so that the page stays responsive. Cancels the reading of previous files.
 *
 * @param {Iterable<File>} chosen
 * @param {Handlers} handlers
 * @param {FolderAreas | null} folder
 */
function read(chosen, handlers, folder = null) {
    const all = [...chosen];
    const files = recordingOf(all.filter(file => !isAttachment(file)));
    handlers.attachments(all.filter(isAttachment), files !== null);
    if (!files) return;
    const { name } = files.record;
    download.abort();
    worker?.terminate();
    worker = new Worker(new URL('./parse_worker.js', import.meta.url), { type: 'module' });
    worker.onmessage = ({ data }) => handle(data, name, handlers, folder);
    worker.onerror = ({ message }) => handlers.problem({ key: 'unreadable', values: { reason: message } }, name);
    handlers.progress(0);
    worker.postMessage(files);
}

/**
 * @param {WorkerMessage} message
 * @param {string} fileName
 * @param {Handlers} handlers
 * @param {FolderAreas | null} folder
 */
function handle(message, fileName, handlers, folder) {
    if ('progress' in message) handlers.progress(message.progress);
    else if ('record' in message) handlers.record(message.record, fileName, folder);
    else handlers.problem(message.problem, fileName);
}

/**
 * Opens a record file of Ocela's records folder, with its samples file, its events file and its areas.
 *
 * @param {string} name
 * @param {Handlers} handlers
 */
export async function openRecording(name, handlers) {
    download = new AbortController();
    const { signal } = download;
    handlers.progress(0);
    try {
        const answer = await fetch(addressOf('recordings', name), { signal });
        if (!answer.ok) {
            handlers.problem(await problemOf(answer), name);
            return;
        }
        const record = new File([await answer.blob()], name);
        const [areas, ...beside] = await Promise.all([
            fetchAreas(name, signal), fileBeside(name, 'samples', signal), fileBeside(name, 'events', signal),
        ]);
        read([record, ...beside.flat()], handlers, { areas });
    } catch (error) {
        if (signal.aborted) return;
        handlers.problem({ key: 'notDelivered', values: { reason: /** @type {Error} */ (error).message } }, name);
    }
}

/**
 * Returns a file beside a record file, or an empty array if there is none.
 *
 * @param {string} name of the record file
 * @param {'samples' | 'events'} kind
 * @param {AbortSignal} signal
 */
async function fileBeside(name, kind, signal) {
    const answer = await fetch(`${addressOf('recordings', name)}?file=${kind}`, { signal });
    if (answer.status === 404) return [];
    if (!answer.ok) throw new Error(await reasonOf(answer));
    return [new File([await answer.blob()], nameBeside(name, `_${kind}.csv`))];
}

/**
 * @param {Response} answer
 * @returns {Promise<Problem>}
 */
async function problemOf(answer) {
    if (answer.status === 404) return { key: 'noSuchRecording', values: {} };
    return { key: 'notDelivered', values: { reason: await reasonOf(answer) } };
}

/**
 * Connects the buttons that open files, and accepts files that are dropped anywhere on the page.
 *
 * @param {Handlers} handlers
 */
export function startOpening(handlers) {
    const input = inputById('file');
    for (const button of allOf('.open-file')) button.addEventListener('click', () => input.click());
    input.addEventListener('change', () => {
        read(input.files ?? [], handlers);
        // Otherwise, choosing the same file again would not cause a change event.
        input.value = '';
    });
    for (const type of /** @type {const} */ (['dragenter', 'dragover', 'dragleave', 'drop']))
        document.addEventListener(type, event => drag(event, handlers));
}

/**
 * @param {DragEvent} event
 * @param {Handlers} handlers
 */
function drag(event, handlers) {
    event.preventDefault();
    document.body.classList.toggle('dropping', event.type === 'dragenter' || event.type === 'dragover');
    if (event.type === 'drop') read(event.dataTransfer?.files ?? [], handlers);
}
