const steps = [1, 2, 5, 10];

/** The smallest of 1, 2, 5 times a power of ten that divides `span` into at most `most` parts. */
export function niceStep(span, most) {
    const raw = span / most;
    const power = 10 ** Math.floor(Math.log10(raw));
    return power * steps.find(step => step * power >= raw * (1 - 1e-9));
}

/** How many digits behind the decimal sign tell apart what is `step` apart. */
export function decimalsOf(step) {
    // Of no step at all, too: a single tick has none.
    return Math.min(3, Math.max(0, -Math.floor(Math.log10(step) + 1e-9))) || 0;
}

/** Round lengths of time from a minute up, in ms. */
const timeSteps = [1, 2, 5, 10, 20, 30, 60, 120, 300, 600].map(minutes => minutes * 60000);

/** The step between round times, in ms: whole minutes and hours where they fit. */
export function timeStepMs(spanMs, most) {
    const raw = spanMs / most;
    return raw > 30000 ? (timeSteps.find(step => step >= raw) ?? niceStep(spanMs, most)) : niceStep(spanMs, most);
}

/** Round numbers from `low` to `high`, at most `most` + 1 of them. */
export function ticks(low, high, most) {
    return high > low ? multiples(niceStep(high - low, most), low, high) : [];
}

/** The same of times in ms. */
export function timeTicks(lowMs, highMs, most) {
    return highMs > lowMs ? multiples(timeStepMs(highMs - lowMs, most), lowMs, highMs) : [];
}

function multiples(step, low, high) {
    const first = Math.ceil(low / step - 1e-9);
    // Counted beforehand: numbers may be so large that one more makes no difference.
    const count = Math.floor(high / step + 1e-9) - first + 1;
    return Array.from({ length: count }, (_, i) => (first + i) * step);
}

/** The range of the values of several columns, widened to whole multiples of `step`; null if there are none. */
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
