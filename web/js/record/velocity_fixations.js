// @ts-check
import { fickToVector, percentToDegrees } from '../shared/data_quality.js';
/** @import { Directions, SizeAndDistance } from '../shared/data_quality.js' */
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { Fixation } from './fixations.js' */

/** The velocity is in degrees per second, the angle in degrees. */
export const defaultVelocityParameters = {
    maxVelocity: 30, smoothingMs: 20, minDurationMs: 60, maxLossMs: 75, maxMergeGapMs: 75, maxMergeAngle: 0.5,
};

/** @typedef {{ method: 'velocity' } & typeof defaultVelocityParameters & SizeAndDistance} VelocityParameters */

/**
 * Successive slow samples, from the index `from` to the index `to` (included). The centre is `x / count`, `y / count`. Runs with
 * different `lossCount` have a long loss between them.
 *
 * @typedef {{ from: number, to: number, x: number, y: number, count: number, lossCount: number }} Run
 */

/** The maximum number of samples on each side of a velocity window. Only samples with the same time reach it. */
const maxHalfCount = 1000;

/**
 * Finds fixations by velocity threshold: time ranges of at least `minDurationMs` in which the angular velocity of the gaze is
 * below `maxVelocity`. Fixations are merged if at most `maxMergeGapMs` and `maxMergeAngle` are between them. The gaze may be
 * lost for up to `maxLossMs`, also between merged fixations.
 *
 * @param {SampleColumns} columns
 * @param {VelocityParameters} parameters
 * @returns {Fixation[]}
 */
export function findVelocityFixations(columns, parameters) {
    const { time } = columns;
    const { minDurationMs } = parameters;
    return mergedRuns(slowRuns(columns, parameters), time, parameters)
        .filter(({ from, to }) => time[to] - time[from] >= minDurationMs)
        .map(run => ({ startMs: time[run.from], durationMs: time[run.to] - time[run.from], ...centreOf(run) }));
}

/**
 * Returns the ranges in which the velocity is below the threshold.
 *
 * @param {SampleColumns} columns
 * @param {VelocityParameters} parameters
 */
function slowRuns(columns, parameters) {
    const { time } = columns;
    const gazes = gazesOf(columns, parameters);
    const seen = seenSamples(gazes, columns.length);
    const velocity = new Velocity(time, seen, gazes, parameters);
    /** @type {Run[]} */
    const runs = [];
    /** @type {Run | null} */
    let run = null;
    let lossCount = 0;
    for (let k = 0; k < seen.length; ++k) {
        const i = seen[k];
        if (time[i] - time[seen[k - 1]] > parameters.maxLossMs) {
            run = null;
            ++lossCount;
        }
        if (!(velocity.at(k) < parameters.maxVelocity)) {
            run = null;
            continue;
        }
        if (!run) runs.push(run = { from: i, to: i, x: 0, y: 0, count: 0, lossCount });
        const { x, y } = positionOf(columns, i);
        run.to = i;
        run.x += x;
        run.y += y;
        ++run.count;
    }
    return runs;
}

/**
 * Returns the directions of each eye that the recording has. Without eyes, returns those of the combined gaze.
 *
 * @param {SampleColumns} columns
 * @param {SizeAndDistance} geometry
 */
function gazesOf({ length, x, y, leftX, leftY, rightX, rightY }, geometry) {
    const directions = (/** @type {Float32Array[]} */ xy) => {
        const [xs, ys] = xy.map(values => values.subarray(0, length));
        return percentToDegrees(xs, ys, geometry);
    };
    const eyes = [[leftX, leftY], [rightX, rightY]].map(directions).filter(hasValues);
    return eyes.length > 0 ? eyes : [directions([x, y])];
}

/** @param {Directions} gaze */
function hasValues({ azimuth }) {
    return azimuth.some(value => !Number.isNaN(value));
}

/**
 * Returns the indexes of the samples in which an eye is seen.
 *
 * @param {Directions[]} gazes
 * @param {number} length
 */
function seenSamples(gazes, length) {
    const seen = new Int32Array(length);
    let count = 0;
    for (let i = 0; i < length; ++i) {
        if (gazes.some(({ azimuth }) => !Number.isNaN(azimuth[i]))) seen[count++] = i;
    }
    return seen.subarray(0, count);
}

/**
 * The angular velocity of the gaze: the slope of a straight line through the directions in a window around a sample. It is
 * the mean of both eyes, so it does not jump when one eye is lost. The arrays have the seen samples only, because at() is
 * called for each of them.
 */
class Velocity {
    #times;
    #gazes;
    #halfMs;
    #maxLossMs;

    /**
     * @param {Float64Array} time
     * @param {Int32Array} seen
     * @param {Directions[]} gazes
     * @param {VelocityParameters} parameters
     */
    constructor(time, seen, gazes, { smoothingMs, maxLossMs }) {
        this.#times = picked(time, seen);
        this.#gazes = gazes.map(({ azimuth, elevation }) => (
            { azimuth: picked(azimuth, seen), elevation: picked(elevation, seen) }));
        this.#halfMs = smoothingMs / 2;
        this.#maxLossMs = maxLossMs;
    }

    /**
     * Returns the velocity in degrees per second. NaN if it cannot be determined.
     *
     * @param {number} k the index of a seen sample
     */
    at(k) {
        const from = this.#windowEnd(k, -1);
        const to = this.#windowEnd(k, 1);
        let azimuth = 0;
        let elevation = 0;
        let count = 0;
        for (const gaze of this.#gazes) {
            const slope = slopeOf(this.#times, gaze, from, to);
            if (Number.isNaN(slope.azimuth)) continue;
            azimuth += slope.azimuth;
            elevation += slope.elevation;
            ++count;
        }
        return (1000 * Math.sqrt(azimuth * azimuth + elevation * elevation)) / count;
    }

    /**
     * Returns the first index that is at least half of the window away. The window therefore has at least three samples,
     * also at low rates. It does not cross long losses.
     *
     * @param {number} k
     * @param {1 | -1} step
     */
    #windowEnd(k, step) {
        const times = this.#times;
        let end = k;
        while (Math.abs(times[end] - times[k]) < this.#halfMs && Math.abs(end - k) < maxHalfCount) {
            // False beyond the first and the last sample.
            if (!(Math.abs(times[end + step] - times[end]) <= this.#maxLossMs)) break;
            end += step;
        }
        return end;
    }
}

/**
 * Returns the elements with the given indexes. Float64Array.from() is several times slower.
 *
 * @param {Float64Array} values
 * @param {Int32Array} indexes
 */
function picked(values, indexes) {
    const result = new Float64Array(indexes.length);
    for (let k = 0; k < indexes.length; ++k) result[k] = values[indexes[k]];
    return result;
}

/**
 * Returns the slope of the regression line in degrees per ms. The horizontal part is along the great circle.
 *
 * @param {Float64Array} times
 * @param {Directions} gaze
 * @param {number} from
 * @param {number} to included
 */
function slopeOf(times, { azimuth, elevation }, from, to) {
    let n = 0;
    let t = 0;
    let a = 0;
    let e = 0;
    let tt = 0;
    let ta = 0;
    let te = 0;
    for (let k = from; k <= to; ++k) {
        if (Number.isNaN(azimuth[k])) continue;
        const ms = times[k] - times[from];
        ++n;
        t += ms;
        a += azimuth[k];
        e += elevation[k];
        tt += ms * ms;
        ta += ms * azimuth[k];
        te += ms * elevation[k];
    }
    // 0 / 0 if all samples have the same time.
    const spread = n * tt - t * t;
    const circle = Math.cos((e / n) * (Math.PI / 180));
    return { azimuth: ((n * ta - t * a) / spread) * circle, elevation: (n * te - t * e) / spread };
}

/**
 * Returns the combined gaze in percent. While it is missing, as in the first 50 ms of a fixation with GazePoint, returns the
 * mean of the seen eyes.
 *
 * @param {SampleColumns} columns
 * @param {number} i
 */
function positionOf({ x, y, leftX, leftY, rightX, rightY }, i) {
    if (!Number.isNaN(x[i])) return { x: x[i], y: y[i] };
    if (Number.isNaN(leftX[i])) return { x: rightX[i], y: rightY[i] };
    if (Number.isNaN(rightX[i])) return { x: leftX[i], y: leftY[i] };
    return { x: (leftX[i] + rightX[i]) / 2, y: (leftY[i] + rightY[i]) / 2 };
}

/**
 * Merges each run with the last one that is close enough in time and angle. Runs between them are dropped: a wrong sample
 * makes a short run at a distant position.
 *
 * @param {Run[]} runs
 * @param {Float64Array} time
 * @param {VelocityParameters} parameters
 */
function mergedRuns(runs, time, parameters) {
    /** @type {Run[]} */
    const merged = [];
    for (const run of runs) {
        let at = merged.length - 1;
        const isInReach = () => at >= 0 && merged[at].lossCount === run.lossCount &&
            time[run.from] - time[merged[at].to] <= parameters.maxMergeGapMs;
        while (isInReach() && angleBetween(centreOf(merged[at]), centreOf(run), parameters) > parameters.maxMergeAngle) --at;
        if (!isInReach()) {
            merged.push(run);
            continue;
        }
        const { x, y, count } = merged[at];
        Object.assign(merged[at], { to: run.to, x: x + run.x, y: y + run.y, count: count + run.count });
        merged.length = at + 1;
    }
    return merged;
}

/** @param {Run} run */
function centreOf({ x, y, count }) {
    return { x: x / count, y: y / count };
}

/**
 * Returns the visual angle between two positions in percent, in degrees.
 *
 * @param {{ x: number, y: number }} a
 * @param {{ x: number, y: number }} b
 * @param {SizeAndDistance} geometry
 */
export function angleBetween(a, b, geometry) {
    const { azimuth, elevation } = percentToDegrees([a.x, b.x], [a.y, b.y], geometry);
    const [v, w] = [fickToVector(azimuth[0], elevation[0]), fickToVector(azimuth[1], elevation[1])];
    // The chord, because the arc cosine of the scalar product is inaccurate for small angles.
    return (2 * Math.asin(Math.hypot(v.x - w.x, v.y - w.y, v.z - w.z) / 2) * 180) / Math.PI;
}
