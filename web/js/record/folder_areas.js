// @ts-check
// The areas file beside a record file of Ocela's records folder.
import { addressOf, reasonOf } from '../shared/api.js';

/** Longer than the 10 s in which Ocela answers a request. */
const timeoutMs = 15000;

/**
 * What the page knows about the records folder from which it has opened a record file: the content of the areas file on which
 * the shown areas are based, or null if there was none, or none that could be read. After saving, it is the saved content.
 *
 * @typedef {{ areas: string | null }} FolderAreas
 */

/** @param {string} recordName */
const addressFor = recordName => `${addressOf('recordings', recordName)}?file=areas`;

/**
 * Returns the content of the areas file, or null if there is none. Throws an error with the reason if it is not delivered.
 *
 * @param {string} recordName
 * @param {AbortSignal} signal
 */
export async function fetchAreas(recordName, signal = AbortSignal.timeout(timeoutMs)) {
    const answer = await fetch(addressFor(recordName), { signal });
    if (answer.status === 404) return null;
    if (!answer.ok) throw new Error(await reasonOf(answer));
    return answer.text();
}

/**
 * Saves the areas file in place of an earlier one. Throws an error with the reason if Ocela does not save it.
 *
 * @param {string} recordName
 * @param {string} content
 */
export async function saveAreas(recordName, content) {
    const headers = { 'Content-Type': 'application/json' };
    const signal = AbortSignal.timeout(timeoutMs);
    const answer = await fetch(addressFor(recordName), { method: 'PUT', headers, body: content, signal });
    if (!answer.ok) throw new Error(await reasonOf(answer));
}
