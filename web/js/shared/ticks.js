const steps = [1, 2, 5, 10];

/** The smallest of 1, 2, 5 times a power of ten that divides `span` into at most `most` parts. */
export function niceStep(span, most) {
    const raw = span / most;
    const power = 10 ** Math.floor(Math.log10(raw));
    return power * steps.find(step => step * power >= raw * (1 - 1e-9));
}

/** Round numbers from `low` to `high`, at most `most` + 1 of them. */
export function ticks(low, high, most) {
    if (!(high > low)) return [];
    const step = niceStep(high - low, most);
    const list = [];
    for (let i = Math.ceil(low / step - 1e-9); i * step <= high + step * 1e-9; ++i) list.push(i * step);
    return list;
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
