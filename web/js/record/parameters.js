// @ts-check
import { inputById } from '../shared/dom.js';
import { defaultParameters } from './fixations.js';
/** @import { FixationParameters } from './fixations.js' */

/** @type {[keyof FixationParameters, HTMLInputElement][]} */
const fields = [
    ['maxDispersion', inputById('dispersion')],
    ['minDurationMs', inputById('min-duration')],
    ['maxLossMs', inputById('max-loss')],
];
const rate = inputById('assumed-rate');
const range = [inputById('from'), inputById('to')];

/** @returns {FixationParameters} */
export function fixationParameters() {
    const entries = fields.map(([name, field]) => [name, field.valueAsNumber]);
    return Object.fromEntries(entries);
}

export function assumedRateHz() {
    return rate.valueAsNumber;
}

/**
 * Sets the defaults, and connects the fields. Values that a field does not accept are ignored.
 *
 * @param {object} changed called after a change of the fixation parameters, the assumed rate, or the time range
 * @param {() => void} changed.detection
 * @param {() => void} changed.rate
 * @param {(fromMs: number, toMs: number) => void} changed.range
 */
export function startParameters(changed) {
    for (const [name, field] of fields) {
        field.value = String(defaultParameters[name]);
        field.addEventListener('change', () => field.reportValidity() && changed.detection());
    }
    rate.addEventListener('change', () => rate.reportValidity() && changed.rate());
    for (const field of range) {
        field.addEventListener('change', () => {
            const [fromMs, toMs] = range.map(({ valueAsNumber }) => 1000 * valueAsNumber);
            if (Number.isFinite(fromMs + toMs)) changed.range(fromMs, toMs);
        });
    }
}
