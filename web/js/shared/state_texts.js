// @ts-check
import { text, timeOfDay } from './language.js';
/** @import { CalibrationResult, ScreenSize } from './live_model.js' */

const calibrationTexts = /** @type {const} */ ({
    done: 'calibrationDone', failed: 'calibrationFailed', cancelled: 'calibrationCancelled', unknown: 'calibrationUnknown',
});

/**
 * Returns the result of the last calibration with its time.
 *
 * @param {CalibrationResult} last
 */
export function calibrationResult({ result, time }) {
    return text(calibrationTexts[result], { time: timeOfDay(new Date(time)) });
}

/**
 * Returns the number and the size of a screen.
 *
 * @param {Pick<ScreenSize, 'number' | 'width' | 'height' | 'primary'>} screen
 */
export function screenName({ number, width, height, primary }) {
    return text(primary ? 'primaryScreenName' : 'screenName', { number, width, height });
}
