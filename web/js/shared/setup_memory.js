// @ts-check

const storageKey = 'validation-setup';

/**
 * The set-up of the last validation. Sizes are remembered for each screen, rates and distances for each tracker.
 *
 * @typedef {object} SetupMemory
 * @property {Record<string, { widthMm: number, heightMm: number }>} screens
 * @property {Record<string, number>} ratesHz
 * @property {Record<string, number>} distancesMm distances that the user has entered
 * @property {string} participant
 * @property {string} session
 */

/** @type {SetupMemory} */
const nothing = { screens: {}, ratesHz: {}, distancesMm: {}, participant: '', session: '' };

/**
 * Returns the remembered set-up. A browser may refuse access to the storage, and a user may change it.
 *
 * @returns {SetupMemory}
 */
export function remembered() {
    try {
        const { screens, ratesHz, distancesMm, participant = '', session = '' } = JSON.parse(localStorage.getItem(storageKey) ?? '{}');
        return {
            screens: Object(screens), ratesHz: Object(ratesHz), distancesMm: Object(distancesMm),
            participant: String(participant), session: String(session),
        };
    } catch {
        return nothing;
    }
}

/** @param {SetupMemory} memory */
export function remember(memory) {
    try {
        localStorage.setItem(storageKey, JSON.stringify(memory));
    } catch {
        // See remembered(). The values remain in the fields.
    }
}
