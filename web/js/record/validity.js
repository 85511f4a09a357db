// @ts-check
import { gapLimitMs } from '../shared/polyline.js';
import { validShareOf } from '../shared/statistics.js';
/** @import { TimeRange } from '../shared/chart.js' */
/** @import { SampleColumns } from '../shared/sample_columns.js' */

/**
 * Returns the shares of valid samples in `count` equal parts of a time range. A part without samples has the share of
 * the sample before it, or NaN in a gap.
 *
 * @param {SampleColumns} columns
 * @param {TimeRange} range
 * @param {number} count
 */
export function validShares(columns, { fromMs, toMs }, count) {
    const partMs = (toMs - fromMs) / count;
    const edges = Array.from({ length: count + 1 }, (_, i) => columns.indexAt(fromMs + i * partMs));
    const gapMs = gapLimitMs(columns.time, 0, columns.length);
    return edges.slice(1).map((to, i) => {
        if (to > edges[i]) return validShareOf(columns, edges[i], to);
        const ageMs = fromMs + i * partMs - columns.time[to - 1];
        return to > 0 && ageMs < gapMs ? validShareOf(columns, to - 1, to) : NaN;
    });
}
