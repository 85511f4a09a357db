/** Longer texts of a file are cut: they are shown to say what was found, not to be read. */
const longestFound = 60;

/** Why a file is no record: a text of the dictionaries with its values, and the line it is about, counted from 1. */
export class RecordError extends Error {
    constructor(key, line, values = {}) {
        super(key);
        this.key = key;
        this.values = { line, ...values };
    }
}

/** A piece of a file's bytes as text that can be shown. */
export function excerpt(bytes) {
    const text = new TextDecoder().decode(bytes.subarray(0, 4 * longestFound)).replace(/[\p{Cc}\uFFFD]+/gu, '\uFFFD');
    return text.length > longestFound ? `${text.slice(0, longestFound)}…` : text;
}
