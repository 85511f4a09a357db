// @ts-check
import { Refusal } from '../shared/api.js';
import { byId, element } from '../shared/dom.js';
import { onLanguage, text, timeOfDay } from '../shared/language.js';

const maxRequestCount = 6;

/** Texts are functions, because the language may change. @typedef {() => string} Text */
/** @typedef {{ item: HTMLElement, date: Date, title: Text, outcome: Text, refused: boolean }} Request */

/** The shown requests, newest first. @type {Request[]} */
const requests = [];

onLanguage(() => requests.forEach(show));

/**
 * Adds a request to the list, and shows its outcome there. Resolves with whether it succeeded.
 *
 * @param {Text} title
 * @param {() => Promise<Text>} send sends the request; resolves with the text for its success
 */
export async function showRequest(title, send) {
    const request = {
        item: element('li'), date: new Date(), title, outcome: () => text('waiting'), refused: false,
    };
    requests.unshift(request);
    show(request);
    byId('requests').prepend(request.item);
    for (const old of requests.splice(maxRequestCount)) old.item.remove();
    Object.assign(request, await outcomeOf(send));
    show(request);
    return !request.refused;
}

/**
 * @param {() => Promise<Text>} send
 * @returns {Promise<Partial<Request>>}
 */
async function outcomeOf(send) {
    try {
        return { outcome: await send() };
    } catch (error) {
        const key = error instanceof Refusal ? 'refusedBecause' : 'unanswered';
        return { outcome: () => text(key, { error: /** @type {Error} */ (error).message }), refused: true };
    }
}

/**
 * Updates only the item of this request, because a screen reader reads every change of the list aloud.
 *
 * @param {Request} request
 */
function show({ item, date, title, outcome, refused }) {
    item.className = refused ? 'refused' : '';
    item.replaceChildren(`${timeOfDay(date)}  ${title()} `, element('br'), element('b', outcome()));
}
