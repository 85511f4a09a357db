// @ts-check
import { remembered } from '../shared/setup_memory.js';
/** @import { SizeAndDistance } from '../shared/data_quality.js' */
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { SetupMemory } from '../shared/setup_memory.js' */

/**
 * A screen size and a distance. NaN is an unknown value.
 *
 * @typedef {SizeAndDistance & { isRemembered: boolean, isDistanceMeasured: boolean }} KnownGeometry
 * `isRemembered` is true if a value is not from the record.
 */

const storageKey = 'fixation-geometry';

/** Display sizes are rounded, and the calibrated area is often a part of the screen without a task bar. */
const maxAspectDifference = 0.08;

/**
 * Returns what is known about the set-up of a recording: the median distance of the record, then the last entry, then the
 * set-ups of validations. A size is used if its aspect ratio is that of the recording. Different values of several screens or
 * trackers are not used, because the record file does not say which one it was.
 *
 * @param {{ columns: SampleColumns, aspect: number }} recording
 * @param {SizeAndDistance} entered
 * @param {SetupMemory} memory
 * @returns {KnownGeometry}
 */
export function knownGeometry({ columns, aspect }, entered = enteredGeometry(), memory = remembered()) {
    const fits = (/** @type {{ widthMm: number, heightMm: number }} */ { widthMm, heightMm }) =>
        Math.abs(widthMm / heightMm / aspect - 1) <= maxAspectDifference;
    const sizes = Object.values(memory.screens).filter(fits).map(({ widthMm, heightMm }) => ({ widthMm, heightMm }));
    const { widthMm, heightMm } = fits(entered) ? entered : (onlyOf(sizes) ?? { widthMm: NaN, heightMm: NaN });
    const measuredMm = medianDistanceMm(columns);
    const rememberedMm = entered.distanceMm > 0 ? entered.distanceMm : (onlyOf(Object.values(memory.distancesMm)) ?? NaN);
    const isDistanceMeasured = measuredMm > 0;
    return {
        widthMm, heightMm, distanceMm: isDistanceMeasured ? measuredMm : rememberedMm, isDistanceMeasured,
        isRemembered: widthMm > 0 || (!isDistanceMeasured && rememberedMm > 0),
    };
}

/**
 * Returns the value that all elements have. Undefined if there is none.
 *
 * @template T
 * @param {T[]} values
 */
function onlyOf(values) {
    return new Set(values.map(value => JSON.stringify(value))).size === 1 ? values[0] : undefined;
}

/** @param {SampleColumns} columns */
function medianDistanceMm({ distance, length }) {
    const measured = distance.subarray(0, length).filter(value => value > 0).sort();
    return measured.length > 0 ? Math.round(10 * measured[measured.length >> 1]) : NaN;
}

/**
 * Returns the last entry. A browser may refuse access to the storage, and a user may change it.
 *
 * @returns {SizeAndDistance}
 */
function enteredGeometry() {
    try {
        const { widthMm, heightMm, distanceMm } = JSON.parse(localStorage.getItem(storageKey) ?? '{}');
        return { widthMm: Number(widthMm), heightMm: Number(heightMm), distanceMm: Number(distanceMm) };
    } catch {
        return { widthMm: NaN, heightMm: NaN, distanceMm: NaN };
    }
}

/**
 * Stores an entry for the next recordings.
 *
 * @param {SizeAndDistance} geometry
 * @param {boolean} isDistanceMeasured whether the distance is that of the record, which does not apply to other recordings. The
 *     distance that was entered last is then kept
 */
export function rememberEntered({ widthMm, heightMm, distanceMm }, isDistanceMeasured) {
    const entry = { widthMm, heightMm, distanceMm: isDistanceMeasured ? enteredGeometry().distanceMm : distanceMm };
    try {
        localStorage.setItem(storageKey, JSON.stringify(entry));
    } catch {
        // See enteredGeometry(). The values remain in the fields.
    }
}
