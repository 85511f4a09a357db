/** Position 0 first, as it differs most often. Every key a sample has: two that agree in all are the same to us. */
const keys = [
    'timestamp', 'x', 'y', 'l_x', 'l_y', 'r_x', 'r_y', 'l_pupil_mm', 'r_pupil_mm', 'valid', 'distance_cm', 'focus',
    'l_pupil_x', 'l_pupil_y', 'r_pupil_x', 'r_pupil_y',
];

export function sameSample(a, b) {
    return keys.every(key => a[key] === b[key]);
}

/** For each beginning of `list`: the length of the longest shorter beginning that it ends with. */
function borders(list, same) {
    const lengths = [0];
    for (let i = 1, length = 0; i < list.length; ++i) {
        while (length > 0 && !same(list[i], list[length])) length = lengths[length - 1];
        if (same(list[i], list[length])) ++length;
        lengths.push(length);
    }
    return lengths;
}

/**
 * How many of the first samples of `next` are the last ones of `previous`. Each answer holds the last two seconds, so
 * what follows them is new. Samples are recognised by timestamp and content in their order, because a tracker may stamp
 * them all alike. Takes time in proportion to the two lengths (Knuth, Morris and Pratt's search).
 */
export function overlap(previous, next, same = sameSample) {
    if (next.length === 0) return 0;
    const lengths = borders(next, same);
    let length = 0;
    for (const sample of previous) {
        while (length > 0 && (length === next.length || !same(sample, next[length]))) length = lengths[length - 1];
        if (same(sample, next[length])) ++length;
    }
    return length;
}
