// @ts-check
import { meanOf } from '../shared/statistics.js';
/** @import { SampleColumns } from '../shared/sample_columns.js' */

/** @typedef {{ startMs: number, durationMs: number, x: number, y: number }} Fixation The centre is in percent. */

/** @typedef {{ method: 'dispersion', maxDispersion: number, minDurationMs: number, maxLossMs: number }} DispersionParameters */

/** The dispersion is in percent of the screen's width. @type {DispersionParameters} */
export const defaultDispersionParameters = { method: 'dispersion', maxDispersion: 3, minDurationMs: 100, maxLossMs: 75 };

/**
 * Finds fixations by dispersion threshold: time ranges of at least `minDurationMs` in which the width and the height of
 * the gaze's bounding box add up to at most `maxDispersion`. The gaze may be lost for up to `maxLossMs`.
 *
 * @param {SampleColumns} columns
 * @param {DispersionParameters} parameters
 * @param {number} aspect the screen's width divided by its height
 */
export function findDispersionFixations(columns, parameters, aspect) {
    const search = new Search(columns, parameters, aspect);
    for (let i = 0; i < columns.length; ++i) {
        if (!Number.isNaN(columns.x[i])) search.add(i);
    }
    search.close();
    return search.fixations;
}

/** @typedef {{ left: number, right: number, top: number, bottom: number }} Box */

/** Holds a window of samples, from `#start` to `#end` (included), that are within the maximum dispersion. */
class Search {
    /** @type {Fixation[]} */
    fixations = [];
    #columns;
    #parameters;
    #aspect;
    #start = -1;
    #end = -1;
    /** @type {Box} */
    #box = { left: 0, right: 0, top: 0, bottom: 0 };

    /**
     * @param {SampleColumns} columns
     * @param {DispersionParameters} parameters
     * @param {number} aspect
     */
    constructor(columns, parameters, aspect) {
        this.#columns = columns;
        this.#parameters = parameters;
        this.#aspect = aspect;
    }

    /** @param {number} i a sample with a valid gaze */
    add(i) {
        const { time } = this.#columns;
        if (this.#start >= 0 && time[i] - time[this.#end] > this.#parameters.maxLossMs) this.close();
        if (this.#start < 0) this.#openAt(i);
        else if (this.#fits(i)) this.#extendTo(i);
        else this.#moveTo(i);
    }

    /** Closes the window. It is a fixation if it is long enough. */
    close() {
        if (this.#start >= 0 && this.#isLongEnough()) this.fixations.push(this.#fixation());
        this.#start = -1;
    }

    /** @param {number} i */
    #openAt(i) {
        const [x, y] = [this.#columns.x[i], this.#columns.y[i]];
        this.#start = this.#end = i;
        this.#box = { left: x, right: x, top: y, bottom: y };
    }

    /** @param {number} i */
    #extendTo(i) {
        this.#box = this.#boxWith(i);
        this.#end = i;
    }

    /**
     * Starts a new window at a sample that does not fit. If the previous window is not a fixation, the new one
     * keeps as many of the previous samples as fit.
     *
     * @param {number} i
     */
    #moveTo(i) {
        const oldStart = this.#start;
        const wasFixation = this.#isLongEnough();
        if (wasFixation) this.close();
        this.#openAt(i);
        if (wasFixation) return;
        for (let j = i - 1; j > oldStart; --j) {
            if (Number.isNaN(this.#columns.x[j])) continue;
            if (!this.#fits(j)) return;
            this.#box = this.#boxWith(j);
            this.#start = j;
        }
    }

    /**
     * @param {number} i
     * @returns {Box}
     */
    #boxWith(i) {
        const { left, right, top, bottom } = this.#box;
        const [x, y] = [this.#columns.x[i], this.#columns.y[i]];
        return { left: Math.min(left, x), right: Math.max(right, x), top: Math.min(top, y), bottom: Math.max(bottom, y) };
    }

    /** @param {number} i */
    #fits(i) {
        const { left, right, top, bottom } = this.#boxWith(i);
        return right - left + (bottom - top) / this.#aspect <= this.#parameters.maxDispersion;
    }

    #isLongEnough() {
        const { time } = this.#columns;
        return time[this.#end] - time[this.#start] >= this.#parameters.minDurationMs;
    }

    #fixation() {
        const { time, x, y } = this.#columns;
        const [from, to] = [this.#start, this.#end + 1];
        const startMs = time[from];
        return { startMs, durationMs: time[this.#end] - startMs, x: meanOf(x, from, to), y: meanOf(y, from, to) };
    }
}
