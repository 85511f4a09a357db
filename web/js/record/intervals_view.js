// @ts-check
import { allOf, byId, element } from '../shared/dom.js';
import { number, onLanguage, text } from '../shared/language.js';
import { saveFixations } from './fixation_export.js';
import { saveIntervals } from './intervals_export.js';
import { between } from './time_range.js';
/** @import { TimeRange } from '../shared/chart.js' */
/** @import { Interval } from './intervals.js' */
/** @import { RecordView } from './record_view.js' */

/** A table of all intervals of a long recording would make the page slow. */
const rowsPerStep = 500;

/** The view whose intervals the table has. @type {RecordView | null} */
let view = null;
/** @type {Interval[]} */
let intervals = [];
let rowCount = 0;

/**
 * Connects the table and the buttons that save the intervals and the fixations.
 *
 * @param {(range: TimeRange) => void} choose called with the time range of an interval that the user clicks
 */
export function startIntervals(choose) {
    byId('interval-rows').addEventListener('click', ({ target }) => {
        const row = /** @type {Element} */ (target).closest('tr');
        const range = row && rangeOf(intervals[row.sectionRowIndex]);
        if (range) choose(range);
    });
    byId('more-intervals').addEventListener('click', () => {
        rowCount += rowsPerStep;
        showRows();
    });
    byId('save-intervals').addEventListener('click', () => view && saveIntervals(view));
    byId('save-fixations').addEventListener('click', () => view && saveFixations(view));
    onLanguage(showRows);
}

/**
 * Shows the intervals between the markers, and which of them is the shown time range. Unchanged rows are not written again.
 *
 * @param {RecordView} shown
 */
export function showIntervals(shown) {
    view = shown;
    /** @type {HTMLButtonElement} */ (byId('save-fixations')).disabled = !shown.areFixationsKnown;
    if (intervals !== shown.intervals) {
        intervals = shown.intervals;
        rowCount = rowsPerStep;
        showRows();
    }
    allOf('#interval-rows button').forEach((button, i) => {
        const range = rangeOf(intervals[i]);
        const isShown = range?.fromMs === shown.range.fromMs && range.toMs === shown.range.toMs;
        button.setAttribute('aria-pressed', String(isShown));
    });
}

/**
 * Returns the time range of an interval within the recording, or null if it is outside of it.
 *
 * @param {Interval} interval
 */
function rangeOf({ startMs, endMs }) {
    const wholeMs = view?.wholeMs ?? 0;
    if (endMs <= 0 || startMs >= wholeMs) return null;
    return between(Math.max(startMs, 0), Math.min(endMs, wholeMs), wholeMs);
}

function showRows() {
    byId('intervals-card').hidden = intervals.length === 0;
    byId('interval-rows').replaceChildren(...intervals.slice(0, rowCount).map(rowOf));
    byId('more-intervals').hidden = intervals.length <= rowCount;
}

/** @param {Interval} interval */
function rowOf(interval) {
    const row = element('tr');
    row.append(headingOf(interval), ...[
        cell(interval.startMs / 1000, 3),
        cell((interval.endMs - interval.startMs) / 1000, 3),
        cell(interval.sampleCount),
        cell(100 * interval.validShare, 1),
        cell(interval.fixationCount),
        cell(interval.meanFixationMs),
        cell(interval.leftPupil, 2),
        cell(interval.rightPupil, 2),
    ]);
    return row;
}

/** @param {Interval} interval */
function headingOf(interval) {
    const heading = element('th');
    heading.setAttribute('scope', 'row');
    const button = /** @type {HTMLButtonElement} */ (element('button', interval.text ?? text('beforeFirstMarker')));
    button.type = 'button';
    button.disabled = !rangeOf(interval);
    button.classList.toggle('unnamed', interval.text === null);
    heading.append(button);
    return heading;
}

/**
 * @param {number} value
 * @param {number} decimals
 */
function cell(value, decimals = 0) {
    return element('td', Number.isFinite(value) ? number(value, decimals) : text('unknown'));
}
