// @ts-check

/** The root of the API for programs. */
const root = '/api/v1/';

/** Longer than the 10 s in which Ocela answers a request, so that the page learns the outcome. */
const timeoutMs = 15000;

/** The same for a request that saves a recording, for which Ocela has 60 s. */
export const saveTimeoutMs = 70000;

const maxReasonLength = 300;

/** The error for a request that Ocela refused. The message is the reason. */
export class Refusal extends Error {}

/**
 * Returns the address of a resource. Each part is percent-encoded.
 *
 * @param {...string} parts
 */
export const addressOf = (...parts) => root + parts.map(encodeURIComponent).join('/');

/**
 * Sends a request and returns the JSON answer, or an empty object if the answer has no content. Throws a Refusal for an
 * HTTP error status, and another error if there is no valid answer within the timeout.
 *
 * @param {string} method
 * @param {string} resource
 * @param {{ body?: object, waitMs?: number }} options
 */
export async function call(method, resource, { body, waitMs = timeoutMs } = {}) {
    const content = body && { headers: { 'Content-Type': 'application/json' }, body: JSON.stringify(body) };
    const signal = AbortSignal.timeout(waitMs);
    const answer = await fetch(addressOf(resource), { method, cache: 'no-store', signal, ...content });
    if (!answer.ok) throw new Refusal(await reasonOf(answer));
    const text = await answer.text();
    return text ? JSON.parse(text) : {};
}

/**
 * Returns why a request was refused: the detail of the problem, or the text of an answer that is no problem document.
 *
 * @param {Response} answer
 * @returns {Promise<string>}
 */
export async function reasonOf(answer) {
    const text = (await answer.text()).trim();
    try {
        const { detail, title } = JSON.parse(text);
        return detail || title;
    } catch {
        return text.slice(0, maxReasonLength) || `${answer.status} ${answer.statusText}`;
    }
}
