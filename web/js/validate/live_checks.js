// @ts-check
/** @import { SampleColumns } from '../shared/sample_columns.js' */

/** The checks use the samples of this time. */
const spanMs = 3000;

/** A sample rate needs this time, because samples arrive in groups. */
const minRateMs = 2000;

/** An eye is seen if at least this share of its samples is valid. Blinks lose a smaller share. */
export const minSeenShare = 0.8;

/** A head that moves more than this (standard deviation) is not steady. */
export const maxDistanceSdMm = 10;

/** A sample rate that differs by more than this share from the expected one is wrong. */
export const maxRateDifference = 0.05;

/** A measured rate may differ from the nominal one by this share, for example because a busy computer loses samples. */
const maxNominalDifference = 0.12;

/** The nominal sample rates of the families that have few, in Hz. @type {Record<string, number[]>} */
const familyRates = { gazepoint: [60, 150], 'aSee Pro': [120] };

/** The nominal sample rates of other trackers, in Hz. */
const nominalRates = [30, 50, 60, 90, 100, 120, 150, 180, 200, 240, 250, 300, 500, 600, 1000, 1200, 2000];

const mmPerCm = 10;

/**
 * Returns the valid share of each eye, the distance and the sample rate in the last samples. A value that is not known is NaN.
 *
 * @param {SampleColumns} columns
 * @param {number} nowMs in the columns' time
 */
export function liveChecks(columns, nowMs) {
    const from = columns.indexAt(nowMs - spanMs);
    const count = columns.length - from;
    const durationMs = columns.time[columns.length - 1] - columns.time[from];
    return {
        leftShare: validShareOf(columns.leftX, from, columns.length),
        rightShare: validShareOf(columns.rightX, from, columns.length),
        rateHz: count > 1 && durationMs >= minRateMs ? (1000 * (count - 1)) / durationMs : NaN,
        ...distanceOf(columns.distance.subarray(from, columns.length)),
    };
}

/**
 * @param {Float32Array} values
 * @param {number} from
 * @param {number} to
 */
function validShareOf(values, from, to) {
    return values.subarray(from, to).filter(value => !Number.isNaN(value)).length / (to - from);
}

/** @param {Float32Array} distancesCm */
function distanceOf(distancesCm) {
    const known = distancesCm.filter(distance => !Number.isNaN(distance));
    const meanCm = known.reduce((sum, distance) => sum + distance, 0) / known.length;
    const squares = known.reduce((sum, distance) => sum + (distance - meanCm) ** 2, 0);
    return { distanceMm: mmPerCm * meanCm, distanceSdMm: mmPerCm * Math.sqrt(squares / known.length) };
}

/**
 * Returns the likely nominal sample rate of a tracker, or NaN. It is the lowest rate of the family that is not clearly below
 * the measured one, so that lost samples do not lower it. Without such a rate, it is the nearest common one.
 *
 * @param {number} rateHz the measured rate
 * @param {string} trackerName
 */
export function nominalRateOf(rateHz, trackerName) {
    const familyRate = familyRates[trackerName]?.find(nominal => rateHz <= nominal * (1 + maxNominalDifference));
    if (familyRate) return familyRate;
    const distanceTo = (/** @type {number} */ nominal) => Math.abs(nominal / rateHz - 1);
    const nearest = nominalRates.reduce((best, rate) => (distanceTo(rate) < distanceTo(best) ? rate : best));
    return distanceTo(nearest) <= maxNominalDifference ? nearest : NaN;
}
