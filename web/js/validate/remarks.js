// @ts-check
import { number, text } from '../shared/language.js';
/** @import { Validation } from './validation.js' */

/**
 * Returns the remarks about facts that affect the interpretation of the figures.
 *
 * @param {Validation} validation
 */
export function remarksOf({ tracker, samples, geometry, circumstances }) {
    const { screenCheck, repeatedTargets, missedCount, isRightEyeCrossed } = circumstances;
    const remarks = [];
    if (screenCheck === 'unknown' && tracker) remarks.push(text('screenNotChecked'));
    if (screenCheck === 'otherScreen') remarks.push(text('notOnCalibratedScreen'));
    if (repeatedTargets.length > 0) remarks.push(text('targetsRepeated', { targets: repeatedTargets.join(', ') }));
    if (missedCount > 0) remarks.push(text('samplesMissed', { count: number(missedCount) }));
    if (isRightEyeCrossed) remarks.push(text('rightEyeCorrected'));
    if (isBeyond(samples.targetX, geometry.widthPx / 2) || isBeyond(samples.targetY, geometry.heightPx / 2))
        remarks.push(text('targetOutside', { width: String(geometry.widthPx), height: String(geometry.heightPx) }));
    if (!samples.left) remarks.push(text('noLeftEye'));
    if (!samples.right) remarks.push(text('noRightEye'));
    return remarks;
}

/**
 * @param {Float64Array} positions
 * @param {number} edge
 */
function isBeyond(positions, edge) {
    return positions.some(position => Math.abs(position) > edge);
}
