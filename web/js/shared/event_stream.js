// @ts-check
import { addressOf, reasonOf } from './api.js';
/** @import { LiveSample, Marker, Missed, State } from './live_model.js' */

/**
 * @typedef {object} Handlers
 * @property {(state: State) => void} state called when the connection is made, at each change, and once a second
 * @property {(samples: LiveSample[]) => void} samples called with samples that have not been passed before, oldest first
 * @property {(marker: Marker) => void} event called for each marker, also those of other programs
 * @property {(missed: Missed) => void} missed called when samples were missed
 * @property {(reason: string) => void} lost called while there is no connection; the reason is empty if Ocela gave none
 */

const eventNames = /** @type {const} */ (['state', 'samples', 'event', 'missed']);

/** Ocela collects samples for this time. The page draws more often, but a browser needs much CPU time for each event. */
const intervalMs = 100;

/** A connection without an event for this time is dead, because Ocela sends the state once a second. */
const maxSilenceMs = 4000;

const firstRetryMs = 250;
const maxRetryMs = 4000;

/** @param {number} failureCount the number of failures since the last event, at least 1 */
export function retryDelayMs(failureCount) {
    return Math.min(firstRetryMs * 2 ** (failureCount - 1), maxRetryMs);
}

/**
 * A connection to Ocela's event stream. It is closed while the page is hidden. Each new connection continues after the last
 * received sample, also after a failure.
 */
export class EventStream {
    #handlers;
    /** @type {EventSource | null} */
    #source = null;
    /** The id of the last event, or an empty text. */
    #lastId = '';
    #failureCount = 0;
    /** Detects a silent connection or, without a connection, makes the next one. @type {ReturnType<typeof setTimeout> | undefined} */
    #timer;

    /** @param {Handlers} handlers */
    constructor(handlers) {
        this.#handlers = handlers;
        document.addEventListener('visibilitychange', () => this.#followVisibility());
        this.#followVisibility();
    }

    #followVisibility() {
        this.#close();
        if (document.hidden) this.#handlers.lost('');
        else this.#open();
    }

    #open() {
        const source = new EventSource(this.#address());
        for (const name of eventNames) source.addEventListener(name, event => this.#receive(name, event));
        source.addEventListener('error', () => this.#lose(source.readyState === EventSource.CLOSED));
        this.#source = source;
        this.#watch();
    }

    #close() {
        clearTimeout(this.#timer);
        this.#source?.close();
        this.#source = null;
    }

    #address() {
        const after = this.#lastId && `&after=${this.#lastId}`;
        return `${addressOf('stream')}?interval=${intervalMs}${after}`;
    }

    #watch() {
        clearTimeout(this.#timer);
        this.#timer = setTimeout(() => this.#lose(false), maxSilenceMs);
    }

    /**
     * @param {typeof eventNames[number]} name
     * @param {MessageEvent<string>} event
     */
    #receive(name, { data, lastEventId }) {
        this.#lastId = lastEventId || this.#lastId;
        this.#failureCount = 0;
        this.#watch();
        this.#handlers[name](JSON.parse(data));
    }

    /** @param {boolean} refused whether Ocela answered with an HTTP error status */
    async #lose(refused) {
        const failureCount = ++this.#failureCount;
        this.#close();
        this.#timer = setTimeout(() => this.#open(), retryDelayMs(failureCount));
        const reason = refused ? await this.#refusal() : '';
        const isOutdated = this.#failureCount !== failureCount;
        if (!isOutdated) this.#handlers.lost(reason);
    }

    /** Asks for the stream again, because an EventSource does not show the answer to a refused request. */
    async #refusal() {
        const abort = new AbortController();
        try {
            const answer = await fetch(this.#address(), { cache: 'no-store', signal: abort.signal });
            return answer.ok ? '' : await reasonOf(answer);
        } catch {
            return '';
        } finally {
            abort.abort();
        }
    }
}
