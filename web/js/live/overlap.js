// @ts-check
/** @import { Sample } from '../shared/sample_reader.js' */

/**
 * The compared keys of a sample, those that differ most often first. The gaze in pixels is not compared, because it is
 * computed from the gaze in percent.
 */
const keys = /** @type {(keyof Sample)[]} */ ([
    'timestamp', 'x', 'y', 'l_x', 'l_y', 'r_x', 'r_y', 'l_pupil_mm', 'r_pupil_mm', 'valid', 'distance_cm', 'focus',
    'l_pupil_x', 'l_pupil_y', 'r_pupil_x', 'r_pupil_y',
]);

/**
 * @param {Sample} a
 * @param {Sample} b
 */
function sameSample(a, b) {
    return keys.every(key => a[key] === b[key]);
}

/**
 * Returns the prefix function of the Knuth-Morris-Pratt search: for each prefix of `list`, the length of its longest
 * proper prefix that is also its suffix.
 *
 * @template T
 * @param {T[]} list
 * @param {(a: T, b: T) => boolean} same
 */
function prefixFunction(list, same) {
    const lengths = [0];
    for (let i = 1, length = 0; i < list.length; ++i) {
        while (length > 0 && !same(list[i], list[length])) length = lengths[length - 1];
        if (same(list[i], list[length])) ++length;
        lengths.push(length);
    }
    return lengths;
}

/**
 * Returns how many elements the end of `previous` and the start of `next` have in common. Takes linear time.
 *
 * @template T
 * @param {T[]} previous
 * @param {T[]} next
 * @param {(a: T, b: T) => boolean} same
 */
export function overlap(previous, next, same) {
    if (next.length === 0) return 0;
    const lengths = prefixFunction(next, same);
    let length = 0;
    for (const element of previous) {
        while (length > 0 && (length === next.length || !same(element, next[length]))) length = lengths[length - 1];
        if (same(element, next[length])) ++length;
    }
    return length;
}

/**
 * Returns how many samples of `next` were already in `previous`. Each answer has the last two seconds, so it repeats most
 * of the previous one. Timestamps are not enough to find the new samples, because some trackers send the same
 * timestamp in all samples.
 *
 * @param {Sample[]} previous
 * @param {Sample[]} next
 */
export function knownCount(previous, next) {
    return overlap(previous, next, sameSample);
}
