const none = { count: 0, rateHz: NaN, validShare: NaN, longestGapMs: NaN, longestLossMs: NaN, jitterMs: NaN };

/**
 * How well samples arrive, of the samples `from` to `to` (excluded) of some SampleColumns:
 * the mean rate, the share of samples with a valid gaze, the longest interval between two samples, the longest time
 * without a valid gaze, and the standard deviation of the intervals. NaN is what cannot be told.
 */
export function statisticsOf(columns, from = 0, to = columns.length) {
    const count = to - from;
    if (count < 2) return { ...none, count };
    const duration = columns.time[to - 1] - columns.time[from];
    return {
        count,
        rateHz: duration > 0 ? ((count - 1) * 1000) / duration : NaN,
        validShare: validIn(columns, from, to) / count,
        ...intervalsIn(columns.time, from, to),
        longestLossMs: longestLoss(columns, from, to),
    };
}

function validIn(columns, from, to) {
    let valid = 0;
    for (let i = from; i < to; ++i) valid += Number.isNaN(columns.x[i]) ? 0 : 1;
    return valid;
}

function intervalsIn(time, from, to) {
    const mean = (time[to - 1] - time[from]) / (to - from - 1);
    let longestGapMs = 0;
    let squares = 0;
    for (let i = from + 1; i < to; ++i) {
        const interval = time[i] - time[i - 1];
        longestGapMs = Math.max(longestGapMs, interval);
        squares += (interval - mean) ** 2;
    }
    return { longestGapMs, jitterMs: Math.sqrt(squares / (to - from - 1)) };
}

/** From the last valid sample to the next one, or to the end. */
function longestLoss(columns, from, to) {
    let longest = 0;
    let lastValid = columns.time[from];
    for (let i = from; i < to; ++i) {
        const lost = Number.isNaN(columns.x[i]);
        const wasLost = i > from && Number.isNaN(columns.x[i - 1]);
        if (lost || wasLost) longest = Math.max(longest, columns.time[i] - lastValid);
        if (!lost) lastValid = columns.time[i];
    }
    return longest;
}
