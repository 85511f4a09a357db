// @ts-check
import { CrossedEye } from '../shared/crossed_eye.js';
import { SampleColumns } from '../shared/sample_columns.js';
import { SampleReader } from '../shared/sample_reader.js';
import { areaPxOf, aspectOf } from '../shared/screen.js';
import { headers } from './record_parser.js';
/** @import { Sample } from '../shared/sample_reader.js' */

/**
 * The content of a record file.
 *
 * @typedef {object} RecordContent
 * @property {SampleColumns} columns with times relative to the first sample
 * @property {boolean} crossed whether the axes of the right eye are exchanged in the file; the columns have the corrected axes
 * @property {boolean} timeless whether all samples have the same time
 * @property {number} aspect the screen's width divided by its height
 * @property {{ width: number, height: number }} areaPx the size of the calibrated area; NaN if it is unknown
 * @property {number} setBackLine the line at which the clock was first set back; 0 if it never was
 * @property {boolean} hasGap whether samples are so far apart that the clock may have been set forward between them
 */

const maxAspectSampleCount = 1000;

/** A time service corrects a smaller error of the clock gradually. Ocela uses the same limit. */
const minClockStepMs = 100;

/** The columns of the file that are used, with the API's names for them. */
const keyOf = {
    Valid: 'valid', X: 'x', Y: 'y', X_px: 'x_px', Y_px: 'y_px', Distance_cm: 'distance_cm',
    L_X: 'l_x', L_Y: 'l_y', L_Pupil_mm: 'l_pupil_mm', R_X: 'r_x', R_Y: 'r_y', R_Pupil_mm: 'r_pupil_mm',
};
const keys = Object.entries(keyOf).map(([header, key]) => ({ column: headers.indexOf(header), key }));
const timestampColumn = headers.indexOf('Timestamp');

/**
 * @param {Float64Array} cells
 * @returns {Sample}
 */
function toSample(cells) {
    /** @type {Record<string, number>} */
    const sample = {};
    for (const { column, key } of keys) sample[key] = cells[column];
    return /** @type {Sample} */ (/** @type {unknown} */ (sample));
}

/**
 * Collects the rows of a record file. If the computer's clock was set back during the recording, later samples follow
 * immediately after the earlier ones.
 */
export class RecordBuilder {
    #columns = new SampleColumns();
    #reader = new SampleReader();
    #rightEye = new CrossedEye();
    /** @type {Sample[]} */
    #aspectSamples = [];
    #lastMs = NaN;
    #shiftMs = 0;
    #setBackLine = 0;
    #hasGap = false;

    /**
     * @param {Float64Array} cells
     * @param {number} line
     */
    add(cells, line) {
        const sample = toSample(cells);
        const row = this.#reader.read(sample);
        this.#rightEye.add(row.x, row.y, row.rightX, row.rightY);
        this.#columns.append(this.#timeOf(cells[timestampColumn], line), row);
        if (sample.valid && this.#aspectSamples.length < maxAspectSampleCount) this.#aspectSamples.push(sample);
    }

    /** @returns {RecordContent} */
    finish() {
        const columns = this.#columns;
        const { crossed } = this.#rightEye;
        if (crossed) [columns.rightX, columns.rightY] = [columns.rightY, columns.rightX];
        const timeless = columns.length > 1 && columns.time[columns.length - 1] === columns.time[0];
        const samples = this.#aspectSamples;
        return {
            columns, crossed, timeless, aspect: aspectOf(samples), areaPx: areaPxOf(samples),
            setBackLine: this.#setBackLine, hasGap: this.#hasGap,
        };
    }

    /**
     * @param {number} cell
     * @param {number} line
     */
    #timeOf(cell, line) {
        const timestampMs = Number.isNaN(cell) ? this.#lastMs || 0 : cell;
        if (Number.isNaN(this.#lastMs)) this.#shiftMs = -timestampMs;
        if (timestampMs < this.#lastMs) {
            this.#shiftMs += this.#lastMs - timestampMs;
            this.#setBackLine ||= line;
        }
        this.#hasGap ||= timestampMs - this.#lastMs >= minClockStepMs;
        this.#lastMs = timestampMs;
        return timestampMs + this.#shiftMs;
    }
}
