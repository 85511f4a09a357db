// @ts-check
import { inputById } from '../shared/dom.js';

const rate = inputById('assumed-rate');
const range = [inputById('from'), inputById('to')];

export function assumedRateHz() {
    return rate.valueAsNumber;
}

/**
 * Connects the fields. Values that a field does not accept are ignored.
 *
 * @param {object} changed called after a change of the assumed rate, or the time range
 * @param {() => void} changed.rate
 * @param {(fromMs: number, toMs: number) => void} changed.range
 */
export function startParameters(changed) {
    rate.addEventListener('change', () => rate.reportValidity() && changed.rate());
    for (const field of range) {
        field.addEventListener('change', () => {
            const [fromMs, toMs] = range.map(({ valueAsNumber }) => 1000 * valueAsNumber);
            if (Number.isFinite(fromMs + toMs)) changed.range(fromMs, toMs);
        });
    }
}
