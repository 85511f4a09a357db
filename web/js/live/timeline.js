/** What the service keeps, in ms; a page that asks less often than this misses samples. */
export const windowMs = 2000;

/** The tracker's clock may run slower than ours: forget the largest difference seen at this pace. */
const driftMsPerMs = 0.001;

function stampedAlike(samples) {
    return samples.length > 1 && samples.every(sample => sample.timestamp === samples[0].timestamp);
}

/**
 * The time axis of the live page, in ms. Samples keep the tracker's timestamps as long as these differ. Where they are
 * all alike the arrival counts: what is new in an answer is spread over the time since the answer before.
 */
export class Timeline {
    byArrival = false;
    #arrivedMs = NaN;
    #offsetMs = 0;

    /**
     * The times of the last `count` of the `samples` of an answer that arrived at `nowMs` of the page's clock.
     * A change between the two axes makes earlier times meaningless: `byArrival` tells.
     */
    timesOf(samples, count, nowMs) {
        const byArrival = stampedAlike(samples);
        this.byArrival = byArrival;
        const fresh = samples.slice(samples.length - count);
        const times = byArrival ? this.#spread(count, nowMs) : fresh.map(sample => sample.timestamp);
        if (!byArrival && count > 0) this.#follow(samples[samples.length - 1].timestamp, nowMs);
        this.#arrivedMs = nowMs;
        return times;
    }

    /** The axis' time at `nowMs` of the page's clock. */
    now(nowMs) {
        return this.byArrival ? nowMs : nowMs + this.#offsetMs;
    }

    #spread(count, nowMs) {
        const since = Math.min(nowMs - this.#arrivedMs || windowMs, windowMs);
        return Array.from({ length: count }, (_, i) => nowMs - (since * (count - 1 - i)) / count);
    }

    /** The quickest answer tells best how far the two clocks are apart. */
    #follow(newestMs, nowMs) {
        const offset = newestMs - nowMs;
        const elapsed = nowMs - this.#arrivedMs;
        const faded = this.#offsetMs - elapsed * driftMsPerMs;
        const jumped = !(Math.abs(offset - this.#offsetMs) < windowMs);
        this.#offsetMs = Number.isNaN(elapsed) || jumped ? offset : Math.max(offset, faded);
    }
}
