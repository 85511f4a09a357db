// @ts-check
import { readExchangeFile, windowsOf } from '../shared/exchange_file.js';
import { FileError } from '../shared/file_error.js';
import { qualityTable } from '../shared/quality_table.js';
import { isValidationFile, readValidationFile } from './validation_file.js';
/** @import { ExchangeSamples } from '../shared/exchange_file.js' */
/** @import { TextKey, TextValues } from '../shared/language.js' */
/** @import { FileFacts } from './file_form.js' */
/** @import { Validation } from './validation.js' */
/** @import { QualityTable } from './verdict.js' */

/** @typedef {{ key: TextKey, values: TextValues }} Problem */

/** The request to read a file, or to calculate the data quality of samples. @typedef {File | { samples: ExchangeSamples, facts: FileFacts }} WorkerRequest */

/**
 * The reply: the samples of an exchange file, a validation from a JSON file, the data quality of samples, or a problem.
 *
 * @typedef {{ samples: ExchangeSamples } | { validation: Validation, table: QualityTable }
 *     | { samples: ExchangeSamples, table: QualityTable } | { problem: Problem }} WorkerReply
 */

/** More windows would make the table too long for a browser. tools/data-quality has no limit. */
const maxWindowCount = 1000;

onmessage = async ({ data: request }) => {
    try {
        if (request instanceof File) await read(request);
        else calculate(request);
    } catch (error) {
        reply({ problem: problemOf(/** @type {Error} */ (error)) });
    }
};

/** @param {File} file */
async function read(file) {
    const bytes = new Uint8Array(await file.arrayBuffer());
    if (!isValidationFile(bytes)) {
        const samples = readExchangeFile(bytes);
        checkWindowCount(samples);
        return reply({ samples }, samples);
    }
    const validation = readValidationFile(bytes, file.name);
    const { samples, geometry, expectedHz } = validation;
    checkWindowCount(samples);
    reply({ validation, table: qualityTable(samples, geometry, expectedHz ?? undefined) }, samples);
}

/** @param {ExchangeSamples} samples */
function checkWindowCount(samples) {
    const count = windowsOf(samples).length;
    if (count > maxWindowCount) throw new FileError('tooManyWindows', 1, { count, max: maxWindowCount });
}

/** @param {Exclude<WorkerRequest, File>} request */
function calculate({ samples, facts: { geometry, expectedHz } }) {
    reply({ samples, table: qualityTable(samples, geometry, expectedHz ?? undefined) }, samples);
}

/**
 * Replies without copying the samples.
 *
 * @param {WorkerReply} message
 * @param {ExchangeSamples} [samples]
 */
function reply(message, samples) {
    postMessage(message, { transfer: samples ? buffersOf(samples) : [] });
}

/**
 * Returns the buffers of all columns.
 *
 * @param {ExchangeSamples} samples
 */
function buffersOf({ timestampMs, left, right, targetId, targetX, targetY }) {
    const columns = [timestampMs, targetId, targetX, targetY, left?.x, left?.y, right?.x, right?.y];
    return columns.flatMap(column => (column ? /** @type {ArrayBuffer} */ (column.buffer) : []));
}

/**
 * @param {Error} error
 * @returns {Problem}
 */
function problemOf(error) {
    if (error instanceof FileError) return { key: error.key, values: error.values };
    return { key: 'unreadable', values: { reason: error.message } };
}
