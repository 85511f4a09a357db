// @ts-check
import { meanQuality } from '../shared/quality_table.js';
/** @import { DataQuality } from '../shared/data_quality.js' */
/** @import { GazeQuality, qualityTable } from '../shared/quality_table.js' */

/** @typedef {ReturnType<typeof qualityTable>} QualityTable */

/** The accuracy is in degrees, the data loss in percent. @typedef {{ accuracy: number, dataLoss: number }} Limits */

/** @typedef {keyof Limits} LimitedMeasure */

/**
 * The mean of a measure over the eyes and targets, the eyes whose own means exceed the limit, and the ids of the targets at
 * which the mean over the eyes exceeds the limit. `isAtNominalRate` means that the value is the loss at the nominal rate.
 *
 * @typedef {{ name: 'left' | 'right', value: number }} ExceedingEye
 * @typedef {{
 *     measure: LimitedMeasure, isAtNominalRate: boolean, value: number, limit: number, isExceeded: boolean,
 *     eyes: ExceedingEye[], targets: number[],
 * }} Figure
 */

/**
 * `partly` means that the mean values are within the limits, but that an eye or a target exceeds a limit, or that a
 * target lacks data. `unknown` means that no target has enough data. `unmeasured` are the ids of the targets at which an
 * eye has not enough data.
 *
 * @typedef {{ level: 'good' | 'partly' | 'bad' | 'unknown', figures: Figure[], unmeasured: number[] }} Verdict
 */

/** @type {Readonly<Limits>} */
export const defaultLimits = Object.freeze({ accuracy: 1, dataLoss: 10 });

/** @type {Record<LimitedMeasure, (quality: DataQuality) => number>} */
const valueOf = { accuracy: ({ accuracy }) => accuracy?.offset ?? NaN, dataLoss: dataLossOf };

/**
 * Returns the larger data loss: that of the received samples, or that of the expected samples if their rate is known.
 *
 * @param {DataQuality} quality
 */
function dataLossOf({ dataLossPercent, dataLossFromExpectedPercent }) {
    return dataLossFromExpectedPercent > dataLossPercent ? dataLossFromExpectedPercent : dataLossPercent;
}

/**
 * Compares the eyes with the limits. The combined gaze is not considered.
 *
 * @param {QualityTable} table
 * @param {Limits} limits
 * @returns {Verdict}
 */
export function verdictOf({ gazes, mean }, limits) {
    const eyes = gazes.filter(({ name }) => name !== 'combined');
    const means = eyes[0].targets.map(({ targetId }, i) =>
        ({ targetId, quality: meanQuality(eyes.map(({ targets }) => targets[i].quality)) }));
    const figures = /** @type {LimitedMeasure[]} */ (['accuracy', 'dataLoss']).map(measure => ({
        measure,
        isAtNominalRate: measure === 'dataLoss' && mean.dataLossFromExpectedPercent > mean.dataLossPercent,
        value: valueOf[measure](mean),
        limit: limits[measure],
        isExceeded: valueOf[measure](mean) > limits[measure],
        eyes: exceedingEyes(eyes, measure, limits[measure]),
        targets: idsOf(means.filter(({ quality }) => valueOf[measure](quality) > limits[measure])),
    }));
    const unmeasured = idsOf(eyes.flatMap(({ targets }) => targets.filter(({ quality }) => !quality.accuracy)));
    return { level: levelOf(mean, figures, unmeasured), figures, unmeasured };
}

/**
 * @param {GazeQuality[]} eyes
 * @param {LimitedMeasure} measure
 * @param {number} limit
 */
function exceedingEyes(eyes, measure, limit) {
    const means = eyes.map(({ name, mean }) => ({ name: /** @type {'left' | 'right'} */ (name), value: valueOf[measure](mean) }));
    return means.filter(({ value }) => value > limit);
}

/**
 * @param {DataQuality} mean
 * @param {Figure[]} figures
 * @param {number[]} unmeasured
 */
function levelOf(mean, figures, unmeasured) {
    if (!mean.accuracy) return 'unknown';
    if (figures.some(({ isExceeded }) => isExceeded)) return 'bad';
    const hasException = figures.some(({ eyes, targets }) => eyes.length > 0 || targets.length > 0);
    return unmeasured.length > 0 || hasException ? 'partly' : 'good';
}

/** @param {{ targetId: number }[]} targets */
function idsOf(targets) {
    return [...new Set(targets.map(({ targetId }) => targetId))].sort((a, b) => a - b);
}
