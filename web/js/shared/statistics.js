// @ts-check
/** @import { SampleColumns } from './sample_columns.js' */

/**
 * Returns figures of data quality for the samples `from` to `to` (excluded): the mean rate, the share of samples with a
 * valid gaze, the longest interval between two samples, the longest time without a valid gaze, and the standard
 * deviation of the intervals. A figure that needs more samples is NaN.
 *
 * @param {SampleColumns} columns
 * @param {number} from
 * @param {number} to
 */
export function statisticsOf(columns, from = 0, to = columns.length) {
    const count = to - from;
    if (count < 2)
        return { count, rateHz: NaN, validShare: NaN, longestGapMs: NaN, jitterMs: NaN, longestLossMs: NaN };
    const durationMs = columns.time[to - 1] - columns.time[from];
    return {
        count,
        rateHz: durationMs > 0 ? ((count - 1) * 1000) / durationMs : NaN,
        validShare: validShareOf(columns, from, to),
        ...intervalsOf(columns.time, from, to),
        longestLossMs: longestLossOf(columns, from, to),
    };
}

/**
 * @param {SampleColumns} columns
 * @param {number} from
 * @param {number} to
 */
export function validShareOf(columns, from, to) {
    return validCountOf(columns.x, from, to) / (to - from);
}

/**
 * Returns the number of values that are not missing.
 *
 * @param {Float32Array} values
 * @param {number} from
 * @param {number} to
 */
export function validCountOf(values, from, to) {
    let count = 0;
    for (let i = from; i < to; ++i) {
        if (!Number.isNaN(values[i])) ++count;
    }
    return count;
}

/**
 * Returns the mean of the values that are not missing, or NaN if all are missing.
 *
 * @param {Float32Array} values
 * @param {number} from
 * @param {number} to
 */
export function meanOf(values, from, to) {
    let sum = 0;
    for (let i = from; i < to; ++i) {
        if (!Number.isNaN(values[i])) sum += values[i];
    }
    return sum / validCountOf(values, from, to);
}

/**
 * @param {Float64Array} time
 * @param {number} from
 * @param {number} to
 */
function intervalsOf(time, from, to) {
    const meanMs = (time[to - 1] - time[from]) / (to - from - 1);
    let longestGapMs = 0;
    let squares = 0;
    for (let i = from + 1; i < to; ++i) {
        const intervalMs = time[i] - time[i - 1];
        longestGapMs = Math.max(longestGapMs, intervalMs);
        squares += (intervalMs - meanMs) ** 2;
    }
    return { longestGapMs, jitterMs: Math.sqrt(squares / (to - from - 1)) };
}

/**
 * Returns the longest time without a valid sample, from the valid sample before it to the one after it. If there is no such
 * sample, the time is counted from the first or to the last sample.
 *
 * @param {SampleColumns} columns
 * @param {number} from
 * @param {number} to
 */
function longestLossOf({ time, x }, from, to) {
    let longestMs = 0;
    let lastValidMs = time[from];
    for (let i = from; i < to; ++i) {
        const lost = Number.isNaN(x[i]);
        const wasLost = i > from && Number.isNaN(x[i - 1]);
        if (lost || wasLost) longestMs = Math.max(longestMs, time[i] - lastValidMs);
        if (!lost) lastValidMs = time[i];
    }
    return longestMs;
}
