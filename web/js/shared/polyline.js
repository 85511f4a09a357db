/** An interval this many times the usual one is a gap, and no line is drawn across it. */
const gapFactor = 4;
const shortestGapMs = 40;

/** The length of an interval from which on it counts as a gap, in ms, for the samples `from` to `to` (excluded). */
export function gapLimitMs(time, from, to) {
    const mean = to - from > 1 ? (time[to - 1] - time[from]) / (to - from - 1) : 0;
    return Math.max(shortestGapMs, gapFactor * mean);
}

/**
 * What to draw of a time series, at most two points a column of pixels however many samples there are: the lowest and
 * the highest value in each, in the order in which the series rises or falls. Calls `take(column, value, starts)`, where
 * `starts` begins a new line: missing values (NaN) and gaps interrupt it.
 *
 * @param toColumn maps a time to a column, which need not be whole
 */
export function forEachPoint(time, values, from, to, toColumn, take) {
    const limit = gapLimitMs(time, from, to);
    const column = new Column(take);
    let lastMs = NaN;
    for (let i = from; i < to; ++i) {
        const value = values[i];
        if (Number.isNaN(value) || time[i] - lastMs > limit) column.endLine();
        if (Number.isNaN(value)) continue;
        column.add(Math.floor(toColumn(time[i])), value);
        lastMs = time[i];
    }
    column.flush();
}

/** The values of one column. */
class Column {
    #take;
    #starts = true;
    #at = NaN;
    #first = 0;
    #low = 0;
    #high = 0;
    #last = 0;

    constructor(take) {
        this.#take = take;
    }

    add(at, value) {
        if (at === this.#at) {
            this.#low = Math.min(this.#low, value);
            this.#high = Math.max(this.#high, value);
            this.#last = value;
            return;
        }
        this.flush();
        this.#at = at;
        this.#first = this.#low = this.#high = this.#last = value;
    }

    endLine() {
        this.flush();
        this.#starts = true;
    }

    flush() {
        if (Number.isNaN(this.#at)) return;
        const rises = this.#first <= this.#last;
        this.#take(this.#at, rises ? this.#low : this.#high, this.#starts);
        if (this.#low < this.#high) this.#take(this.#at, rises ? this.#high : this.#low, false);
        this.#starts = false;
        this.#at = NaN;
    }
}
