// @ts-check
import { byId, setText } from '../shared/dom.js';
import { number, quantity, text, timeOfDay } from '../shared/language.js';
import { statisticsOf } from '../shared/statistics.js';
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { Condition, LiveModel, MissedSum } from '../shared/live_model.js' */

let shown = '';

/**
 * Shows the condition of the service and the tracker. An unchanged condition is not written again, so that screen readers
 * do not repeat it.
 *
 * @param {Condition} condition
 * @param {LiveModel} model
 */
export function showCondition(condition, model) {
    const hint = hintOf(condition, model);
    const next = [condition, hint, model.crossed, document.documentElement.lang].join();
    if (next === shown) return;
    shown = next;
    byId('gaze-title').dataset.state = condition;
    setText('state', text(condition));
    byId('veil').hidden = !hint;
    setText('veil-title', text(condition));
    setText('veil-hint', hint);
    byId('crossed').hidden = !model.crossed;
}

/**
 * Returns what the user can do, with the reason that Ocela gave.
 *
 * @param {Condition} condition
 * @param {LiveModel} model
 */
function hintOf(condition, { lostReason, state }) {
    if (condition === 'offline' && lostReason) return text('refusedHint', { reason: lostReason });
    if (condition === 'notConnected' && state?.tracker?.reason) return state.tracker.reason;
    return text(/** @type {const} */ (`${condition}Hint`));
}

/**
 * Shows the figures of the last ten seconds.
 *
 * @param {LiveModel} model
 * @param {number} nowMs in the columns' time
 * @param {boolean} isLive
 */
export function showFigures({ columns, missed }, nowMs, isLive) {
    const statistics = statisticsOf(columns);
    const waitingMs = nowMs - columns.time[columns.length - 1];
    const gapMs = isLive ? statistics.longestGapMs : Math.max(statistics.longestGapMs, waitingMs);
    setText('rate', quantity('hz', isLive ? statistics.rateHz : NaN, 1));
    setText('valid', quantity('percent', 100 * statistics.validShare, 1));
    setText('loss', text('lossHint', { value: quantity('ms', statistics.longestLossMs) }));
    setText('gap', quantity('ms', gapMs));
    setText('jitter', quantity('ms', statistics.jitterMs, 1));
    showDistance(columns);
    showMissed(missed);
    byId('figures').classList.toggle('stale', !isLive);
}

/** @param {SampleColumns} columns */
function showDistance({ distance, length }) {
    setText('distance', quantity('cm', length > 0 ? distance[length - 1] : NaN, 1));
    const isMeasured = distance.subarray(0, length).some(value => !Number.isNaN(value));
    setText('distance-hint', text(isMeasured ? 'distanceHint' : 'notMeasured'));
}

/** @param {MissedSum} missed */
function showMissed(missed) {
    setText('missed', number(missed.samples) + (missed.restarted ? ' + ?' : ''));
    setText('missed-hint', missedHint(missed));
}

/** @param {MissedSum} missed */
function missedHint({ markers, date }) {
    if (!date) return text('missedHint');
    const time = timeOfDay(date);
    return markers > 0 ? text('missedMarkers', { markers: number(markers), time }) : text('missedAt', { time });
}
