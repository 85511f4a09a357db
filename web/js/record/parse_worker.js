// @ts-check
import { FileError } from '../shared/file_error.js';
import { columnNames } from '../shared/sample_columns.js';
import { ArrivalTimes } from './arrival_times.js';
import { readMarkers } from './markers_file.js';
import { RecordBuilder } from './record_builder.js';
import { RecordParser, samplesFormat } from './record_parser.js';
/** @import { TextKey, TextValues } from '../shared/language.js' */
/** @import { RecordingFiles } from './chosen_files.js' */
/** @import { Marker } from './markers_file.js' */
/** @import { RecordContent } from './record_builder.js' */

/** @typedef {{ key: TextKey, values: TextValues }} Problem */

/** @typedef {{ name: string, problem: Problem | null }} SamplesFile `problem` is the reason why its times are not used. */

/** @typedef {{ name: string, problem: Problem | null, markers: Marker[] }} EventsFile `problem` is the reason why it is not used. */

/**
 * @typedef {RecordContent & { cutOffLine: number, samples: SamplesFile | null, events: EventsFile | null }} RecordFile
 * `cutOffLine` is 0 if the file is complete.
 */

/** @typedef {{ progress: number } | { record: RecordFile } | { problem: Problem }} WorkerMessage Progress is from 0 to 1. */

const pieceBytes = 1 << 21;

/** Reads the files in the message. Replies with the progress, and finally with the recording or a problem. */
onmessage = async ({ data: files }) => {
    try {
        const record = await read(files);
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
    if (error instanceof FileError) return { key: error.key, values: error.values };
    return { key: 'unreadable', values: { reason: error.message } };
}

/**
 * @param {RecordingFiles} files
 * @returns {Promise<RecordFile>}
 */
async function read({ record, samples, events }) {
    const totalBytes = record.size + (samples?.size ?? 0);
    const builder = new RecordBuilder();
    const parser = new RecordParser((cells, line) => builder.add(cells, line));
    await parse(record, parser, doneBytes => reply({ progress: doneBytes / totalBytes }));
    const content = { ...builder.finish(), cutOffLine: parser.cutOffLine };
    const file = { ...content, samples: null, events: events && await readEvents(events, content) };
    if (!samples) return file;
    const problem = await readTimes(samples, file, doneBytes => reply({ progress: (record.size + doneBytes) / totalBytes }));
    return { ...file, samples: { name: samples.name, problem } };
}

/**
 * @param {File} events
 * @param {RecordContent & { cutOffLine: number }} content
 * @returns {Promise<EventsFile>}
 */
async function readEvents(events, { columns, cutOffLine }) {
    const { name } = events;
    try {
        const markers = readMarkers(await events.text(), cutOffLine > 0 ? Infinity : columns.length);
        return { name, problem: null, markers };
    } catch (error) {
        return { name, problem: problemOf(/** @type {Error} */ (error)), markers: [] };
    }
}

/**
 * Replaces the times of a recording by the arrival times in its samples file. Returns the problem if that fails.
 *
 * @param {File} samples
 * @param {RecordFile} file
 * @param {(doneBytes: number) => void} progress
 */
async function readTimes(samples, file, progress) {
    const times = new ArrivalTimes();
    try {
        await parse(samples, new RecordParser((cells, line) => times.add(cells, line), samplesFormat), progress);
        times.applyTo(file, file.cutOffLine > 0);
        return null;
    } catch (error) {
        return problemOf(/** @type {Error} */ (error));
    }
}

/**
 * @param {File} file
 * @param {RecordParser} parser
 * @param {(doneBytes: number) => void} progress
 */
async function parse(file, parser, progress) {
    for (let at = 0; at < file.size; at += pieceBytes) {
        parser.push(new Uint8Array(await file.slice(at, at + pieceBytes).arrayBuffer()));
        progress(Math.min(file.size, at + pieceBytes));
    }
    parser.finish();
}
