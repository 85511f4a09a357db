import en from '../texts/en.js';
import ru from '../texts/ru.js';

const dictionaries = { en, ru };
const storageKey = 'language';
let current = 'en';
const followers = [];

/** The text of `key` in the chosen language, with `{name}` replaced by the values of those names. */
export function text(key, values = {}) {
    return dictionaries[current][key].replace(/\{(\w+)\}/g, (_, name) => values[name]);
}

/** A number with so many digits behind the decimal sign, in the text of `key`; a dash for NaN. */
export function quantity(key, value, digits = 0) {
    return Number.isFinite(value) ? text(key, { value: number(value, digits) }) : text('unknown');
}

export function number(value, digits = 0) {
    // Not "-0", and a minus as wide as a digit.
    return numberFormat(digits).format(Number(value.toFixed(digits)) || 0).replace('-', '−');
}

/** Kept, as they take long to make. */
const numberFormats = {};

function numberFormat(digits) {
    const digit = { minimumFractionDigits: digits, maximumFractionDigits: digits };
    return (numberFormats[current + digits] ??= new Intl.NumberFormat(current, digit));
}

/** A length of time as minutes or hours, like 12:05 or 1:00:00. */
export function clock(ms) {
    const seconds = Math.round(ms / 1000);
    const parts = [Math.floor(seconds / 3600), Math.floor(seconds / 60) % 60, seconds % 60];
    const shown = parts[0] > 0 ? parts : parts.slice(1);
    return shown.map((part, i) => String(part).padStart(i > 0 ? 2 : 1, '0')).join(':');
}

export function timeOfDay(date) {
    return date.toLocaleTimeString(current);
}

/** Calls `follow` at every change of the language, for texts that are not in the page's markup. */
export function onLanguage(follow) {
    followers.push(follow);
}

/** Translates the page and makes its language buttons work. */
export function startLanguage() {
    for (const button of languageButtons()) button.addEventListener('click', () => choose(button.dataset.language));
    use(remembered() ?? (navigator.language.startsWith('ru') ? 'ru' : 'en'));
}

function languageButtons() {
    return document.querySelectorAll('[data-language]');
}

/** Browsers may refuse to store anything; the choice then lasts as long as the page. */
function remembered() {
    try {
        const language = localStorage.getItem(storageKey);
        return language in dictionaries ? language : null;
    } catch {
        return null;
    }
}

function choose(language) {
    try {
        localStorage.setItem(storageKey, language);
    } catch {
        // As said above.
    }
    use(language);
}

function use(language) {
    current = language;
    document.documentElement.lang = language;
    for (const element of document.querySelectorAll('[data-i18n]')) element.textContent = text(element.dataset.i18n);
    for (const element of document.querySelectorAll('[data-i18n-label]'))
        element.setAttribute('aria-label', text(element.dataset.i18nLabel));
    for (const button of languageButtons())
        button.setAttribute('aria-pressed', String(button.dataset.language === language));
    for (const follow of followers) follow();
}
