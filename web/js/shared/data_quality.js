// @ts-check
// Measures of data quality, as defined by Niehorster, Nyström, Hessels, Benjamins, Andersson & Hooge (2026), "The
// fundamentals of eye tracking part 7: Determining data quality", Behavior Research Methods, doi:10.3758/s13428-026-03039-4.
//
// Gaze directions are Fick angles in degrees, relative to the line from the eye to the screen's centre: the azimuth is
// positive to the right, the elevation is positive downward. A sample is missing if one of its angles is NaN. Missing
// samples must stay in the arrays, because RMS-S2S compares neighbouring samples. A measure that cannot be determined is NaN.

/** @typedef {ArrayLike<number>} Numbers */

/**
 * The screen and its distance from the eyes. The line from the eye to the screen's centre is perpendicular to the screen.
 *
 * @typedef {{ widthMm: number, heightMm: number, widthPx: number, heightPx: number, distanceMm: number }} Geometry
 */

/** @typedef {Omit<Geometry, 'widthPx' | 'heightPx'>} SizeAndDistance */
/** @typedef {{ azimuth: Float64Array, elevation: Float64Array }} Directions */
/** @typedef {{ offset: number, azimuth: number, elevation: number }} Accuracy The offset, and its signed parts. */
/** @typedef {{ total: number, azimuth: number, elevation: number }} Precision */

/**
 * An ellipse that contains a share of the samples. The area is in square degrees. The axes are the lengths of the semi-axes.
 * The orientation is the angle from the azimuth axis to the major axis, from -90 to 90 degrees, positive toward downward.
 *
 * @typedef {{ area: number, orientation: number, majorAxis: number, minorAxis: number }} Ellipse
 */

/**
 * The samples of one target, all from a time when the target did not move.
 *
 * @typedef {Directions & {
 *     durationS: number, targetAzimuth: number, targetElevation: number, expectedHz?: number,
 * }} Segment `durationS` is from durationOf(). `expectedHz` is the nominal sample rate of the tracker, if it is known.
 */

/**
 * All measures of a segment. `accuracy` is null if there is not enough data. `dataLossFromExpectedPercent` is NaN if the
 * expected sample rate is not known. RMS-S2S depends on the sample rate, so show the effective frequency beside it.
 *
 * @typedef {{
 *     sampleCount: number, validCount: number, durationS: number, accuracy: Accuracy | null, rmsS2s: Precision,
 *     std: Precision, bcea: Ellipse, dataLossPercent: number, dataLossFromExpectedPercent: number,
 *     effectiveFrequencyHz: number,
 * }} DataQuality
 */

/** The share of a target's expected samples that the accuracy needs. */
const minValidShare = 0.5;

/** The share of the samples that the BCEA contains. */
const defaultProbability = 0.68;

const toDegrees = (/** @type {number} */ radians) => (radians * 180) / Math.PI;
const toRadians = (/** @type {number} */ degrees) => (degrees * Math.PI) / 180;

/**
 * Returns the unit vector of a direction: x to the right, y downward, z toward the screen.
 *
 * @param {number} azimuth
 * @param {number} elevation
 */
export function fickToVector(azimuth, elevation) {
    const [a, e] = [toRadians(azimuth), toRadians(elevation)];
    return { x: Math.cos(e) * Math.sin(a), y: Math.sin(e), z: Math.cos(e) * Math.cos(a) };
}

/**
 * Returns the direction of a vector of any length.
 *
 * @param {number} x
 * @param {number} y
 * @param {number} z
 */
export function vectorToFick(x, y, z) {
    // Called for each sample. Math.hypot() is slower, and protects from an overflow that cannot happen here.
    return { azimuth: toDegrees(Math.atan2(x, z)), elevation: toDegrees(Math.atan2(y, Math.sqrt(x * x + z * z))) };
}

/**
 * Converts positions in pixels from the screen's centre, x to the right and y downward.
 *
 * @param {Numbers} x
 * @param {Numbers} y
 * @param {Geometry} geometry
 */
export function pixelsToDegrees(x, y, geometry) {
    const { widthMm, heightMm, widthPx, heightPx } = geometry;
    return directionsOf(x, y, 0, widthMm / widthPx, heightMm / heightPx, geometry);
}

/**
 * Converts positions in percent of the screen, from its top-left corner.
 *
 * @param {Numbers} x
 * @param {Numbers} y
 * @param {SizeAndDistance} geometry
 */
export function percentToDegrees(x, y, geometry) {
    const { widthMm, heightMm } = geometry;
    return directionsOf(x, y, 50, widthMm / 100, heightMm / 100, geometry);
}

/**
 * Converts positions in any unit.
 *
 * @param {Numbers} x
 * @param {Numbers} y
 * @param {number} centre the coordinate of the screen's centre
 * @param {number} mmPerUnitX
 * @param {number} mmPerUnitY
 * @param {SizeAndDistance} geometry
 * @returns {Directions}
 */
function directionsOf(x, y, centre, mmPerUnitX, mmPerUnitY, { distanceMm }) {
    const azimuths = new Float64Array(x.length);
    const elevations = new Float64Array(x.length);
    for (let i = 0; i < x.length; ++i) {
        const direction = vectorToFick((x[i] - centre) * mmPerUnitX, (y[i] - centre) * mmPerUnitY, distanceMm);
        azimuths[i] = direction.azimuth;
        elevations[i] = direction.elevation;
    }
    return { azimuth: azimuths, elevation: elevations };
}

/**
 * Returns the angle between the mean gaze direction and the target, and its parts as Fick angles in the target's frame.
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 * @param {number} targetAzimuth
 * @param {number} targetElevation
 * @returns {Accuracy}
 */
export function accuracy(azimuth, elevation, targetAzimuth, targetElevation) {
    const gaze = sumOfVectors(azimuth, elevation);
    if (gaze.count === 0) return { offset: NaN, azimuth: NaN, elevation: NaN };
    const { x, y, z } = inFrameOf(gaze, toRadians(targetAzimuth), toRadians(targetElevation));
    return { offset: toDegrees(Math.atan2(Math.hypot(x, y), z)), ...vectorToFick(x, y, z) };
}

/**
 * Returns the sum of the unit vectors of all valid samples. It has the direction of their mean.
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 */
function sumOfVectors(azimuth, elevation) {
    const sum = { count: 0, x: 0, y: 0, z: 0 };
    for (let i = 0; i < azimuth.length; ++i) {
        if (isMissing(azimuth[i], elevation[i])) continue;
        const { x, y, z } = fickToVector(azimuth[i], elevation[i]);
        ++sum.count;
        sum.x += x;
        sum.y += y;
        sum.z += z;
    }
    return sum;
}

/**
 * Rotates a vector so that the target is straight ahead. The angles are in radians.
 *
 * @param {{ x: number, y: number, z: number }} vector
 * @param {number} a the target's azimuth
 * @param {number} e the target's elevation
 */
function inFrameOf({ x, y, z }, a, e) {
    const forward = Math.sin(a) * x + Math.cos(a) * z;
    return {
        x: Math.cos(a) * x - Math.sin(a) * z,
        y: Math.cos(e) * y - Math.sin(e) * forward,
        z: Math.sin(e) * y + Math.cos(e) * forward,
    };
}

/**
 * Returns the root mean square of the differences between successive samples. Pairs with a missing sample are skipped.
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 * @returns {Precision}
 */
export function rmsS2s(azimuth, elevation) {
    let pairCount = 0;
    let azimuthSquares = 0;
    let elevationSquares = 0;
    for (let i = 1; i < azimuth.length; ++i) {
        const a = azimuth[i] - azimuth[i - 1];
        const e = elevation[i] - elevation[i - 1];
        if (isMissing(a, e)) continue;
        ++pairCount;
        azimuthSquares += a * a;
        elevationSquares += e * e;
    }
    return precisionOf(azimuthSquares / pairCount, elevationSquares / pairCount);
}

/**
 * Returns the standard deviation around the mean direction (population formula, divided by n).
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 * @returns {Precision}
 */
export function std(azimuth, elevation) {
    return stdOf(momentsOf(azimuth, elevation));
}

/**
 * @param {Moments} moments
 * @returns {Precision}
 */
function stdOf({ count, azimuthSquares, elevationSquares }) {
    return precisionOf(azimuthSquares / count, elevationSquares / count);
}

/**
 * @param {number} azimuthVariance
 * @param {number} elevationVariance
 * @returns {Precision}
 */
function precisionOf(azimuthVariance, elevationVariance) {
    const total = Math.sqrt(azimuthVariance + elevationVariance);
    return { total, azimuth: Math.sqrt(azimuthVariance), elevation: Math.sqrt(elevationVariance) };
}

/**
 * Returns the bivariate contour ellipse that contains the share `probability` of normally distributed samples. It uses
 * the sample formula of the variances (divided by n - 1), so it needs two valid samples.
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 * @param {number} probability
 * @returns {Ellipse}
 */
export function bcea(azimuth, elevation, probability = defaultProbability) {
    return ellipseOf(momentsOf(azimuth, elevation), probability);
}

/**
 * @param {Moments} moments
 * @param {number} probability
 * @returns {Ellipse}
 */
function ellipseOf({ count, azimuthSquares, elevationSquares, products }, probability) {
    if (count < 2) return { area: NaN, orientation: NaN, majorAxis: NaN, minorAxis: NaN };
    const [aa, ee, ae] = [azimuthSquares, elevationSquares, products].map(sum => sum / (count - 1));
    const scale = 2 * Math.log(1 / (1 - probability));
    // Rounding may make the determinant of points on a line slightly negative.
    const determinant = Math.max(0, aa * ee - ae * ae);
    const larger = (aa + ee) / 2 + Math.hypot((aa - ee) / 2, ae);
    const smaller = larger > 0 ? determinant / larger : 0;
    return {
        area: scale * Math.PI * Math.sqrt(determinant),
        orientation: toDegrees(Math.atan2(2 * ae, aa - ee) / 2),
        majorAxis: Math.sqrt(scale * larger),
        minorAxis: Math.sqrt(scale * smaller),
    };
}

/**
 * The number of valid samples, and the sums of the squares and products of their differences from the mean.
 *
 * @typedef {{ count: number, azimuthSquares: number, elevationSquares: number, products: number }} Moments
 */

/**
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 * @returns {Moments}
 */
function momentsOf(azimuth, elevation) {
    let count = 0;
    let azimuthSum = 0;
    let elevationSum = 0;
    for (let i = 0; i < azimuth.length; ++i) {
        if (isMissing(azimuth[i], elevation[i])) continue;
        ++count;
        azimuthSum += azimuth[i];
        elevationSum += elevation[i];
    }
    const azimuthMean = azimuthSum / count;
    const elevationMean = elevationSum / count;
    let azimuthSquares = 0;
    let elevationSquares = 0;
    let products = 0;
    for (let i = 0; i < azimuth.length; ++i) {
        const a = azimuth[i] - azimuthMean;
        const e = elevation[i] - elevationMean;
        if (isMissing(a, e)) continue;
        azimuthSquares += a * a;
        elevationSquares += e * e;
        products += a * e;
    }
    return { count, azimuthSquares, elevationSquares, products };
}

/**
 * Returns the share of missing samples in percent.
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 */
export function dataLossFromInvalid(azimuth, elevation) {
    return lossOf(validCountOf(azimuth, elevation), azimuth.length);
}

/**
 * Returns the share of the expected samples that are missing or were never delivered, in percent. It is negative if the
 * tracker is faster than expected.
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 * @param {number} durationS
 * @param {number} frequencyHz the expected sample rate
 */
export function dataLossFromExpected(azimuth, elevation, durationS, frequencyHz) {
    return lossOf(validCountOf(azimuth, elevation), expectedCountOf(durationS, frequencyHz));
}

/**
 * Returns the number of valid samples per second.
 *
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 * @param {number} durationS
 */
export function effectiveFrequency(azimuth, elevation, durationS) {
    return frequencyOf(validCountOf(azimuth, elevation), durationS);
}

/**
 * @param {number} validCount
 * @param {number} expectedCount
 */
function lossOf(validCount, expectedCount) {
    return 100 * (1 - validCount / expectedCount);
}

/**
 * @param {number} durationS
 * @param {number} frequencyHz
 */
function expectedCountOf(durationS, frequencyHz) {
    return durationS > 0 ? durationS * frequencyHz : NaN;
}

/**
 * @param {number} validCount
 * @param {number} durationS
 */
function frequencyOf(validCount, durationS) {
    return durationS > 0 ? validCount / durationS : NaN;
}

/**
 * Returns the duration of samples in seconds, including the interval after the last sample. That interval is taken to be
 * the median. The result is NaN for fewer than two samples.
 *
 * @param {Float64Array} timestampMs
 */
export function durationOf(timestampMs) {
    if (timestampMs.length < 2) return NaN;
    const intervals = new Float64Array(timestampMs.length - 1);
    for (let i = 0; i < intervals.length; ++i) intervals[i] = timestampMs[i + 1] - timestampMs[i];
    return (timestampMs[timestampMs.length - 1] - timestampMs[0] + medianOf(intervals)) / 1000;
}

/** @param {Float64Array} values sorted by this function */
function medianOf(values) {
    values.sort();
    const middle = values.length >> 1;
    return values.length % 2 === 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/**
 * Returns all measures of a segment.
 *
 * @param {Segment} segment
 * @returns {DataQuality}
 */
export function dataQuality({ azimuth, elevation, durationS, targetAzimuth, targetElevation, expectedHz = NaN }) {
    const sampleCount = azimuth.length;
    const moments = momentsOf(azimuth, elevation);
    const validCount = moments.count;
    const expectedCount = Number.isNaN(expectedHz) ? sampleCount : durationS * expectedHz;
    const isEnough = validCount > 0 && validCount >= minValidShare * expectedCount;
    return {
        sampleCount,
        validCount,
        durationS,
        accuracy: isEnough ? accuracy(azimuth, elevation, targetAzimuth, targetElevation) : null,
        rmsS2s: rmsS2s(azimuth, elevation),
        std: stdOf(moments),
        bcea: ellipseOf(moments, defaultProbability),
        dataLossPercent: lossOf(validCount, sampleCount),
        dataLossFromExpectedPercent: lossOf(validCount, expectedCountOf(durationS, expectedHz)),
        effectiveFrequencyHz: frequencyOf(validCount, durationS),
    };
}

/**
 * @param {Numbers} azimuth
 * @param {Numbers} elevation
 */
function validCountOf(azimuth, elevation) {
    let count = 0;
    for (let i = 0; i < azimuth.length; ++i) {
        if (!isMissing(azimuth[i], elevation[i])) ++count;
    }
    return count;
}

/**
 * @param {number} azimuth
 * @param {number} elevation
 */
function isMissing(azimuth, elevation) {
    return Number.isNaN(azimuth) || Number.isNaN(elevation);
}
