// @ts-check
import { contains } from './area_shapes.js';
/** @import { TimeRange } from '../shared/chart.js' */
/** @import { Area } from './area_shapes.js' */
/** @import { Fixation } from './fixations.js' */

/**
 * @typedef {object} ShownFixations
 * @property {TimeRange} range
 * @property {boolean} areFixationsKnown
 * @property {Fixation[]} fixations those that start in the range
 * @property {Fixation | null} fixationBefore the one before them; null if they begin with the first of the recording
 */

/**
 * All figures are NaN if the fixations are not known.
 *
 * @typedef {object} AreaFigures
 * @property {number} dwellMs the sum of the fixations' durations, without their parts after the end of the range
 * @property {number} dwellShare the same as a share of the range
 * @property {number} fixationCount
 * @property {number} entryCount fixations in the area whose previous fixation is not in it
 * @property {number} firstAfterMs from the start of the range to the first fixation; NaN without one
 * @property {number} firstDurationMs the whole duration of the first fixation; NaN without one
 */

/**
 * Returns the figures of an area. A fixation is in the area if its centre is. Entries add up over adjacent ranges, because
 * the fixation before the range counts, too.
 *
 * @param {Area} area
 * @param {ShownFixations} shown
 * @returns {AreaFigures}
 */
export function areaFiguresOf(area, { range: { fromMs, toMs }, areFixationsKnown, fixations, fixationBefore }) {
    const none = areFixationsKnown ? 0 : NaN;
    const figures = { dwellMs: none, dwellShare: none, fixationCount: none, entryCount: none, firstAfterMs: NaN, firstDurationMs: NaN };
    let wasInside = fixationBefore !== null && contains(area, fixationBefore);
    for (const fixation of fixations) {
        const isInside = contains(area, fixation);
        if (isInside) {
            const { startMs, durationMs } = fixation;
            if (figures.fixationCount === 0) [figures.firstAfterMs, figures.firstDurationMs] = [startMs - fromMs, durationMs];
            if (!wasInside) ++figures.entryCount;
            ++figures.fixationCount;
            figures.dwellMs += Math.min(startMs + durationMs, toMs) - startMs;
        }
        wasInside = isInside;
    }
    figures.dwellShare = figures.dwellMs / (toMs - fromMs);
    return figures;
}
