// @ts-check
import { number, quantity, text } from '../shared/language.js';
/** @import { TextKey } from '../shared/language.js' */
/** @import { Figure, LimitedMeasure, Verdict } from './verdict.js' */

/** @type {Record<Verdict['level'], TextKey>} */
const headlines = { good: 'verdictGood', partly: 'verdictPartly', bad: 'verdictBad', unknown: 'verdictUnknown' };

/** @type {Record<LimitedMeasure | 'expectedLoss', { unit: TextKey, decimals: number, within: TextKey, exceeded: TextKey, advice: TextKey }>} */
const figureTexts = {
    accuracy: {
        unit: 'degrees', decimals: 2, within: 'accuracyWithin', exceeded: 'accuracyExceeded', advice: 'accuracyAdvice',
    },
    dataLoss: {
        unit: 'percent', decimals: 1, within: 'dataLossWithin', exceeded: 'dataLossExceeded', advice: 'dataLossAdvice',
    },
    expectedLoss: {
        unit: 'percent', decimals: 1, within: 'expectedLossWithin', exceeded: 'expectedLossExceeded',
        advice: 'expectedLossAdvice',
    },
};

const eyeNames = /** @type {const} */ ({ left: 'leftEye', right: 'rightEye' });

/** A longer list of targets is cut off. */
const maxTargetCount = 20;

/** @param {Verdict} verdict */
export function headlineOf({ level }) {
    return text(headlines[level]);
}

/**
 * Returns a sentence for each figure, and what to do about it.
 *
 * @param {Verdict} verdict
 */
export function reasonsOf({ figures, unmeasured }) {
    const reasons = figures.filter(({ value }) => !Number.isNaN(value)).map(figureReason);
    return unmeasured.length > 0 ? [...reasons, text('unmeasuredTargets', { targets: listOf(unmeasured) })] : reasons;
}

/** @param {Figure} figure */
function figureReason({ measure, isAtNominalRate, value, limit, isExceeded, eyes, targets }) {
    const { unit, decimals, within, exceeded, advice } = figureTexts[isAtNominalRate ? 'expectedLoss' : measure];
    const parts = [text(isExceeded ? exceeded : within, {
        value: quantity(unit, value, decimals), limit: quantity(unit, limit, decimals),
    })];
    if (!isExceeded) {
        for (const eye of eyes)
            parts.push(text('exceedingEye', { eye: text(eyeNames[eye.name]), value: quantity(unit, eye.value, decimals) }));
    }
    if (targets.length > 0) parts.push(text('exceedingTargets', { targets: listOf(targets) }));
    if (isExceeded) parts.push(text(advice));
    return parts.join(' ');
}

/** @param {number[]} targets */
function listOf(targets) {
    const shown = targets.slice(0, maxTargetCount).map(id => number(id));
    return targets.length > maxTargetCount ? `${shown.join(', ')}, …` : shown.join(', ');
}
