import { byId, setText } from '../shared/dom.js';
import { quantity, text } from '../shared/language.js';
import { statisticsOf } from '../shared/statistics.js';

/**
 * Writes the figures of the last ten seconds.
 *
 * @param nowMs now, in the columns' time
 * @param byArrival whether the times say nothing of the single sample
 * @param answerMs how long the last answer took
 */
export function showFigures(columns, nowMs, byArrival, isLive, answerMs) {
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

function showDistance(columns) {
    const distance = columns.length > 0 ? columns.distance[columns.length - 1] : NaN;
    setText('distance', quantity('cm', distance, 1));
    const everMeasured = columns.distance.subarray(0, columns.length).some(value => !Number.isNaN(value));
    setText('distance-hint', text(everMeasured ? 'distanceHint' : 'notMeasured'));
}
