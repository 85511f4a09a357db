// @ts-check
import { CrossedEye } from '../shared/crossed_eye.js';
import { SampleReader } from '../shared/sample_reader.js';
/** @import { ExchangeSamples } from '../shared/exchange_file.js' */
/** @import { LiveSample } from '../shared/live_model.js' */
/** @import { Row } from '../shared/sample_columns.js' */
/** @import { AreaOnScreen } from './calibrated_screen.js' */
/** @import { Target } from './target_order.js' */

/** @typedef {{ widthPx: number, heightPx: number }} Resolution */

/** The time during which a target stands still, in ms of Ocela's clock. @typedef {{ target: Target, fromMs: number, toMs: number }} Window */

/** The share of its expected samples that an eye needs at a target. */
const minValidShare = 0.5;

/** An eye that has enough samples at a smaller share of the targets is ignored. */
const minSeenShare = 0.5;

/** A longer time without samples at an edge of a window is data loss. */
const maxEdgeMs = 100;

/** @type {Row} */
const missingRow = Object.freeze({
    x: NaN, y: NaN, leftX: NaN, leftY: NaN, rightX: NaN, rightY: NaN, leftPupil: NaN, rightPupil: NaN, distance: NaN,
});

const outsideId = -1;
const mmPerCm = 10;

/** Times and positions are rounded to this part of a unit, so that a saved file gives the same figures. */
const resolution = 1000;

/** Collects the samples of a run and the windows of its targets. */
export class GazeCollector {
    /** @type {number[]} */
    #times = [];
    /** @type {Row[]} */
    #rows = [];
    /** The last window of each target, by its id. @type {Map<number, Window>} */
    #windows = new Map();
    #reader = new SampleReader();
    #rightEye = new CrossedEye();

    /** Whether the tracker exchanges the axes of the right eye. */
    get isRightEyeCrossed() {
        return this.#rightEye.crossed;
    }

    /** @param {LiveSample[]} samples */
    add(samples) {
        for (const sample of samples) {
            const row = this.#reader.read(sample);
            this.#rightEye.add(row.x, row.y, row.rightX, row.rightY);
            this.#times.push(sample.time);
            this.#rows.push(row);
        }
    }

    /**
     * Adds the window of a target. It replaces an earlier window of the same target.
     *
     * @param {Window} window
     */
    addWindow(window) {
        this.#windows.set(window.target.id, window);
    }

    /**
     * Returns the targets at which an eye has too few valid samples. An eye that is lost at most targets is ignored,
     * unless both are.
     *
     * @param {number | null} expectedHz
     * @returns {Target[]}
     */
    targetsWithTooFewSamples(expectedHz) {
        const windows = [...this.#windows.values()];
        const eyes = /** @type {const} */ (['leftX', 'rightX']);
        const tooFew = eyes.map(eye => windows.filter(window => this.#validShare(window, eye, expectedHz) < minValidShare));
        const seen = tooFew.filter(list => list.length <= (1 - minSeenShare) * windows.length);
        const repeated = new Set((seen.length > 0 ? seen : tooFew).flat());
        return windows.filter(window => repeated.has(window)).map(({ target }) => target);
    }

    /**
     * @param {Window} window
     * @param {'leftX' | 'rightX'} eye
     * @param {number | null} expectedHz
     */
    #validShare({ fromMs, toMs }, eye, expectedHz) {
        const inWindow = this.#rows.filter((_, i) => this.#times[i] >= fromMs && this.#times[i] < toMs);
        const validCount = inWindow.filter(row => !Number.isNaN(row[eye])).length;
        const expectedCount = expectedHz === null ? inWindow.length : (expectedHz * (toMs - fromMs)) / 1000;
        return validCount === 0 ? 0 : validCount / expectedCount;
    }

    /** Returns the mean distance during the windows in mm, or NaN if the tracker does not measure it. */
    meanDistanceMm() {
        const distances = this.#rows.filter((_, i) => this.#windowAt(this.#times[i])).map(({ distance }) => distance);
        const known = distances.filter(distance => !Number.isNaN(distance));
        return (mmPerCm * known.reduce((sum, distance) => sum + distance, 0)) / known.length;
    }

    /**
     * Returns the samples in pixels of the screen. The first timestamp is 0. A window without samples at an edge gets a
     * missing sample there. Otherwise its duration, and thus its data loss, would be too low.
     *
     * @param {AreaOnScreen} area
     * @param {Resolution} screen
     * @returns {ExchangeSamples}
     */
    samples(area, screen) {
        this.#fillEdges();
        const rows = this.#rows;
        const windows = this.#times.map(time => this.#windowAt(time));
        const column = (/** @type {(row: Row, i: number) => number} */ valueOf) => Float64Array.from(rows, valueOf);
        const toX = (/** @type {number} */ percent) => pixel(area.x(percent), screen.widthPx);
        const toY = (/** @type {number} */ percent) => pixel(area.y(percent), screen.heightPx);
        const crossed = this.isRightEyeCrossed;
        return {
            timestampMs: column((_, i) => rounded(this.#times[i] - this.#times[0])),
            left: { x: column(row => toX(row.leftX)), y: column(row => toY(row.leftY)) },
            right: {
                x: column(row => toX(crossed ? row.rightY : row.rightX)),
                y: column(row => toY(crossed ? row.rightX : row.rightY)),
            },
            targetId: column((_, i) => windows[i]?.target.id ?? outsideId),
            targetX: column((_, i) => pixel((windows[i]?.target.x ?? NaN) / 100, screen.widthPx)),
            targetY: column((_, i) => pixel((windows[i]?.target.y ?? NaN) / 100, screen.heightPx)),
        };
    }

    #fillEdges() {
        for (const { fromMs, toMs } of this.#windows.values()) {
            const inWindow = this.#times.filter(time => time >= fromMs && time < toMs);
            if (!(inWindow[0] - fromMs <= maxEdgeMs)) this.#insertMissing(fromMs);
            if (!(toMs - inWindow[inWindow.length - 1] <= maxEdgeMs)) this.#insertMissing(toMs - 1);
        }
    }

    /** @param {number} timeMs */
    #insertMissing(timeMs) {
        const after = this.#times.findIndex(time => time > timeMs);
        const at = after < 0 ? this.#times.length : after;
        this.#times.splice(at, 0, timeMs);
        this.#rows.splice(at, 0, missingRow);
    }

    /** @param {number} timeMs */
    #windowAt(timeMs) {
        for (const window of this.#windows.values()) {
            if (timeMs >= window.fromMs && timeMs < window.toMs) return window;
        }
        return null;
    }
}

/**
 * Returns pixels from the centre of the screen.
 *
 * @param {number} fraction of the screen
 * @param {number} pixels
 */
function pixel(fraction, pixels) {
    return rounded((fraction - 0.5) * pixels);
}

/** @param {number} value */
function rounded(value) {
    return Math.round(value * resolution) / resolution;
}
