// @ts-check

/** The columns other than the time. Gaze is in percent of the calibrated area, pupils are in mm, the distance in cm. */
export const columnNames = /** @type {const} */ ([
    'x', 'y', 'leftX', 'leftY', 'rightX', 'rightY', 'leftPupil', 'rightPupil', 'distance',
]);

/** @typedef {(typeof columnNames)[number]} ColumnName */
/** @typedef {Record<ColumnName, number>} Row A sample without its time. */

const minCapacity = 1024;

/**
 * A series of samples in typed arrays, oldest first. `time` is in ms and never decreases. NaN is a missing value. Only
 * the first `length` elements are samples.
 */
export class SampleColumns {
    length = 0;
    time = new Float64Array(minCapacity);
    x = new Float32Array(minCapacity);
    y = new Float32Array(minCapacity);
    leftX = new Float32Array(minCapacity);
    leftY = new Float32Array(minCapacity);
    rightX = new Float32Array(minCapacity);
    rightY = new Float32Array(minCapacity);
    leftPupil = new Float32Array(minCapacity);
    rightPupil = new Float32Array(minCapacity);
    distance = new Float32Array(minCapacity);

    /**
     * Restores columns that postMessage() copied without their methods.
     *
     * @param {SampleColumns} copy
     */
    static from(copy) {
        return Object.assign(new SampleColumns(), copy);
    }

    /**
     * @param {number} timeMs
     * @param {Row} row
     */
    append(timeMs, row) {
        if (this.length === this.time.length) this.#resize(2 * this.length);
        this.time[this.length] = timeMs;
        for (const name of columnNames) this[name][this.length] = row[name];
        ++this.length;
    }

    clear() {
        this.length = 0;
    }

    /**
     * Removes the samples before `timeMs`.
     *
     * @param {number} timeMs
     */
    dropBefore(timeMs) {
        const first = this.indexAt(timeMs);
        if (first === 0) return;
        this.time.copyWithin(0, first, this.length);
        for (const name of columnNames) this[name].copyWithin(0, first, this.length);
        this.length -= first;
    }

    /**
     * Returns the index of the first sample at or after `timeMs`, or `length`.
     *
     * @param {number} timeMs
     */
    indexAt(timeMs) {
        let low = 0;
        let high = this.length;
        while (low < high) {
            const middle = (low + high) >> 1;
            if (this.time[middle] < timeMs) low = middle + 1;
            else high = middle;
        }
        return low;
    }

    /** @param {number} capacity */
    #resize(capacity) {
        const time = new Float64Array(capacity);
        time.set(this.time);
        this.time = time;
        for (const name of columnNames) {
            const values = new Float32Array(capacity);
            values.set(this[name]);
            this[name] = values;
        }
    }
}
