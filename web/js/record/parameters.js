import { byId } from '../shared/dom.js';
import { usualParameters } from './fixations.js';

const fields = { dispersion: 'dispersion', shortestMs: 'shortest', longestGapMs: 'longest-gap' };

/**
 * The numbers that a user sets. Only what the fields allow is passed on: { detection(), rate(), range(fromMs, toMs) }
 * are called when it changes.
 */
export function startParameters(changed) {
    for (const [name, id] of Object.entries(fields)) {
        byId(id).value = usualParameters[name];
        byId(id).addEventListener('change', () => byId(id).reportValidity() && changed.detection());
    }
    const rate = byId('assumed-rate');
    rate.addEventListener('change', () => rate.reportValidity() && changed.rate());
    for (const id of ['from', 'to']) byId(id).addEventListener('change', () => takeRange(changed));
    return {
        detection: () => Object.fromEntries(Object.entries(fields).map(([name, id]) => [name, byId(id).valueAsNumber])),
        assumedRateHz: () => rate.valueAsNumber,
    };
}

function takeRange(changed) {
    const [from, to] = [byId('from').valueAsNumber, byId('to').valueAsNumber];
    if (Number.isFinite(from) && Number.isFinite(to)) changed.range(1000 * from, 1000 * to);
}
