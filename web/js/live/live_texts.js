// @ts-check
import { byId, setText } from '../shared/dom.js';
import { quantity, text } from '../shared/language.js';
import { statisticsOf } from '../shared/statistics.js';
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { SampleStream, State } from './sample_stream.js' */

let shown = '';

/**
 * Shows the state, and notes about the tracker. An unchanged state is not written again, so that screen readers do not
 * repeat it.
 *
 * @param {State} state
 * @param {SampleStream} stream
 */
export function showState(state, { timeline: { byArrival }, crossed }) {
    const next = [state, byArrival, crossed, document.documentElement.lang].join();
    if (next === shown) return;
    shown = next;
    const hint = text(state === 'stalled' && byArrival ? 'stalledByArrivalHint' : /** @type {const} */ (`${state}Hint`));
    byId('gaze-title').dataset.state = state;
    setText('state', text(state));
    byId('veil').hidden = !hint;
    setText('veil-title', text(state));
    setText('veil-hint', hint);
    byId('by-arrival').hidden = !byArrival;
    byId('crossed').hidden = !crossed;
}

/**
 * Shows the figures of the last ten seconds.
 *
 * @param {SampleStream} stream
 * @param {number} nowMs in the columns' time
 * @param {boolean} isLive
 * @param {number} answerMs the response time of the last request; NaN if it had no answer
 */
export function showFigures({ columns, timeline: { byArrival } }, nowMs, isLive, answerMs) {
    const statistics = statisticsOf(columns);
    const waitingMs = nowMs - columns.time[columns.length - 1];
    const gapMs = isLive ? statistics.longestGapMs : Math.max(statistics.longestGapMs, waitingMs);
    setText('rate', quantity('hz', isLive ? statistics.rateHz : NaN, 1));
    setText('valid', quantity('percent', 100 * statistics.validShare, 1));
    setText('loss', text('lossHint', { value: quantity('ms', statistics.longestLossMs) }));
    setText('gap', quantity('ms', byArrival ? NaN : gapMs));
    setText('jitter', quantity('ms', byArrival ? NaN : statistics.jitterMs, 1));
    showDistance(columns);
    setText('answer', quantity('ms', answerMs));
    byId('figures').classList.toggle('stale', !isLive);
}

/** @param {SampleColumns} columns */
function showDistance({ distance, length }) {
    setText('distance', quantity('cm', length > 0 ? distance[length - 1] : NaN, 1));
    const isMeasured = distance.subarray(0, length).some(value => !Number.isNaN(value));
    setText('distance-hint', text(isMeasured ? 'distanceHint' : 'notMeasured'));
}
