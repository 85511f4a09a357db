// @ts-check
import { meanOf, validShareOf } from '../shared/statistics.js';
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { Fixation } from './fixations.js' */
/** @import { PlacedMarker } from './markers.js' */

/**
 * The time from a marker to the next one, or to the end of the recording. A figure without data is NaN.
 *
 * @typedef {object} Interval
 * @property {string | null} text the text of the marker; null for the time before the first marker
 * @property {number} startMs
 * @property {number} endMs
 * @property {number} sampleCount
 * @property {number} validShare
 * @property {number} fixationCount the number of fixations that start in the interval
 * @property {number} meanFixationMs
 * @property {number} leftPupil
 * @property {number} rightPupil
 */

/**
 * Returns the intervals between markers with their figures. The start belongs to an interval, the end to the next one.
 * Without markers there are no intervals.
 *
 * @param {PlacedMarker[]} markers sorted by time
 * @param {SampleColumns} columns
 * @param {Fixation[] | null} fixations of the whole recording, sorted by time; null if they are not known
 */
export function intervalsOf(markers, columns, fixations) {
    /** @type {{ text: string | null, timeMs: number }[]} */
    const starts = markers[0]?.timeMs > 0 ? [{ text: null, timeMs: 0 }, ...markers] : markers;
    let firstFixation = 0;
    return starts.map(({ text, timeMs }, i) => {
        const nextMs = starts[i + 1]?.timeMs ?? Infinity;
        let end = firstFixation;
        while (fixations && fixations[end]?.startMs < nextMs) ++end;
        const own = fixations?.slice(firstFixation, end).filter(({ startMs }) => startMs >= timeMs);
        firstFixation = end;
        return intervalOf(text, timeMs, nextMs, columns, own);
    });
}

/**
 * @param {string | null} text
 * @param {number} startMs
 * @param {number} nextMs the time of the next marker, or Infinity
 * @param {SampleColumns} columns
 * @param {Fixation[]} [fixations] of the interval, if they are known
 * @returns {Interval}
 */
function intervalOf(text, startMs, nextMs, columns, fixations) {
    const from = columns.indexAt(startMs);
    const to = columns.indexAt(nextMs);
    const fixationCount = fixations?.length ?? NaN;
    const totalMs = fixations?.reduce((sum, { durationMs }) => sum + durationMs, 0) ?? NaN;
    return {
        text,
        startMs,
        endMs: nextMs < Infinity ? nextMs : Math.max(startMs, columns.time[columns.length - 1]),
        sampleCount: to - from,
        validShare: validShareOf(columns, from, to),
        fixationCount,
        meanFixationMs: totalMs / fixationCount,
        leftPupil: meanOf(columns.leftPupil, from, to),
        rightPupil: meanOf(columns.rightPupil, from, to),
    };
}
