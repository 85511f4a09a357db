import { columnNames } from '../shared/sample_columns.js';
import { RecordBuilder } from './record_builder.js';
import { RecordError } from './record_error.js';
import { RecordParser } from './record_parser.js';

const pieceBytes = 1 << 21;

/** Takes a file; answers with { progress } from 0 to 1, and in the end with { record } or { error }. */
onmessage = async ({ data: file }) => {
    try {
        const record = await read(file);
        const { columns } = record;
        postMessage({ record }, ['time', ...columnNames].map(name => columns[name].buffer));
    } catch (error) {
        if (error instanceof RecordError) postMessage({ error: { key: error.key, values: error.values } });
        else postMessage({ error: { key: 'unreadable', values: { reason: error.message } } });
    }
};

async function read(file) {
    const builder = new RecordBuilder();
    const parser = new RecordParser((cells, line) => builder.add(cells, line));
    for (let at = 0; at < file.size; at += pieceBytes) {
        parser.push(new Uint8Array(await file.slice(at, at + pieceBytes).arrayBuffer()));
        postMessage({ progress: Math.min(1, (at + pieceBytes) / file.size) });
    }
    parser.finish();
    return { ...builder.finish(), cutOffLine: parser.cutOffLine };
}
