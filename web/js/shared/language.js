// @ts-check
import en from '../texts/en.js';
import ru from '../texts/ru.js';
import { allOf } from './dom.js';

const dictionaries = { en, ru };
const storageKey = 'language';

/** @typedef {keyof typeof dictionaries} Language */
/** @typedef {keyof typeof en} TextKey */
/** @typedef {Record<string, string | number>} TextValues */

/** @type {Language} */
let current = 'en';

/** @type {(() => void)[]} */
const listeners = [];

/**
 * Returns the text of `key` in the current language. `{name}` is replaced by `values.name`.
 *
 * @param {TextKey} key
 * @param {TextValues} values
 */
export function text(key, values = {}) {
    return dictionaries[current][key].replace(/\{(\w+)\}/g, (_, name) => String(values[name]));
}

/**
 * Returns the text of `key`, which consists of `value` and its unit. A non-finite value is shown as a dash.
 *
 * @param {TextKey} key
 * @param {number} value
 * @param {number} decimals
 */
export function quantity(key, value, decimals = 0) {
    return Number.isFinite(value) ? text(key, { value: number(value, decimals) }) : text('unknown');
}

/**
 * @param {number} value
 * @param {number} decimals
 */
export function number(value, decimals = 0) {
    // "|| 0" turns -0 into 0. Unlike the hyphen, the minus sign is as wide as a digit.
    return numberFormat(decimals).format(Number(value.toFixed(decimals)) || 0).replace('-', '−');
}

/**
 * Returns a number of things, or the text for an unknown value.
 *
 * @param {number} value
 */
export function count(value) {
    return Number.isNaN(value) ? text('unknown') : number(value);
}

/** @type {Record<string, Intl.NumberFormat>} */
const numberFormats = {};

/** @param {number} decimals */
function numberFormat(decimals) {
    const digits = { minimumFractionDigits: decimals, maximumFractionDigits: decimals };
    return (numberFormats[current + decimals] ??= new Intl.NumberFormat(current, digits));
}

/**
 * Returns a duration as minutes and seconds, or with hours, for example 12:05 or 1:00:00.
 *
 * @param {number} ms
 */
export function clock(ms) {
    const seconds = Math.round(ms / 1000);
    const parts = [Math.floor(seconds / 3600), Math.floor(seconds / 60) % 60, seconds % 60];
    const shown = parts[0] > 0 ? parts : parts.slice(1);
    return shown.map((part, i) => String(part).padStart(i > 0 ? 2 : 1, '0')).join(':');
}

/** @param {Date} date */
export function timeOfDay(date) {
    return date.toLocaleTimeString(current);
}

/** @param {Date} date */
export function dateAndTime(date) {
    return date.toLocaleString(current, { dateStyle: 'medium', timeStyle: 'short' });
}

/** @param {() => void} changed called after each change of the language, for texts that are not in the page's markup */
export function onLanguage(changed) {
    listeners.push(changed);
}

/** Translates the page and connects its language buttons. */
export function startLanguage() {
    for (const button of languageButtons())
        button.addEventListener('click', () => choose(languageOf(button.dataset.language) ?? current));
    use(storedLanguage() ?? (navigator.language.startsWith('ru') ? 'ru' : 'en'));
}

function languageButtons() {
    return allOf('[data-language]');
}

/**
 * @param {string | null | undefined} name
 * @returns {Language | null}
 */
function languageOf(name) {
    return name === 'en' || name === 'ru' ? name : null;
}

/** A browser may refuse access to the storage. The language is then chosen for the current page only. */
function storedLanguage() {
    try {
        return languageOf(localStorage.getItem(storageKey));
    } catch {
        return null;
    }
}

/** @param {Language} language */
function choose(language) {
    try {
        localStorage.setItem(storageKey, language);
    } catch {
        // See storedLanguage().
    }
    use(language);
}

/** @param {Language} language */
function use(language) {
    current = language;
    document.documentElement.lang = language;
    for (const element of allOf('[data-i18n]')) element.textContent = text(/** @type {TextKey} */ (element.dataset.i18n));
    for (const element of allOf('[data-i18n-label]'))
        element.setAttribute('aria-label', text(/** @type {TextKey} */ (element.dataset.i18nLabel)));
    for (const button of languageButtons())
        button.setAttribute('aria-pressed', String(button.dataset.language === language));
    for (const changed of listeners) changed();
}
