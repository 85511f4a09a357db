import { statisticsOf } from '../shared/statistics.js';

/** The fixations that begin in a range, and how many come before them. */
export function fixationsIn(fixations, { fromMs, toMs }) {
    const first = fixations.findIndex(({ startMs }) => startMs >= fromMs);
    if (first < 0) return { first: fixations.length, list: [] };
    const list = fixations.slice(first).filter(({ startMs }) => startMs <= toMs);
    return { first, list };
}

/** The figures of a range of a record. */
export function summaryOf(columns, fixations, range) {
    const [from, to] = [columns.indexAt(range.fromMs), columns.indexAt(range.toMs)];
    // The last sample lies exactly at the end of the whole.
    const end = to < columns.length && columns.time[to] <= range.toMs ? to + 1 : to;
    const total = fixations.reduce((sum, { durationMs }) => sum + durationMs, 0);
    return {
        ...statisticsOf(columns, from, end),
        durationMs: range.toMs - range.fromMs,
        fixationCount: fixations.length,
        meanFixationMs: total / fixations.length,
    };
}
