// @ts-check
import { byId, element, inputById, setText } from '../shared/dom.js';
import { clock, count, number, onLanguage, quantity, text } from '../shared/language.js';
import { maxInSecondsMs } from './record_charts.js';
import { showsNumbers } from './scan_path_view.js';
/** @import { EventsFile, Problem, SamplesFile } from './parse_worker.js' */
/** @import { StageMode } from './record_charts.js' */
/** @import { RecordView } from './record_view.js' */

/** @type {{ problem: Problem, fileName: string } | null} */
let shownProblem = null;
onLanguage(writeProblem);

/** @param {number} share the share of the file that has been read, from 0 to 1 */
export function showProgress(share) {
    shownProblem = null;
    showOnly('progress');
    byId('progress-bar').setAttribute('value', String(share));
}

/**
 * Shows why a file cannot be opened.
 *
 * @param {Problem} problem
 * @param {string} fileName
 */
export function showProblem(problem, fileName) {
    shownProblem = { problem, fileName };
    showOnly('problem');
    writeProblem();
}

function writeProblem() {
    if (!shownProblem) return;
    const { problem: { key, values }, fileName } = shownProblem;
    setText('problem', text('cannotShow', { name: fileName, reason: text(key, values) }));
}

/** @param {'progress' | 'problem' | 'view'} id */
function showOnly(id) {
    for (const part of ['progress', 'problem', 'view']) byId(part).hidden = part !== id;
    for (const part of ['welcome', 'recordings-card']) byId(part).hidden = id === 'view';
}

/**
 * Shows the texts about the whole file.
 *
 * @param {RecordView} view
 */
export function showFile(view) {
    showOnly('view');
    setText('file-name', view.fileName);
    setText('status', text('opened', { samples: number(view.columns.length) }));
    byId('remarks').replaceChildren(...remarksOf(view).map(remark => element('li', remark)));
}

/** @param {RecordView} view */
function remarksOf({ file: { cutOffLine, setBackLine, timeless, crossed, samples, events }, placesMarkersByRow }) {
    const remarks = [];
    if (samples) remarks.push(samplesRemark(samples));
    if (events) remarks.push(eventsRemark(events));
    if (events?.markers.length && placesMarkersByRow) remarks.push(text('markersByRow'));
    if (cutOffLine > 0) remarks.push(text('cutOff', { line: cutOffLine }));
    if (setBackLine > 0) remarks.push(text('setBack', { line: setBackLine }));
    if (timeless) remarks.push(text('timeless'));
    if (crossed) remarks.push(text('crossed'));
    return remarks;
}

/**
 * @param {SamplesFile} samples
 */
function samplesRemark({ name, problem }) {
    if (!problem) return text('arrivalTimes', { name });
    return text('fileNotUsed', { name, reason: text(problem.key, problem.values) });
}

/** @param {EventsFile} events */
function eventsRemark({ name, problem, markers }) {
    if (!problem) return text('markersOf', { name, count: number(markers.length) });
    return text('fileNotUsed', { name, reason: text(problem.key, problem.values) });
}

/**
 * Returns the texts of the range's figures, by the ids of their elements.
 *
 * @param {RecordView} view
 */
export function figuresOf({ summary, file }) {
    const { durationMs } = summary;
    return {
        duration: durationMs > maxInSecondsMs ? clock(durationMs) : quantity('seconds', durationMs / 1000, 1),
        rate: file.timeless ? text('unknown') : quantity('hz', summary.rateHz, 1),
        valid: quantity('percent', 100 * summary.validShare, 1),
        'fixation-count': count(summary.fixationCount),
        'mean-fixation': quantity('ms', summary.meanFixationMs),
    };
}

/**
 * Shows the figures and the limits of the range.
 *
 * @param {RecordView} view
 * @param {StageMode} mode
 */
export function showRange(view, mode) {
    for (const [id, value] of Object.entries(figuresOf(view))) setText(id, value);
    const { clientWidth: width, clientHeight: height } = byId('stage');
    const isComplete = mode !== 'scanPath' || showsNumbers(view.fixations.length, { width, height }, view.aspect);
    setText('stage-note', isComplete ? '' : text('zoomForNumbers'));
    writeSeconds('from', view.range.fromMs);
    writeSeconds('to', view.range.toMs);
}

/**
 * Fills a field, unless the user is editing it.
 *
 * @param {string} id
 * @param {number} ms
 */
function writeSeconds(id, ms) {
    const field = inputById(id);
    if (document.activeElement !== field) field.value = (ms / 1000).toFixed(3);
}
