/**
 * The shares of valid samples in `count` equal parts of the time from `t0` to `t1`. A part in which no sample happens
 * to lie has the share of the sample before it, if that is near enough for it to be no gap; NaN otherwise.
 */
export function validShares(columns, t0, t1, count) {
    const partMs = (t1 - t0) / count;
    const edges = Array.from({ length: count + 1 }, (_, i) => columns.indexAt(t0 + i * partMs));
    return edges.slice(1).map((to, i) => {
        const from = edges[i];
        return to > from ? shareIn(columns, from, to) : shareBefore(columns, to, t0 + i * partMs);
    });
}

/** Samples further apart than this leave a gap, in ms. */
const gapMs = 40;

function isValid(columns, i) {
    return Number.isNaN(columns.x[i]) ? 0 : 1;
}

function shareIn(columns, from, to) {
    let valid = 0;
    for (let i = from; i < to; ++i) valid += isValid(columns, i);
    return valid / (to - from);
}

function shareBefore(columns, i, timeMs) {
    return i > 0 && timeMs - columns.time[i - 1] < gapMs ? isValid(columns, i - 1) : NaN;
}
