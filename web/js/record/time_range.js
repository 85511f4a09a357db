// @ts-check
/** @import { TimeRange } from '../shared/chart.js' */

/** The shortest range, unless the recording is shorter. */
const minRangeMs = 100;

/**
 * Returns `widthMs` within its limits.
 *
 * @param {number} widthMs
 * @param {number} wholeMs
 */
function limited(widthMs, wholeMs) {
    return Math.min(Math.max(widthMs, minRangeMs), wholeMs);
}

/**
 * Returns a range that is moved into the recording and not wider than the recording.
 *
 * @param {number} fromMs
 * @param {number} widthMs
 * @param {number} wholeMs the duration of the recording
 * @returns {TimeRange}
 */
function within(fromMs, widthMs, wholeMs) {
    const width = limited(widthMs, wholeMs);
    const from = Math.min(Math.max(fromMs, 0), wholeMs - width);
    return { fromMs: from, toMs: from + width };
}

/**
 * Returns a range that is `factor` times as wide. The time `atMs` keeps its relative position in the range.
 *
 * @param {TimeRange} range
 * @param {number} factor
 * @param {number} atMs
 * @param {number} wholeMs
 */
export function zoomed({ fromMs, toMs }, factor, atMs, wholeMs) {
    const width = limited((toMs - fromMs) * factor, wholeMs);
    return within(atMs - ((atMs - fromMs) * width) / (toMs - fromMs || 1), width, wholeMs);
}

/**
 * Returns the range moved by `byMs`, within the recording.
 *
 * @param {TimeRange} range
 * @param {number} byMs
 * @param {number} wholeMs
 */
export function moved({ fromMs, toMs }, byMs, wholeMs) {
    return within(fromMs + byMs, toMs - fromMs, wholeMs);
}

/**
 * Returns the range between two times in any order, within the recording.
 *
 * @param {number} aMs
 * @param {number} bMs
 * @param {number} wholeMs
 */
export function between(aMs, bMs, wholeMs) {
    return within(Math.min(aMs, bMs), Math.abs(bMs - aMs), wholeMs);
}
