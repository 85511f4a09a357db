// @ts-check
/** @import { TextKey, TextValues } from '../shared/language.js' */

/** The reason why a run ended early: the key of its text, and the text's values. */
export class Interruption extends Error {
    /**
     * @param {TextKey} key
     * @param {TextValues} values
     */
    constructor(key, values = {}) {
        super(key);
        this.key = key;
        this.values = values;
    }
}
