// @ts-check
import { download } from '../shared/download.js';
import { writeExchangeFile } from '../shared/exchange_file.js';
import { fileNameOf } from './file_names.js';
import { writeValidationFile } from './validation_file.js';
/** @import { Validation } from './validation.js' */
/** @import { Limits } from './verdict.js' */

/**
 * Saves the samples in the exchange format.
 *
 * @param {Validation} validation
 */
export function saveTsv(validation) {
    const content = new Blob([writeExchangeFile(validation.samples)], { type: 'text/tab-separated-values' });
    download(content, `${fileNameOf(validation)}.tsv`);
}

/**
 * Saves everything about a validation.
 *
 * @param {Validation} validation
 * @param {Limits} limits
 */
export function saveJson(validation, limits) {
    const content = new Blob([writeValidationFile(validation, limits)], { type: 'application/json' });
    download(content, `${fileNameOf(validation)}.json`);
}
