/** Lengths in ms; the dispersion in percent of the screen's width. */
export const usualParameters = { dispersion: 3, shortestMs: 100, longestGapMs: 75 };

/**
 * The fixations of a record by dispersion threshold: stretches of at least `shortestMs` in which the gaze's extent
 * across and down, added, is `dispersion` at most. The gaze may be lost in between for `longestGapMs`.
 *
 * @param aspect the screen's width by its height, as the columns' percent are of either
 * @returns a list of { from, to, startMs, durationMs, x, y }: samples `from` to `to` (excluded), the centre in percent
 */
export function findFixations(columns, parameters, aspect) {
    const search = new Search(columns, parameters, aspect);
    for (let i = 0; i < columns.length; ++i) {
        if (!Number.isNaN(columns.x[i])) search.add(i);
    }
    search.close();
    return search.fixations;
}

/** Holds the window of samples, from `#start` to `#end` (included), that fit together so far. */
class Search {
    fixations = [];
    #columns;
    #parameters;
    #downScale;
    #start = -1;
    #end = -1;
    #extent;

    constructor(columns, parameters, aspect) {
        this.#columns = columns;
        this.#parameters = parameters;
        this.#downScale = 1 / aspect;
    }

    add(i) {
        const { time } = this.#columns;
        if (this.#start >= 0 && time[i] - time[this.#end] > this.#parameters.longestGapMs) this.close();
        if (this.#start < 0) this.#beginAt(i);
        else if (this.#fits(this.#extent, i)) this.#extend(i);
        else this.#moveOnTo(i);
    }

    /** Ends the window, which is a fixation if it is long enough. */
    close() {
        if (this.#start >= 0 && this.#isLongEnough()) this.fixations.push(this.#fixation());
        this.#start = -1;
    }

    #beginAt(i) {
        this.#start = this.#end = i;
        this.#extent = this.#extentOf(i);
    }

    #extend(i) {
        this.#extent = grown(this.#extent, this.#columns.x[i], this.#columns.y[i]);
        this.#end = i;
    }

    /** A window that was too short loses its oldest samples, just so many that the new one fits. */
    #moveOnTo(i) {
        const oldStart = this.#start;
        const wasFixation = this.#isLongEnough();
        if (wasFixation) this.close();
        this.#beginAt(i);
        if (wasFixation) return;
        for (let j = i - 1; j > oldStart && (Number.isNaN(this.#columns.x[j]) || this.#fits(this.#extent, j)); --j) {
            if (Number.isNaN(this.#columns.x[j])) continue;
            this.#extent = grown(this.#extent, this.#columns.x[j], this.#columns.y[j]);
            this.#start = j;
        }
    }

    #extentOf(i) {
        const [x, y] = [this.#columns.x[i], this.#columns.y[i]];
        return { left: x, right: x, top: y, bottom: y };
    }

    #fits(extent, i) {
        const { left, right, top, bottom } = grown(extent, this.#columns.x[i], this.#columns.y[i]);
        return right - left + (bottom - top) * this.#downScale <= this.#parameters.dispersion;
    }

    #isLongEnough() {
        const { time } = this.#columns;
        return time[this.#end] - time[this.#start] >= this.#parameters.shortestMs;
    }

    #fixation() {
        const { time, x, y } = this.#columns;
        const [from, to] = [this.#start, this.#end + 1];
        const startMs = time[from];
        return { from, to, startMs, durationMs: time[this.#end] - startMs, x: mean(x, from, to), y: mean(y, from, to) };
    }
}

function grown({ left, right, top, bottom }, x, y) {
    return { left: Math.min(left, x), right: Math.max(right, x), top: Math.min(top, y), bottom: Math.max(bottom, y) };
}

function mean(values, from, to) {
    let sum = 0;
    let count = 0;
    for (let i = from; i < to; ++i) {
        if (Number.isNaN(values[i])) continue;
        sum += values[i];
        ++count;
    }
    return sum / count;
}
