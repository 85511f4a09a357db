// @ts-check
/** @import { Row } from './sample_columns.js' */

/**
 * A sample with the names of the API. In JSON, null is a non-finite number. Record files have no flags for the eyes.
 *
 * @typedef {'x' | 'y' | 'x_px' | 'y_px' | 'l_x' | 'l_y' | 'r_x' | 'r_y'} GazeKey
 * @typedef {Record<GazeKey | 'l_pupil_mm' | 'r_pupil_mm' | 'distance_cm', number | null>} Measured
 * @typedef {Measured & { timestamp: number, valid: boolean | number, l_valid?: boolean, r_valid?: boolean }} Sample
 */

/** Noise changes measured values in every sample. An eye whose values repeat more often than this is lost. */
const maxRepeatCount = 2;

/**
 * @param {number | null} value
 * @returns {number} NaN for null and non-finite numbers
 */
function finite(value) {
    return value !== null && Number.isFinite(value) ? value : NaN;
}

/** @param {number | null} value */
function positive(value) {
    const number = finite(value);
    return number > 0 ? number : NaN;
}

/**
 * Returns the two coordinates. Trackers send 0, 0 for a missing gaze.
 *
 * @param {number | null} x
 * @param {number | null} y
 */
function point(x, y) {
    const values = [finite(x), finite(y)];
    return values.some(Number.isNaN) || values.every(value => value === 0) ? [NaN, NaN] : values;
}

/**
 * Detects a lost eye by its values, because record files have no flag for each eye. For a lost eye, some trackers send
 * zeros, and others repeat the last values.
 */
class Eye {
    /** @type {(number | null)[]} */
    #last = [];
    #repeatCount = 0;

    /**
     * Returns x, y and the pupil; NaN for missing values.
     *
     * @param {number | null} x
     * @param {number | null} y
     * @param {number | null} pupil
     * @param {boolean} detected
     */
    read(x, y, pupil, detected) {
        const values = [x, y, pupil];
        const repeats = values.every((value, i) => value === this.#last[i]);
        this.#repeatCount = repeats ? this.#repeatCount + 1 : 0;
        this.#last = values;
        return !detected || this.#repeatCount > maxRepeatCount ? [NaN, NaN, NaN] : [...point(x, y), positive(pupil)];
    }
}

/** Converts samples to rows. Use one reader for each stream, because it compares a sample with the previous ones. */
export class SampleReader {
    #left = new Eye();
    #right = new Eye();

    /**
     * @param {Sample} sample
     * @returns {Row}
     */
    read(sample) {
        const [x, y] = sample.valid ? [finite(sample.x), finite(sample.y)] : [NaN, NaN];
        const { l_valid: leftValid = true, r_valid: rightValid = true } = sample;
        const [leftX, leftY, leftPupil] = this.#left.read(sample.l_x, sample.l_y, sample.l_pupil_mm, leftValid);
        const [rightX, rightY, rightPupil] = this.#right.read(sample.r_x, sample.r_y, sample.r_pupil_mm, rightValid);
        return { x, y, leftX, leftY, rightX, rightY, leftPupil, rightPupil, distance: positive(sample.distance_cm) };
    }
}
