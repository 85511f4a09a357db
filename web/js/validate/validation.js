// @ts-check
/** @import { Geometry } from '../shared/data_quality.js' */
/** @import { ExchangeSamples } from '../shared/exchange_file.js' */
/** @import { ScreenCheck } from './calibrated_screen.js' */

/**
 * A measurement of how well a calibration fits. All measures are computed from it with qualityTable().
 *
 * @typedef {object} Validation
 * @property {string} id unique in the history
 * @property {number} time when the validation started, or when the file was opened; in ms since 1970
 * @property {string} participant
 * @property {string} session
 * @property {string} tracker the name as in the API; empty for a file
 * @property {number | null} expectedHz the nominal sample rate, or null if it is not known
 * @property {Geometry} geometry
 * @property {ExchangeSamples} samples
 * @property {Circumstances} circumstances
 */

/**
 * The facts that affect the interpretation of the figures.
 *
 * @typedef {object} Circumstances
 * @property {string} fileName the opened file; empty for a validation that this page measured
 * @property {ScreenCheck} screenCheck whether the targets were shown on the calibrated screen
 * @property {number[]} repeatedTargets the targets that were repeated, because too few samples were valid; the samples of
 *     their first windows have the target_id -1
 * @property {number} missedCount samples that Ocela had, but that this page did not receive
 * @property {boolean} isRightEyeCrossed whether the tracker exchanges the axes of the right eye; the samples are corrected
 */

/**
 * Returns the circumstances of a file, for which only its name is known.
 *
 * @param {string} fileName
 * @returns {Circumstances}
 */
export function circumstancesOfFile(fileName) {
    return { fileName, screenCheck: 'unknown', repeatedTargets: [], missedCount: 0, isRightEyeCrossed: false };
}
