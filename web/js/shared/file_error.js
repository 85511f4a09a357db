// @ts-check
/** @import { TextKey, TextValues } from './language.js' */

const maxExcerptLength = 60;

/** The reason why a file is refused: the key of its text, and the text's values with the line, counted from 1. */
export class FileError extends Error {
    /**
     * @param {TextKey} key
     * @param {number} line
     * @param {TextValues} values
     */
    constructor(key, line, values = {}) {
        super(key);
        this.key = key;
        this.values = { line, ...values };
    }
}

/**
 * Returns the start of a text for an error message, without control characters.
 *
 * @param {Uint8Array} bytes
 */
export function excerpt(bytes) {
    const start = new TextDecoder().decode(bytes.subarray(0, 4 * maxExcerptLength));
    const text = start.replace(/[\p{Cc}\uFFFD]+/gu, '\uFFFD');
    return text.length > maxExcerptLength ? `${text.slice(0, maxExcerptLength)}…` : text;
}
