// @ts-check

/** An interval this many times longer than the typical one is a gap. No line is drawn across it. */
const gapFactor = 4;
const minGapMs = 40;

/** The typical interval is the median of the mean intervals in spans of this many samples. */
const spanSampleCount = 16;
const maxSpanCount = 99;

/**
 * Returns the typical interval in ms. Neither bursts of samples nor long gaps change it. It is 0 for fewer than
 * two samples.
 *
 * @param {Float64Array} time
 * @param {number} from
 * @param {number} to
 */
function typicalIntervalMs(time, from, to) {
    const width = Math.min(spanSampleCount, to - from - 1);
    if (width < 1) return 0;
    const lastStart = to - 1 - width;
    const count = Math.min(maxSpanCount, lastStart - from + 1);
    const means = new Float64Array(count).map((_, i) => {
        const start = from + Math.floor((i * (lastStart - from)) / Math.max(count - 1, 1));
        return (time[start + width] - time[start]) / width;
    });
    return means.sort()[count >> 1];
}

/**
 * Returns the gap limit of the samples `from` to `to` (excluded), in ms. A longer interval is a gap.
 *
 * @param {Float64Array} time
 * @param {number} from
 * @param {number} to
 */
export function gapLimitMs(time, from, to) {
    return Math.max(minGapMs, gapFactor * typicalIntervalMs(time, from, to));
}

/** @typedef {(column: number, value: number, startsLine: boolean) => void} TakePoint */

/**
 * Reduces a time series to at most two points for each column of pixels: the lowest and the highest value, in the order
 * in which the series rises or falls. A missing value (NaN) or a gap interrupts the line.
 *
 * @param {Float64Array} time
 * @param {Float32Array} values
 * @param {number} from
 * @param {number} to
 * @param {(timeMs: number) => number} toColumn converts a time to a column; its result is rounded down
 * @param {TakePoint} take called for each point
 */
export function forEachPoint(time, values, from, to, toColumn, take) {
    const limitMs = gapLimitMs(time, from, to);
    const column = new Column(take);
    let lastMs = NaN;
    for (let i = from; i < to; ++i) {
        const value = values[i];
        if (Number.isNaN(value) || time[i] - lastMs > limitMs) column.endLine();
        if (Number.isNaN(value)) continue;
        column.add(Math.floor(toColumn(time[i])), value);
        lastMs = time[i];
    }
    column.flush();
}

/** Collects the values of one column of pixels. */
class Column {
    #take;
    #startsLine = true;
    #column = NaN;
    #first = 0;
    #low = 0;
    #high = 0;
    #last = 0;

    /** @param {TakePoint} take */
    constructor(take) {
        this.#take = take;
    }

    /**
     * @param {number} column
     * @param {number} value
     */
    add(column, value) {
        if (column === this.#column) {
            this.#low = Math.min(this.#low, value);
            this.#high = Math.max(this.#high, value);
            this.#last = value;
            return;
        }
        this.flush();
        this.#column = column;
        this.#first = this.#low = this.#high = this.#last = value;
    }

    endLine() {
        this.flush();
        this.#startsLine = true;
    }

    flush() {
        if (Number.isNaN(this.#column)) return;
        const rises = this.#first <= this.#last;
        this.#take(this.#column, rises ? this.#low : this.#high, this.#startsLine);
        if (this.#low < this.#high) this.#take(this.#column, rises ? this.#high : this.#low, false);
        this.#startsLine = false;
        this.#column = NaN;
    }
}
