import { CrossedEye } from '../shared/crossed_eye.js';
import { SampleColumns } from '../shared/sample_columns.js';
import { SampleReader } from '../shared/sample_reader.js';
import { overlap } from './overlap.js';
import { Timeline, windowMs } from './timeline.js';

/** What the page shows at most, in ms. */
export const spanMs = 10000;

/** About ten seconds at 150 Hz: enough to see which eye is crossed, few enough to notice another tracker. */
const crossedDecay = 0.999;

/** Answers further apart than this may have missed samples: the service keeps two seconds. */
const safeIntervalMs = 0.8 * windowMs;

/**
 * Joins the answers of /lastsamples, each of which repeats most of the one before, to one series of the last ten
 * seconds. Times of arrival are in ms of the page's clock.
 */
export class SampleStream {
    columns = new SampleColumns();
    timeline = new Timeline();
    /** When the first answer came; NaN: not yet. */
    startedMs = NaN;
    /** When an answer last differed from the one before; NaN: not yet. */
    changedMs = NaN;
    #samples = [];
    #arrivedMs = NaN;
    #reader = new SampleReader();
    #rightEye = new CrossedEye(crossedDecay);

    /** Whether the tracker delivers the right eye's axes exchanged, which is put right here. */
    get crossed() {
        return this.#rightEye.crossed;
    }

    /** The newest answer's samples as they came. */
    get newest() {
        return this.#samples;
    }

    /** Takes an answer's samples; returns how many of them are new. */
    add(samples, nowMs) {
        const known = overlap(this.#samples, samples);
        const count = samples.length - known;
        if (Number.isNaN(this.#arrivedMs)) this.startedMs = nowMs;
        else if (count > 0 || samples.length !== this.#samples.length) this.changedMs = nowMs;
        if (known === 0 && nowMs - this.#arrivedMs > safeIntervalMs) this.columns.clear();
        this.#append(samples, count, nowMs);
        this.#samples = samples;
        this.#arrivedMs = nowMs;
        return count;
    }

    #append(samples, count, nowMs) {
        const wasByArrival = this.timeline.byArrival;
        const times = this.timeline.timesOf(samples, count, nowMs);
        if (wasByArrival !== this.timeline.byArrival) this.columns.clear();
        times.forEach((timeMs, i) => this.#appendSample(timeMs, samples[samples.length - count + i]));
        this.columns.dropBefore(this.timeline.now(nowMs) - spanMs);
    }

    #appendSample(timeMs, sample) {
        const { columns } = this;
        const row = this.#reader.read(sample);
        const wasCrossed = this.crossed;
        if (this.#rightEye.add(row.x, row.y, row.rightX, row.rightY))
            [row.rightX, row.rightY] = [row.rightY, row.rightX];
        if (this.crossed !== wasCrossed) [columns.rightX, columns.rightY] = [columns.rightY, columns.rightX];
        // The clock was set back, or it is another tracker's.
        if (columns.length > 0 && timeMs < columns.time[columns.length - 1]) columns.clear();
        columns.append(timeMs, row);
    }
}
