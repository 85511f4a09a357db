// @ts-check
/** @import { Validation } from './validation.js' */

/**
 * Returns the name of a file for a validation, without its extension: the labels and the time, or the name of the opened
 * file. Characters that a file system may refuse are replaced.
 *
 * @param {Validation} validation
 */
export function fileNameOf({ participant, session, time, circumstances }) {
    if (circumstances.fileName) return circumstances.fileName.replace(/\.[^.]+$/, '');
    return ['validation', participant, session, fileTime(new Date(time))]
        .map(part => part.trim().replace(/[^\p{L}\p{N}._-]+/gu, '-'))
        .filter(part => part !== '')
        .join('_');
}

/**
 * Returns a local time for a file name, for example 2026-11-22_09-05-00.
 *
 * @param {Date} date
 */
export function fileTime(date) {
    const two = (/** @type {number} */ value) => String(value).padStart(2, '0');
    const day = [date.getFullYear(), two(date.getMonth() + 1), two(date.getDate())].join('-');
    return `${day}_${[date.getHours(), date.getMinutes(), date.getSeconds()].map(two).join('-')}`;
}
