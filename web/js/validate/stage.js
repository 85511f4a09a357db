// @ts-check
import { byId } from '../shared/dom.js';
import { Interruption } from './interruption.js';
/** @import { Target } from './target_order.js' */

/** @typedef {'instruction' | 'travel' | 'shrink' | 'stand' | 'end'} Phase */
/** @typedef {{ fromMs: number, toMs: number }} TimeSpan in ms of performance.now() */

const travelMs = 800;
const shrinkMs = 500;
const standMs = 1000;

/** How many times larger the target is while it travels. */
const travelScale = 3;

/** The diameter of the outer circle, which holds fixation well. */
const diameterDegrees = 0.6;

/** Zoom and display scaling change the ratio of width to height by less than this share, because sizes are rounded. */
const toleratedShape = 0.01;

const centre = { x: 50, y: 50 };

/**
 * The full screen with the moving target. Only the target moves, and the browser animates it without scripts, so that the
 * processing of samples does not disturb the animation.
 */
export class Stage {
    #stage = byId('stage');
    #target = byId('target');
    #position = centre;
    #abort = new AbortController();

    /** Aborted with an Interruption when the user presses Escape, leaves the full screen, or hides the page. */
    get signal() {
        return this.#abort.signal;
    }

    /** The resolution of the screen in device pixels. */
    get resolution() {
        const { innerWidth, innerHeight, devicePixelRatio } = window;
        return { widthPx: Math.round(innerWidth * devicePixelRatio), heightPx: Math.round(innerHeight * devicePixelRatio) };
    }

    /** Whether the stage has the shape of the screen. Developer tools in the same window take a part of it. */
    get isWholeScreen() {
        const stageShape = innerWidth / innerHeight;
        return Math.abs(stageShape / (screen.width / screen.height) - 1) <= toleratedShape;
    }

    /** Fills the screen. The browser permits this only in reply to a key or a click. Throws an Interruption if it fails. */
    async open() {
        const signal = this.signal;
        document.addEventListener('visibilitychange', () => document.hidden && this.interrupt('pageHidden'), { signal });
        document.addEventListener('keydown', ({ key }) => key === 'Escape' && this.interrupt('leftFullScreen'), { signal });
        this.#stage.hidden = false;
        this.#setPhase('instruction');
        await this.#unlessStopped(this.#fillScreen());
        this.#stage.focus();
        document.addEventListener('fullscreenchange', () => document.fullscreenElement || this.interrupt('leftFullScreen'), { signal });
    }

    async #fillScreen() {
        try {
            await this.#stage.requestFullscreen({ navigationUI: 'hide' });
        } catch {
            throw new Interruption('noFullScreen');
        }
    }

    /** Leaves the full screen. Until it has been left, browsers ignore a focus on elements outside of the stage. */
    async close() {
        this.#setPhase('end');
        this.#abort.abort();
        for (const animation of this.#target.getAnimations()) animation.cancel();
        this.#stage.hidden = true;
        if (document.fullscreenElement) await document.exitFullscreen().catch(() => {});
    }

    /**
     * Stops the run.
     *
     * @param {ConstructorParameters<typeof Interruption>} reason
     */
    interrupt(...reason) {
        this.#abort.abort(new Interruption(...reason));
    }

    /**
     * Shows the instruction until the participant or the operator presses Space.
     *
     * @param {number} distancePx the viewing distance in CSS pixels
     */
    async instruct(distancePx) {
        const size = 2 * distancePx * Math.tan((diameterDegrees / 2) * (Math.PI / 180));
        Object.assign(this.#target.style, { width: `${size}px`, height: `${size}px` });
        this.#place(centre);
        await this.#waitForSpace();
    }

    /**
     * Moves the target to its place, and returns the time span during which it stood still.
     *
     * @param {Target} target
     * @returns {Promise<TimeSpan>}
     */
    async show(target) {
        this.#setPhase('travel');
        await this.#animate([this.#transform(this.#position, travelScale), this.#transform(target, travelScale)], travelMs, 'ease-in-out');
        this.#setPhase('shrink');
        await this.#animate([this.#transform(target, travelScale), this.#transform(target, 1)], shrinkMs, 'ease-out');
        this.#position = target;
        this.#setPhase('stand');
        const fromMs = performance.now();
        await this.pause(standMs);
        return { fromMs, toMs: fromMs + standMs };
    }

    /**
     * Waits. Throws the reason if the run is stopped.
     *
     * @param {number} ms
     */
    async pause(ms) {
        await this.#unlessStopped(new Promise(done => setTimeout(done, ms)));
    }

    /** @param {Phase} phase */
    #setPhase(phase) {
        this.#stage.dataset.phase = phase;
    }

    async #waitForSpace() {
        const { signal } = this;
        await this.#unlessStopped(new Promise(done => {
            document.addEventListener('keydown', event => {
                if (event.key !== ' ' || event.repeat) return;
                event.preventDefault();
                done(undefined);
            }, { signal });
        }));
    }

    /** @param {{ x: number, y: number }} position */
    #place(position) {
        this.#position = position;
        this.#target.style.transform = this.#transform(position, travelScale);
    }

    /**
     * @param {string[]} transforms
     * @param {number} duration
     * @param {string} easing
     */
    async #animate(transforms, duration, easing) {
        const animation = this.#target.animate({ transform: transforms }, { duration, easing, fill: 'forwards' });
        await this.#unlessStopped(animation.finished);
        this.#target.style.transform = transforms[transforms.length - 1];
        animation.cancel();
    }

    /**
     * Returns the CSS transform that centres the target at a position in percent of the screen.
     *
     * @param {{ x: number, y: number }} position
     * @param {number} scale
     */
    #transform({ x, y }, scale) {
        return `translate(${x}vw, ${y}vh) translate(-50%, -50%) scale(${scale})`;
    }

    /**
     * Waits for a promise. Throws the reason if the run is stopped before.
     *
     * @param {Promise<unknown>} promise
     */
    async #unlessStopped(promise) {
        const { signal } = this;
        signal.throwIfAborted();
        const stopped = new Promise((_, reject) => signal.addEventListener('abort', () => reject(signal.reason), { once: true }));
        await Promise.race([promise, stopped]);
    }
}
