// @ts-check
import { CrossedEye } from '../shared/crossed_eye.js';
import { SampleColumns } from '../shared/sample_columns.js';
import { SampleReader } from '../shared/sample_reader.js';
import { knownCount } from './overlap.js';
import { Timeline, windowMs } from './timeline.js';
/** @import { Sample } from '../shared/sample_reader.js' */

/** @typedef {{ result: boolean, samples: Sample[] }} Answer An answer of /lastsamples. */
/** @typedef {'connecting' | 'offline' | 'noTracker' | 'noSamples' | 'stalled' | 'live'} State */

/** The duration of the series, in ms. */
export const spanMs = 10000;

/**
 * The weight of a sample decreases by about two thirds within 1000 samples, which are ten seconds at 100 Hz. That is long
 * enough to detect a crossed eye, and short enough to notice another tracker.
 */
const crossedDecay = 0.999;

/** If the interval between two answers is longer, samples may be missing between them. */
const safeIntervalMs = 0.8 * windowMs;

/** The state is `stalled` after this time without new samples. Even a slow tracker sends several samples in it. */
const stalledAfterMs = 1000;

/** If the last answer is older, the state is unknown. Longer than the maximum interval between requests. */
const unansweredAfterMs = 1500;

/** Joins the answers of /lastsamples to one series of the last ten seconds. Times are in ms of the page's clock. */
export class SampleStream {
    columns = new SampleColumns();
    timeline = new Timeline();
    /** The samples of the last answer for which a tracker was selected. @type {Sample[]} */
    newest = [];
    /** undefined before the first request, null after a request without an answer. @type {Answer | null | undefined} */
    #answer;
    #answeredMs = NaN;
    #firstMs = NaN;
    #newestMs = NaN;
    #changedMs = NaN;
    #reader = new SampleReader();
    #rightEye = new CrossedEye(crossedDecay);

    /** Whether the tracker exchanges the axes of the right eye. The columns have the corrected axes. */
    get crossed() {
        return this.#rightEye.crossed;
    }

    /**
     * Processes an answer, or null if there was none. Returns whether it has new samples.
     *
     * @param {Answer | null} answer
     * @param {number} nowMs
     */
    take(answer, nowMs) {
        this.#answer = answer;
        this.#answeredMs = nowMs;
        return answer !== null && answer.result && this.#join(answer.samples, nowMs) > 0;
    }

    /**
     * Returns the state of the service and the tracker.
     *
     * @param {number} nowMs
     * @returns {State}
     */
    state(nowMs) {
        if (this.#answer === null) return 'offline';
        if (this.#answer === undefined || nowMs - this.#answeredMs > unansweredAfterMs) return 'connecting';
        if (!this.#answer.result) return 'noTracker';
        if (this.#answer.samples.length === 0) return 'noSamples';
        if (!Number.isNaN(this.#changedMs))
            return this.#answeredMs - this.#changedMs <= stalledAfterMs ? 'live' : 'stalled';
        // The first samples may be old. Only a change shows that the tracker delivers.
        return this.#answeredMs - this.#firstMs <= stalledAfterMs ? 'connecting' : 'stalled';
    }

    /**
     * @param {Sample[]} samples
     * @param {number} nowMs
     */
    #join(samples, nowMs) {
        const known = knownCount(this.newest, samples);
        const count = samples.length - known;
        if (Number.isNaN(this.#newestMs)) this.#firstMs = nowMs;
        else if (count > 0 || samples.length !== this.newest.length) this.#changedMs = nowMs;
        if (known === 0 && nowMs - this.#newestMs > safeIntervalMs) this.columns.clear();
        this.#append(samples, count, nowMs);
        this.newest = samples;
        this.#newestMs = nowMs;
        return count;
    }

    /**
     * @param {Sample[]} samples
     * @param {number} count the number of new samples at the end of `samples`
     * @param {number} nowMs
     */
    #append(samples, count, nowMs) {
        const wasByArrival = this.timeline.byArrival;
        const times = this.timeline.timesOf(samples, count, nowMs);
        if (wasByArrival !== this.timeline.byArrival) this.columns.clear();
        times.forEach((timeMs, i) => this.#appendSample(timeMs, samples[samples.length - count + i]));
        this.columns.dropBefore(this.timeline.now(nowMs) - spanMs);
    }

    /**
     * @param {number} timeMs
     * @param {Sample} sample
     */
    #appendSample(timeMs, sample) {
        const { columns } = this;
        const row = this.#reader.read(sample);
        const wasCrossed = this.crossed;
        if (this.#rightEye.add(row.x, row.y, row.rightX, row.rightY))
            [row.rightX, row.rightY] = [row.rightY, row.rightX];
        if (this.crossed !== wasCrossed) [columns.rightX, columns.rightY] = [columns.rightY, columns.rightX];
        // The clock was set back, or another tracker has another clock.
        if (columns.length > 0 && timeMs < columns.time[columns.length - 1]) columns.clear();
        columns.append(timeMs, row);
    }
}
