// @ts-check
import { byId, inputById } from '../shared/dom.js';
/** @import { Geometry } from '../shared/data_quality.js' */

/** The facts that an exchange file does not contain. @typedef {{ geometry: Geometry, expectedHz: number | null }} FileFacts */

const storageKey = 'validation-file';

const fields = {
    widthMm: inputById('file-width-mm'), heightMm: inputById('file-height-mm'), widthPx: inputById('file-width-px'),
    heightPx: inputById('file-height-px'), distanceMm: inputById('file-distance-mm'), rate: inputById('file-rate'),
};

/**
 * Connects the form, and fills it with the last values.
 *
 * @param {object} requests
 * @param {(facts: FileFacts) => void} requests.entered
 * @param {() => void} requests.cancelled
 */
export function startFileForm({ entered, cancelled }) {
    for (const [name, value] of Object.entries(remembered())) {
        const field = fields[/** @type {keyof typeof fields} */ (name)];
        if (field && typeof value === 'string') field.value = value;
    }
    byId('file-form').addEventListener('submit', event => {
        event.preventDefault();
        remember();
        const { rate, ...sizes } = fields;
        const geometry = Object.fromEntries(Object.entries(sizes).map(([name, { valueAsNumber }]) => [name, valueAsNumber]));
        const expectedHz = rate.value === '' ? null : rate.valueAsNumber;
        entered({ geometry: /** @type {Geometry} */ (geometry), expectedHz });
    });
    byId('cancel-file').addEventListener('click', cancelled);
}

/** Shows the form, and focuses its first empty field. */
export function showFileForm() {
    byId('file-form').hidden = false;
    const firstEmpty = Object.values(fields).find(({ required, value }) => required && value === '');
    (firstEmpty ?? fields.widthMm).focus();
}

export function hideFileForm() {
    byId('file-form').hidden = true;
}

/** A browser may refuse access to the storage, and a user may change it. @returns {Record<string, unknown>} */
function remembered() {
    try {
        return JSON.parse(localStorage.getItem(storageKey) ?? '{}') ?? {};
    } catch {
        return {};
    }
}

function remember() {
    const values = Object.fromEntries(Object.entries(fields).map(([name, { value }]) => [name, value]));
    try {
        localStorage.setItem(storageKey, JSON.stringify(values));
    } catch {
        // See remembered(). The values remain in the fields.
    }
}
