// @ts-check
import { number, quantity, text } from '../shared/language.js';
import { trackerTitle } from './tracker_title.js';
/** @import { DataQuality } from '../shared/data_quality.js' */
/** @import { TextKey } from '../shared/language.js' */
/** @import { GazeName } from '../shared/quality_table.js' */
/** @import { Validation } from './validation.js' */
/** @import { QualityTable } from './verdict.js' */

/** @type {Record<GazeName, TextKey>} */
const gazeTexts = { left: 'methodsLeft', right: 'methodsRight', combined: 'methodsCombined' };

/**
 * Returns a description of a validation for the methods section of a paper. Facts that are not known are in square
 * brackets, for the author to fill in.
 *
 * @param {Validation} validation
 * @param {QualityTable} table
 */
export function methodsText({ tracker, expectedHz, geometry }, table) {
    const { gazes, mean } = table;
    /** @param {(quality: DataQuality) => string} shownOf */
    const forGazes = shownOf => gazes.map(gaze =>
        text(gazeTexts[gaze.name], { value: shownOf(gaze.mean) })).join(', ');
    const effective = quantity('hz', mean.effectiveFrequencyHz, 1);
    const rate = expectedHz === null
        ? text('methodsEffectiveRate', { effective })
        : text('methodsRates', { effective, nominal: quantity('hz', expectedHz, decimalsOf(expectedHz)) });
    const sentences = [
        text('methodsProcedure', {
            rate, targets: new Set(gazes[0].targets.map(({ targetId }) => targetId)).size,
            tracker: tracker ? text('methodsTracker', { name: trackerTitle(tracker) }) : text('methodsUnknownTracker'),
            ...shownGeometry(geometry),
        }),
        text('methodsFigures', {
            accuracy: forGazes(({ accuracy }) => quantity('degrees', accuracy?.offset ?? NaN, 2)),
            rms: forGazes(({ rmsS2s }) => quantity('degrees', rmsS2s.total, 2)),
            std: forGazes(({ std }) => quantity('degrees', std.total, 2)),
            loss: forGazes(quality => quantity('percent', quality.dataLossPercent, 1)),
        }),
    ];
    if (expectedHz !== null) {
        const loss = forGazes(quality => quantity('percent', quality.dataLossFromExpectedPercent, 1));
        sentences.push(text('methodsExpectedLoss', { loss }));
    }
    return sentences.join(' ');
}

/** @param {Validation['geometry']} geometry */
function shownGeometry({ widthMm, heightMm, widthPx, heightPx, distanceMm }) {
    const shown = (/** @type {number} */ value) => number(value, decimalsOf(value));
    return {
        width: shown(widthMm), height: shown(heightMm), widthPx: String(widthPx), heightPx: String(heightPx),
        distance: number(distanceMm),
    };
}

/** @param {number} value */
function decimalsOf(value) {
    return Number.isInteger(value) ? 0 : 1;
}
