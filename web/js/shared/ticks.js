// @ts-check

const factors = [1, 2, 5, 10];
const minuteMs = 60000;
const timeSteps = [1, 2, 5, 10, 20, 30, 60, 120, 300, 600].map(minutes => minutes * minuteMs);

/** Compensates for rounding errors in divisions. */
const epsilon = 1e-9;

/**
 * Returns the smallest step of 1, 2 or 5 times a power of ten that divides `span` into at most `maxCount` parts.
 *
 * @param {number} span
 * @param {number} maxCount
 */
function niceStep(span, maxCount) {
    const minStep = span / maxCount;
    const power = 10 ** Math.floor(Math.log10(minStep));
    return power * (factors.find(factor => factor * power >= minStep * (1 - epsilon)) ?? 10);
}

/**
 * Returns a step for times. If it must be longer than 30 s, it is a whole number of minutes, up to ten hours.
 *
 * @param {number} spanMs
 * @param {number} maxCount
 */
function niceTimeStepMs(spanMs, maxCount) {
    const minStepMs = spanMs / maxCount;
    const wholeMinutes = minStepMs > minuteMs / 2 && timeSteps.find(step => step >= minStepMs);
    return wholeMinutes || niceStep(spanMs, maxCount);
}

/**
 * Returns the number of decimals that distinguish numbers with the difference `step`.
 *
 * @param {number} step NaN for a single number
 */
export function decimalsOf(step) {
    return Math.min(3, Math.max(0, -Math.floor(Math.log10(step) + epsilon))) || 0;
}

/**
 * Returns at most `maxCount` + 1 round numbers from `low` to `high`.
 *
 * @param {number} low
 * @param {number} high
 * @param {number} maxCount
 */
export function ticks(low, high, maxCount) {
    return high > low ? multiples(niceStep(high - low, maxCount), low, high) : [];
}

/**
 * Returns at most `maxCount` + 1 round times.
 *
 * @param {number} lowMs
 * @param {number} highMs
 * @param {number} maxCount
 */
export function timeTicks(lowMs, highMs, maxCount) {
    return highMs > lowMs ? multiples(niceTimeStepMs(highMs - lowMs, maxCount), lowMs, highMs) : [];
}

/**
 * @param {number} step
 * @param {number} low
 * @param {number} high
 */
function multiples(step, low, high) {
    const first = Math.ceil(low / step - epsilon);
    // A loop that adds the step would not end for a very large number, because the sum would not change.
    const count = Math.floor(high / step + epsilon) - first + 1;
    return Array.from({ length: count }, (_, i) => (first + i) * step);
}

/**
 * Returns the lowest and the highest value of several columns, extended to multiples of `step`. Returns null if all
 * values are missing.
 *
 * @param {Float32Array[]} columnList
 * @param {number} from
 * @param {number} to
 * @param {number} step
 * @returns {[number, number] | null}
 */
export function rangeOf(columnList, from, to, step) {
    let low = Infinity;
    let high = -Infinity;
    for (const values of columnList) {
        for (let i = from; i < to; ++i) {
            if (values[i] < low) low = values[i];
            if (values[i] > high) high = values[i];
        }
    }
    if (low > high) return null;
    const bottom = Math.floor(low / step) * step;
    return [bottom, Math.max(Math.ceil(high / step) * step, bottom + step)];
}
