import { byId } from '../shared/dom.js';

let worker = null;

/**
 * Reads a file beside the page, so that the page stays fluid. A file that is being read when another one is chosen
 * counts no more.
 *
 * @param show { progress(share), record(record, file), error({ key, values }, file) }
 */
function read(file, show) {
    worker?.terminate();
    worker = new Worker(new URL('./parse_worker.js', import.meta.url), { type: 'module' });
    worker.onmessage = ({ data }) => {
        if (data.progress !== undefined) show.progress(data.progress);
        if (data.record) show.record(data.record, file);
        if (data.error) show.error(data.error, file);
    };
    worker.onerror = event => show.error({ key: 'unreadable', values: { reason: event.message } }, file);
    show.progress(0);
    worker.postMessage(file);
}

/** Lets a record be chosen with a button or dropped anywhere on the page. */
export function startOpening(show) {
    const input = byId('file');
    for (const button of document.querySelectorAll('.open-file')) button.addEventListener('click', () => input.click());
    input.addEventListener('change', () => {
        if (input.files.length > 0) read(input.files[0], show);
        // So that the same file can be chosen again.
        input.value = '';
    });
    for (const type of ['dragenter', 'dragover', 'dragleave', 'drop'])
        document.addEventListener(type, event => drag(event, show));
}

function drag(event, show) {
    event.preventDefault();
    document.body.classList.toggle('dropping', event.type === 'dragenter' || event.type === 'dragover');
    const file = event.type === 'drop' ? event.dataTransfer.files[0] : undefined;
    if (file) read(file, show);
}
