// @ts-check
// The JSON file with everything about a validation.
import { windowsOf } from '../shared/exchange_file.js';
import { FileError } from '../shared/file_error.js';
import { qualityOf } from './quality_of.js';
import { verdictOf } from './verdict.js';
/** @import { Geometry } from '../shared/data_quality.js' */
/** @import { ExchangeSamples, EyeGaze } from '../shared/exchange_file.js' */
/** @import { Circumstances, Validation } from './validation.js' */
/** @import { Limits } from './verdict.js' */

const format = 'Ocela validation';

/** Increased after an incompatible change. A page refuses files of later versions. */
const version = 1;

/** The largest length in mm or pixels, as in the form for exchange files. The smallest one is 1. */
const maxGeometry = 100000;

const outsideId = -1;
const geometryKeys = /** @type {const} */ (['widthMm', 'heightMm', 'widthPx', 'heightPx', 'distanceMm']);

/**
 * Returns the text of a file. Missing values are null. Positions are in pixels from the screen's centre.
 *
 * @param {Validation} validation
 * @param {Limits} limits
 */
export function writeValidationFile(validation, limits) {
    const { samples, time, ...facts } = validation;
    const quality = qualityOf(validation);
    return JSON.stringify({
        format, version, time: new Date(time).toISOString(), ...facts, targets: targetsOf(samples),
        quality, limits, verdict: verdictOf(quality, limits), samples: columnsOf(samples),
    });
}

/**
 * Returns each target with its position.
 *
 * @param {ExchangeSamples} samples
 */
function targetsOf(samples) {
    const targets = new Map(windowsOf(samples).map(({ targetId, x, y }) => [targetId, { targetId, x, y }]));
    return [...targets.values()];
}

/**
 * Returns the columns with the names of the exchange format.
 *
 * @param {ExchangeSamples} samples
 */
function columnsOf({ timestampMs, left, right, targetId, targetX, targetY }) {
    const eye = (/** @type {string} */ name, /** @type {EyeGaze | null} */ gaze) =>
        gaze ? { [`${name}_x`]: Array.from(gaze.x), [`${name}_y`]: Array.from(gaze.y) } : {};
    return {
        timestamp: Array.from(timestampMs), ...eye('left', left), ...eye('right', right), target_id: Array.from(targetId),
        tar_x: Array.from(targetX), tar_y: Array.from(targetY),
    };
}

/** @param {Uint8Array} bytes */
export function isValidationFile(bytes) {
    // Byte order mark, spaces and line ends may precede the object.
    return /^\uFEFF?\s*\{/.test(new TextDecoder('utf-8', { ignoreBOM: true }).decode(bytes.subarray(0, 100)));
}

/**
 * Reads a file. Its measures are ignored, because they are computed from the samples. Throws a FileError if the file is
 * not a validation, or if a part of it is not valid.
 *
 * @param {Uint8Array} bytes
 * @param {string} fileName
 * @returns {Validation}
 */
export function readValidationFile(bytes, fileName) {
    const content = parsed(bytes);
    if (content?.format !== format) throw new FileError('notAValidation', 1);
    if (!(content.version <= version)) throw new FileError('laterVersion', 1, { version: String(content.version) });
    const { id, participant, session, tracker, expectedHz, geometry, circumstances } = content;
    const time = Date.parse(content.time);
    check('time', Number.isFinite(time));
    for (const [name, value] of Object.entries({ id, participant, session, tracker })) check(name, typeof value === 'string');
    check('expectedHz', expectedHz === null || (Number.isFinite(expectedHz) && expectedHz > 0));
    for (const key of geometryKeys) check(`geometry.${key}`, isLength(geometry?.[key]));
    return {
        id, time, participant, session, tracker, expectedHz, geometry: /** @type {Geometry} */ (geometry),
        samples: samplesOf(content.samples), circumstances: { ...circumstancesOf(circumstances), fileName },
    };
}

/** @param {any} value */
function isLength(value) {
    return Number.isFinite(value) && value >= 1 && value <= maxGeometry;
}

/**
 * @param {any} value
 * @returns {Circumstances}
 */
function circumstancesOf(value) {
    const { screenCheck, repeatedTargets, missedCount, isRightEyeCrossed } = value ?? {};
    check('circumstances', ['match', 'otherScreen', 'unknown'].includes(screenCheck) && Array.isArray(repeatedTargets)
        && repeatedTargets.every(Number.isSafeInteger) && Number.isFinite(missedCount) && typeof isRightEyeCrossed === 'boolean');
    return { fileName: '', screenCheck, repeatedTargets, missedCount, isRightEyeCrossed };
}

/** @param {Uint8Array} bytes */
function parsed(bytes) {
    try {
        return JSON.parse(new TextDecoder().decode(bytes));
    } catch {
        throw new FileError('brokenJson', 1);
    }
}

/**
 * @param {string} part
 * @param {boolean} isValid
 */
function check(part, isValid) {
    if (!isValid) throw new FileError('damagedValidation', 1, { part });
}

/**
 * @param {any} columns
 * @returns {ExchangeSamples}
 */
function samplesOf(columns) {
    const length = columns?.timestamp?.length;
    const column = (/** @type {string} */ name) => columnOf(columns?.[name], length, name);
    const eye = (/** @type {string} */ name) =>
        columns[`${name}_x`] ? { x: column(`${name}_x`), y: column(`${name}_y`) } : null;
    const samples = {
        timestampMs: column('timestamp'), left: eye('left'), right: eye('right'), targetId: column('target_id'),
        targetX: column('tar_x'), targetY: column('tar_y'),
    };
    check('samples', samples.left !== null || samples.right !== null);
    check('samples.timestamp', samples.timestampMs.every((time, i, all) => i === 0 ? !Number.isNaN(time) : time >= all[i - 1]));
    check('samples.target_id', samples.targetId.every(id => Number.isSafeInteger(id) && id >= outsideId));
    check('samples.target_id', hasWindows(samples));
    return samples;
}

/**
 * @param {any} values
 * @param {number} length
 * @param {string} name
 */
function columnOf(values, length, name) {
    const isValue = (/** @type {unknown} */ value) => value === null || Number.isFinite(value);
    check(`samples.${name}`, Array.isArray(values) && values.length === length && values.every(isValue));
    return Float64Array.from(values, value => value ?? NaN);
}

/** @param {ExchangeSamples} samples */
function hasWindows(samples) {
    try {
        return windowsOf(samples).length > 0;
    } catch {
        return false;
    }
}
