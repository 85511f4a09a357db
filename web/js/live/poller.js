// @ts-check
import { ask } from './api.js';
/** @import { Answer } from './sample_stream.js' */

const minIntervalMs = 160;
const idleIntervalMs = 400;
const maxIntervalMs = 1000;
const firstRetryMs = 250;
const maxRetryMs = 4000;

/** Requests and their answers take at most this share of the time, unless the interval would exceed `maxIntervalMs`. */
const maxBusyShare = 0.3;

/**
 * Returns the pause before the next request, in ms.
 *
 * @param {number} failureCount the number of failed requests since the last answer
 * @param {number} tookMs the time from the last request until its answer was processed
 * @param {boolean} changed whether the last answer had new samples
 */
export function pauseMs(failureCount, tookMs, changed) {
    if (failureCount > 0) return Math.min(firstRetryMs * 2 ** (failureCount - 1), maxRetryMs);
    const intervalMs = Math.max(changed ? minIntervalMs : idleIntervalMs, tookMs / maxBusyShare);
    return Math.max(0, Math.min(intervalMs, maxIntervalMs) - tookMs);
}

/** Requests the last samples periodically. Pauses while the page is hidden. */
export class Poller {
    #take;
    #failureCount = 0;
    /** @type {ReturnType<typeof setTimeout> | undefined} */
    #timer;
    #asking = false;

    /**
     * @param {(answer: Answer | null, tookMs: number) => boolean} take called after each request, with null if there
     *     was no answer; returns whether the answer has new samples
     */
    constructor(take) {
        this.#take = take;
        document.addEventListener('visibilitychange', () => this.#schedule(0));
        this.#schedule(0);
    }

    /** @param {number} delayMs */
    #schedule(delayMs) {
        clearTimeout(this.#timer);
        if (!document.hidden && !this.#asking) this.#timer = setTimeout(() => this.#poll(), delayMs);
    }

    async #poll() {
        const startedMs = performance.now();
        this.#asking = true;
        const answer = await this.#lastSamples();
        this.#asking = false;
        this.#failureCount = answer ? 0 : this.#failureCount + 1;
        const changed = this.#take(answer, performance.now() - startedMs);
        this.#schedule(pauseMs(this.#failureCount, performance.now() - startedMs, changed));
    }

    /** @returns {Promise<Answer | null>} */
    async #lastSamples() {
        try {
            const answer = await ask('/lastsamples');
            return { result: answer.result === true, samples: Array.isArray(answer.samples) ? answer.samples : [] };
        } catch {
            return null;
        }
    }
}
