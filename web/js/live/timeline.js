// @ts-check
/** @import { Sample } from '../shared/sample_reader.js' */

/** Ocela keeps the samples of the last two seconds. A page that requests them less often misses samples. */
export const windowMs = 2000;

/** The rate at which the estimated clock difference decreases, to follow a tracker clock that is slower than the page's. */
const driftMsPerMs = 0.001;

/** @param {Sample[]} samples */
function haveSameTimestamp(samples) {
    return samples.length > 1 && samples.every(sample => sample.timestamp === samples[0].timestamp);
}

/**
 * The time axis of the live page, in ms. Its times are the tracker's timestamps. If all timestamps are the same, its times
 * are arrival times in the page's clock: new samples are spread over the time since the previous answer.
 */
export class Timeline {
    byArrival = false;
    #arrivedMs = NaN;
    #offsetMs = 0;

    /**
     * Returns the times of the last `count` samples of an answer. If `byArrival` changes, earlier times are from another
     * clock and cannot be compared.
     *
     * @param {Sample[]} samples all samples of the answer
     * @param {number} count
     * @param {number} nowMs when the answer arrived, in the page's clock
     */
    timesOf(samples, count, nowMs) {
        this.byArrival = haveSameTimestamp(samples);
        const times = this.byArrival
            ? this.#spread(count, nowMs)
            : samples.slice(samples.length - count).map(sample => sample.timestamp);
        if (!this.byArrival && count > 0) this.#follow(samples[samples.length - 1].timestamp, nowMs);
        this.#arrivedMs = nowMs;
        return times;
    }

    /**
     * Converts a time of the page's clock to the time axis.
     *
     * @param {number} nowMs
     */
    now(nowMs) {
        return this.byArrival ? nowMs : nowMs + this.#offsetMs;
    }

    /**
     * @param {number} count
     * @param {number} nowMs
     */
    #spread(count, nowMs) {
        const sinceMs = Math.min(nowMs - this.#arrivedMs || windowMs, windowMs);
        return Array.from({ length: count }, (_, i) => nowMs - (sinceMs * (count - 1 - i)) / count);
    }

    /**
     * Estimates the difference of the two clocks. The answer with the shortest delay is the most accurate.
     *
     * @param {number} newestMs
     * @param {number} nowMs
     */
    #follow(newestMs, nowMs) {
        const offsetMs = newestMs - nowMs;
        const elapsedMs = nowMs - this.#arrivedMs;
        const driftedMs = this.#offsetMs - elapsedMs * driftMsPerMs;
        const jumped = !(Math.abs(offsetMs - this.#offsetMs) < windowMs);
        this.#offsetMs = Number.isNaN(elapsedMs) || jumped ? offsetMs : Math.max(offsetMs, driftedMs);
    }
}
