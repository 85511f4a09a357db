import { ask } from './api.js';
import { pauseMs } from './poll_pace.js';

/**
 * Asks for the last samples again and again, at a pace that suits the service and this machine. Rests while the page is
 * hidden: what it would draw nobody sees.
 */
export class Poller {
    #take;
    #failures = 0;
    #timer = 0;
    #asking = false;

    /**
     * @param take called with the answer, or null when there is none, and the ms that it took; returns whether it
     *     brought anything new
     */
    constructor(take) {
        this.#take = take;
        document.addEventListener('visibilitychange', () => this.#schedule(0));
        this.#schedule(0);
    }

    #schedule(delayMs) {
        clearTimeout(this.#timer);
        if (!document.hidden && !this.#asking) this.#timer = setTimeout(() => this.#poll(), delayMs);
    }

    async #poll() {
        const startedMs = performance.now();
        this.#asking = true;
        const answer = await this.#lastSamples();
        this.#asking = false;
        this.#failures = answer ? 0 : this.#failures + 1;
        const changed = this.#take(answer, performance.now() - startedMs);
        this.#schedule(pauseMs(this.#failures, performance.now() - startedMs, changed));
    }

    async #lastSamples() {
        try {
            const answer = await ask('/lastsamples');
            return { result: answer.result === true, samples: Array.isArray(answer.samples) ? answer.samples : [] };
        } catch {
            return null;
        }
    }
}
