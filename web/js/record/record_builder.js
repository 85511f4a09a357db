import { aspectOf } from '../shared/aspect.js';
import { CrossedEye } from '../shared/crossed_eye.js';
import { SampleColumns } from '../shared/sample_columns.js';
import { SampleReader } from '../shared/sample_reader.js';
import { headers } from './record_parser.js';

/** So many samples tell the screen's shape. */
const enoughForAspect = 1000;

/** The API's names, which the rest knows a sample by, of the record's columns. */
const keyOf = {
    Valid: 'valid', X: 'x', Y: 'y', X_px: 'x_px', Y_px: 'y_px', Distance_cm: 'distance_cm',
    L_X: 'l_x', L_Y: 'l_y', L_Pupil_mm: 'l_pupil_mm', R_X: 'r_x', R_Y: 'r_y', R_Pupil_mm: 'r_pupil_mm',
};
const keys = Object.entries(keyOf).map(([header, key]) => [headers.indexOf(header), key]);

function toSample(cells) {
    const sample = {};
    for (const [column, key] of keys) sample[key] = cells[column];
    return sample;
}

/**
 * Gathers the rows of a record. Its times count from its first sample and never decrease: where the recording
 * computer's clock was set back, what follows is moved, so that it comes after what was before.
 */
export class RecordBuilder {
    #columns = new SampleColumns();
    #reader = new SampleReader();
    #rightEye = new CrossedEye();
    #forAspect = [];
    #lastMs = NaN;
    #movedMs = 0;
    #setBackLine = 0;

    add(cells, line) {
        const sample = toSample(cells);
        const row = this.#reader.read(sample);
        this.#rightEye.add(row.x, row.y, row.rightX, row.rightY);
        this.#columns.append(this.#timeOf(cells[0], line), row);
        if (sample.valid && this.#forAspect.length < enoughForAspect) this.#forAspect.push(sample);
    }

    /** `setBackLine` is where the clock was first set back, 0 if never; `timeless`: all samples have the same time. */
    finish() {
        const columns = this.#columns;
        const crossed = this.#rightEye.crossed;
        if (crossed) [columns.rightX, columns.rightY] = [columns.rightY, columns.rightX];
        const timeless = columns.length > 1 && columns.time[columns.length - 1] === columns.time[0];
        return { columns, crossed, timeless, aspect: aspectOf(this.#forAspect), setBackLine: this.#setBackLine };
    }

    #timeOf(cell, line) {
        const timestampMs = Number.isNaN(cell) ? this.#lastMs || 0 : cell;
        if (Number.isNaN(this.#lastMs)) this.#movedMs = -timestampMs;
        if (timestampMs < this.#lastMs) {
            this.#movedMs += this.#lastMs - timestampMs;
            this.#setBackLine ||= line;
        }
        this.#lastMs = timestampMs;
        return timestampMs + this.#movedMs;
    }
}

/** Times for the samples of a record without any, as if they had come at an even rate. */
export function spreadTimes(columns, rateHz) {
    for (let i = 0; i < columns.length; ++i) columns.time[i] = (i * 1000) / rateHz;
}
