// @ts-check

/** The rate at which the estimated difference decreases, to follow a clock of Ocela's machine that is slower than the page's. */
const driftMsPerMs = 0.001;

/** A larger change of the difference is a jump: one of the two machines was asleep, or Ocela was restarted. */
const maxChangeMs = 2000;

/** Converts the page's clock to that of Ocela, which may run on another machine. Times are in ms. */
export class ProgramClock {
    #differenceMs = NaN;
    #observedMs = NaN;

    /**
     * Adds a time of Ocela's clock that arrived at `nowMs`. The time with the shortest delay is the most accurate.
     *
     * @param {number} timeMs
     * @param {number} nowMs
     */
    observe(timeMs, nowMs) {
        const differenceMs = timeMs - nowMs;
        const driftedMs = this.#differenceMs - (nowMs - this.#observedMs) * driftMsPerMs;
        const jumped = !(Math.abs(differenceMs - driftedMs) < maxChangeMs);
        this.#differenceMs = jumped ? differenceMs : Math.max(differenceMs, driftedMs);
        this.#observedMs = nowMs;
    }

    /**
     * Returns the time in Ocela's clock. NaN before the first call of observe().
     *
     * @param {number} nowMs in the page's clock
     */
    now(nowMs) {
        return nowMs + this.#differenceMs;
    }
}
