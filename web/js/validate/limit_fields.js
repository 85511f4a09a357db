// @ts-check
import { inputById } from '../shared/dom.js';
import { defaultLimits } from './verdict.js';
/** @import { LimitedMeasure, Limits } from './verdict.js' */

const storageKey = 'validation-limits';

/** @type {[LimitedMeasure, string][]} */
const fields = [['accuracy', 'limit-accuracy'], ['dataLoss', 'limit-loss']];

/** The last values that the fields accepted. @type {Limits} */
let limits = { ...defaultLimits };

export function currentLimits() {
    return limits;
}

/**
 * Fills the fields with the remembered limits, and connects them. Values that a field does not accept are ignored.
 *
 * @param {() => void} changed
 */
export function startLimits(changed) {
    const stored = remembered();
    for (const [measure, id] of fields) {
        const field = inputById(id);
        field.value = String(stored[measure]);
        if (field.value === '' || !field.checkValidity()) field.value = String(defaultLimits[measure]);
        limits = { ...limits, [measure]: field.valueAsNumber };
        field.addEventListener('change', () => {
            if (!field.reportValidity()) return;
            limits = { ...limits, [measure]: field.valueAsNumber };
            remember();
            changed();
        });
    }
}

/** A browser may refuse access to the storage, and a user may change it. @returns {Limits} */
function remembered() {
    try {
        const stored = JSON.parse(localStorage.getItem(storageKey) ?? '{}');
        return { ...defaultLimits, ...stored };
    } catch {
        return { ...defaultLimits };
    }
}

function remember() {
    try {
        localStorage.setItem(storageKey, JSON.stringify(limits));
    } catch {
        // See remembered(). The limits apply until the page is closed.
    }
}
