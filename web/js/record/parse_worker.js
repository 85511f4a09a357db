// @ts-check
import { columnNames } from '../shared/sample_columns.js';
import { RecordBuilder } from './record_builder.js';
import { RecordError, RecordParser } from './record_parser.js';
/** @import { TextKey, TextValues } from '../shared/language.js' */
/** @import { RecordContent } from './record_builder.js' */

/** @typedef {RecordContent & { cutOffLine: number }} RecordFile `cutOffLine` is 0 if the file is complete. */
/** @typedef {{ key: TextKey, values: TextValues }} Problem */
/** @typedef {{ progress: number } | { record: RecordFile } | { problem: Problem }} WorkerMessage Progress is from 0 to 1. */

const pieceBytes = 1 << 21;

/** Reads the file in the message. Replies with the progress, and finally with the file's content or a problem. */
onmessage = async ({ data: file }) => {
    try {
        const record = await read(file);
        const { columns } = record;
        const transfer = [columns.time, ...columnNames.map(name => columns[name])].map(({ buffer }) => buffer);
        reply({ record }, transfer);
    } catch (error) {
        reply({ problem: problemOf(/** @type {Error} */ (error)) });
    }
};

/**
 * @param {WorkerMessage} message
 * @param {ArrayBuffer[]} transfer
 */
function reply(message, transfer = []) {
    postMessage(message, { transfer });
}

/**
 * @param {Error} error
 * @returns {Problem}
 */
function problemOf(error) {
    if (error instanceof RecordError) return { key: error.key, values: error.values };
    return { key: 'unreadable', values: { reason: error.message } };
}

/**
 * @param {File} file
 * @returns {Promise<RecordFile>}
 */
async function read(file) {
    const builder = new RecordBuilder();
    const parser = new RecordParser((cells, line) => builder.add(cells, line));
    for (let at = 0; at < file.size; at += pieceBytes) {
        parser.push(new Uint8Array(await file.slice(at, at + pieceBytes).arrayBuffer()));
        reply({ progress: Math.min(1, (at + pieceBytes) / file.size) });
    }
    parser.finish();
    return { ...builder.finish(), cutOffLine: parser.cutOffLine };
}
