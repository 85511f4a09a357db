import { byId, element, setText } from '../shared/dom.js';
import { clock, number, onLanguage, quantity, text } from '../shared/language.js';
import { longestInSecondsMs } from './record_charts.js';
import { showsNumbers } from './scan_path_view.js';

/** Shows that a file is being read, and how far. */
export function showProgress(share) {
    problem = null;
    showOnly('progress');
    byId('progress-bar').value = share;
}

let problem = null;
onLanguage(() => problem && showProblemText());

/** Says why a file cannot be shown. */
export function showProblem(error, file) {
    problem = { error, name: file.name };
    showOnly('problem');
    showProblemText();
}

function showProblemText() {
    const { error, name } = problem;
    setText('problem', text('cannotShow', { name, reason: text(error.key, error.values) }));
}

function showOnly(id) {
    for (const part of ['progress', 'problem', 'view']) byId(part).hidden = part !== id;
    byId('welcome').hidden = id === 'view';
}

/** What is to say about the file as a whole. */
export function showFile(view) {
    showOnly('view');
    setText('file-name', view.fileName);
    setText('status', text('opened', { samples: number(view.columns.length) }));
    byId('remarks').replaceChildren(...remarksOf(view).map(remark => element('li', remark)));
}

function remarksOf({ cutOffLine, setBackLine, timeless, crossed }) {
    return [
        cutOffLine > 0 && text('cutOff', { line: cutOffLine }),
        setBackLine > 0 && text('setBack', { line: setBackLine }),
        timeless && text('timeless'),
        crossed && text('crossed'),
    ].filter(Boolean);
}

/** The texts of the range's figures, by the ids of their places. */
export function figuresOf({ summary, timeless }) {
    const { durationMs } = summary;
    return {
        duration: durationMs > longestInSecondsMs ? clock(durationMs) : quantity('seconds', durationMs / 1000, 1),
        rate: timeless ? text('unknown') : quantity('hz', summary.rateHz, 1),
        valid: quantity('percent', 100 * summary.validShare, 1),
        'fixation-count': number(summary.fixationCount),
        'mean-fixation': quantity('ms', summary.meanFixationMs),
    };
}

export function showSummary(view, mode) {
    for (const [id, value] of Object.entries(figuresOf(view))) setText(id, value);
    const { clientWidth: width, clientHeight: height } = byId('stage');
    const all = mode !== 'scanPath' || showsNumbers(view.fixations.length, width, height, view.aspect);
    setText('stage-note', all ? '' : text('zoomForNumbers'));
}

/** The range in the fields, unless one of them is being written. */
export function showRange({ range }) {
    for (const [id, ms] of [['from', range.fromMs], ['to', range.toMs]]) {
        if (document.activeElement !== byId(id)) byId(id).value = (ms / 1000).toFixed(3);
    }
}
