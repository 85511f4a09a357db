// @ts-check
import { dataQuality, durationOf, pixelsToDegrees } from './data_quality.js';
import { windowsOf } from './exchange_file.js';
/** @import { DataQuality, Directions, Geometry, Precision } from './data_quality.js' */
/** @import { ExchangeSamples, EyeGaze } from './exchange_file.js' */

/**
 * The data quality of one eye, or of the combined gaze: for each window in the order of time, and the mean over the windows.
 *
 * @typedef {'left' | 'right' | 'combined'} GazeName
 * @typedef {{ targetId: number, quality: DataQuality }} TargetQuality
 * @typedef {{ name: GazeName, targets: TargetQuality[], mean: DataQuality }} GazeQuality
 */

/**
 * Returns the data quality of each eye and of the combined gaze in the windows of all targets, and the mean over the eyes.
 * The combined gaze is the mean position of both eyes. It is missing if an eye is missing: using the other eye instead
 * would move the gaze by the difference of the eyes. Throws a FileError if the windows are not usable; see windowsOf().
 *
 * @param {ExchangeSamples} samples
 * @param {Geometry} geometry
 * @param {number} [expectedHz] the nominal sample rate of the tracker, if it is known
 * @returns {{ gazes: GazeQuality[], mean: DataQuality }}
 */
export function qualityTable(samples, geometry, expectedHz) {
    const { left, right } = samples;
    const targets = targetsOf(samples, geometry);
    const combined = left && right && { x: meanPosition(left.x, right.x), y: meanPosition(left.y, right.y) };
    const eyes = [gazeQuality('left', left), gazeQuality('right', right)].flat();
    return { gazes: [...eyes, ...gazeQuality('combined', combined)], mean: meanQuality(eyes.map(({ mean }) => mean)) };

    /**
     * @param {GazeName} name
     * @param {EyeGaze | null} gaze
     * @returns {GazeQuality[]} empty if there is no such gaze
     */
    function gazeQuality(name, gaze) {
        if (!gaze) return [];
        const qualities = targetQualities(targets, pixelsToDegrees(gaze.x, gaze.y, geometry), expectedHz);
        return [{ name, targets: qualities, mean: meanQuality(qualities.map(({ quality }) => quality)) }];
    }
}

/**
 * @param {Float64Array} left
 * @param {Float64Array} right
 */
function meanPosition(left, right) {
    const mean = new Float64Array(left.length);
    for (let i = 0; i < mean.length; ++i) mean[i] = (left[i] + right[i]) / 2;
    return mean;
}

/**
 * The samples `from` to `to` (excluded) of a window, with the direction of its target.
 *
 * @typedef {{ targetId: number, from: number, to: number, durationS: number, direction: Directions }} Target
 */

/**
 * Returns the windows of all targets. Their durations and targets are the same for all eyes.
 *
 * @param {ExchangeSamples} samples
 * @param {Geometry} geometry
 * @returns {Target[]}
 */
function targetsOf(samples, geometry) {
    return windowsOf(samples).map(({ targetId, x, y, from, to }) => {
        const durationS = durationOf(samples.timestampMs.subarray(from, to));
        const direction = pixelsToDegrees(Float64Array.of(x), Float64Array.of(y), geometry);
        return { targetId, from, to, durationS, direction };
    });
}

/**
 * @param {Target[]} targets
 * @param {Directions} gaze
 * @param {number} [expectedHz]
 * @returns {TargetQuality[]}
 */
function targetQualities(targets, gaze, expectedHz) {
    return targets.map(({ targetId, from, to, durationS, direction }) => {
        const quality = dataQuality({
            azimuth: gaze.azimuth.subarray(from, to),
            elevation: gaze.elevation.subarray(from, to),
            durationS,
            targetAzimuth: direction.azimuth[0],
            targetElevation: direction.elevation[0],
            expectedHz,
        });
        return { targetId, quality };
    });
}

/**
 * Returns the mean of each measure over targets or eyes. Missing values are skipped. The orientation is NaN, because
 * angles of axes have no arithmetic mean. The accuracy is null if no target has one.
 *
 * @param {DataQuality[]} qualities
 * @returns {DataQuality}
 */
export function meanQuality(qualities) {
    const mean = (/** @type {(quality: DataQuality) => number} */ valueOf) => meanOf(qualities.map(valueOf));
    const accuracies = qualities.flatMap(({ accuracy }) => accuracy ?? []);
    return {
        sampleCount: mean(quality => quality.sampleCount),
        validCount: mean(quality => quality.validCount),
        durationS: mean(quality => quality.durationS),
        accuracy: accuracies.length === 0 ? null : {
            offset: meanOf(accuracies.map(({ offset }) => offset)),
            azimuth: meanOf(accuracies.map(({ azimuth }) => azimuth)),
            elevation: meanOf(accuracies.map(({ elevation }) => elevation)),
        },
        rmsS2s: meanPrecision(qualities.map(({ rmsS2s }) => rmsS2s)),
        std: meanPrecision(qualities.map(({ std }) => std)),
        bcea: {
            area: mean(({ bcea }) => bcea.area),
            orientation: NaN,
            majorAxis: mean(({ bcea }) => bcea.majorAxis),
            minorAxis: mean(({ bcea }) => bcea.minorAxis),
        },
        dataLossPercent: mean(quality => quality.dataLossPercent),
        dataLossFromExpectedPercent: mean(quality => quality.dataLossFromExpectedPercent),
        effectiveFrequencyHz: mean(quality => quality.effectiveFrequencyHz),
    };
}

/** @param {Precision[]} precisions */
function meanPrecision(precisions) {
    return {
        total: meanOf(precisions.map(({ total }) => total)),
        azimuth: meanOf(precisions.map(({ azimuth }) => azimuth)),
        elevation: meanOf(precisions.map(({ elevation }) => elevation)),
    };
}

/** @param {number[]} values NaN is skipped */
function meanOf(values) {
    const known = values.filter(value => !Number.isNaN(value));
    return known.reduce((sum, value) => sum + value, 0) / known.length;
}
