// @ts-check
const timeoutMs = 3000;

/**
 * Percent-encodes everything except letters, digits and -._~. In the server, a path ends at ? and at a space.
 *
 * @param {string} text
 */
export function encodeParameter(text) {
    return encodeURIComponent(text).replace(/[!'()*]/g, c => `%${c.charCodeAt(0).toString(16).toUpperCase()}`);
}

/** The error for a request that the server refused with an HTTP status, for example "503 too many connections". */
export class Refusal extends Error {}

/**
 * Sends a request and returns the JSON answer. Throws a Refusal for an HTTP error status, and another error if there is
 * no valid answer within the timeout.
 *
 * @param {string} path
 * @param {RequestInit} options
 */
export async function ask(path, options = {}) {
    const answer = await fetch(path, { cache: 'no-store', signal: AbortSignal.timeout(timeoutMs), ...options });
    if (!answer.ok) throw new Refusal(`${answer.status} ${answer.statusText}`);
    return answer.json();
}

/** @param {string} file */
export const startRecordPath = file => (file ? `/startrecord&path=${encodeParameter(file)}` : '/startrecord');
/** @param {number} screen */
export const calibratePath = screen => `/calibrate&screen=${screen}`;
