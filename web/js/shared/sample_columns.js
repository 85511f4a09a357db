/** What is kept of a sample beside its time. Gaze in percent of the calibrated area, pupils in mm, distance in cm. */
export const columnNames = [
    'x', 'y', 'leftX', 'leftY', 'rightX', 'rightY', 'leftPupil', 'rightPupil', 'distance',
];

const smallestCapacity = 1024;

/**
 * A series of samples in typed arrays, oldest first. `time` is in ms and never decreases. NaN is what was not measured:
 * gaps stay gaps in whatever is computed or drawn from it. Only the first `length` elements count.
 */
export class SampleColumns {
    constructor() {
        this.length = 0;
        this.time = new Float64Array(smallestCapacity);
        for (const name of columnNames) this[name] = new Float32Array(smallestCapacity);
    }

    /** The same columns behind a postMessage(), which takes methods away. */
    static from(plain) {
        return Object.assign(new SampleColumns(), plain);
    }

    append(timeMs, row) {
        if (this.length === this.time.length) this.#resize(2 * this.length);
        this.time[this.length] = timeMs;
        for (const name of columnNames) this[name][this.length] = row[name];
        ++this.length;
    }

    clear() {
        this.length = 0;
    }

    /** Forgets what is older than `timeMs`. */
    dropBefore(timeMs) {
        const first = this.indexAt(timeMs);
        if (first === 0) return;
        for (const name of ['time', ...columnNames]) this[name].copyWithin(0, first, this.length);
        this.length -= first;
    }

    /** The index of the first sample that is not before `timeMs`; `length` if there is none. */
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

    #resize(capacity) {
        for (const name of ['time', ...columnNames]) {
            const grown = new this[name].constructor(capacity);
            grown.set(this[name]);
            this[name] = grown;
        }
    }
}
