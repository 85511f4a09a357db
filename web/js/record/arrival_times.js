// @ts-check
import { FileError } from '../shared/file_error.js';
import { samplesFormat } from './record_parser.js';
/** @import { RecordContent } from './record_builder.js' */

const arrivalColumn = samplesFormat.headers.indexOf('Arrival_ms');
const minCapacity = 1024;

/** Collects the arrival times of a samples file. They replace the times of its record file. */
export class ArrivalTimes {
    #count = 0;
    #times = new Float64Array(minCapacity);

    /**
     * @param {Float64Array} cells
     * @param {number} line
     */
    add(cells, line) {
        const time = cells[arrivalColumn];
        const isInOrder = this.#count === 0 ? Number.isFinite(time) : time >= this.#times[this.#count - 1];
        if (!isInOrder) throw new FileError('arrivalOrder', line);
        if (this.#count === this.#times.length) this.#grow();
        this.#times[this.#count++] = time;
    }

    /**
     * Sets the times of a recording, relative to its first sample. Throws a FileError if the samples are not those of
     * the recording. A record file that is cut off may have fewer rows.
     *
     * @param {RecordContent} content
     * @param {boolean} cutOff whether the record file is cut off
     */
    applyTo(content, cutOff) {
        const { columns } = content;
        if (cutOff ? this.#count < columns.length : this.#count !== columns.length)
            throw new FileError('otherRowCount', 0, { count: this.#count, expected: columns.length });
        for (let i = 0; i < columns.length; ++i) columns.time[i] = this.#times[i] - this.#times[0];
        content.timeless = false;
        content.setBackLine = 0;
        content.hasGap = false;
    }

    #grow() {
        const times = new Float64Array(2 * this.#times.length);
        times.set(this.#times);
        this.#times = times;
    }
}
