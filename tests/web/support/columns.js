import { SampleColumns, columnNames } from '../../../web/js/shared/sample_columns.js';

const emptyRow = Object.fromEntries(columnNames.map(name => [name, NaN]));

/** Returns columns with the given times and values. All other values are missing. */
export function columnsOf(times, rowOf) {
    const columns = new SampleColumns();
    times.forEach((time, i) => columns.append(time, { ...emptyRow, ...rowOf(i) }));
    return columns;
}

/** Returns the values of `valueOf` for 0 to `count` (excluded). */
export const listOf = (count, valueOf) => Array.from({ length: count }, (_, i) => valueOf(i));

/** Returns samples at 100 Hz, in parts of [count, x, y]. Successive samples differ by 1 % horizontally. */
export function gazeOf(...parts) {
    const gaze = parts.flatMap(([count, x, y]) => listOf(count, i => ({ x: x + (i % 2), y })));
    return columnsOf(gaze.map((_, i) => 10 * i), i => gaze[i]);
}
