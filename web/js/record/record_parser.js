import { parseDecimal } from './decimal.js';
import { RecordError, excerpt } from './record_error.js';

const eye = side => ['X', 'Y', 'X_px', 'Y_px', 'Pupil_mm', 'PupilX_px', 'PupilY_px'].map(name => `${side}_${name}`);

/** The columns of a record, in their order. */
export const headers = [
    'Timestamp', 'Time', 'Valid', 'X', 'Y', 'X_px', 'Y_px', 'Distance_cm', ...eye('L'), ...eye('R'), 'Focus',
];

const [lineFeed, carriageReturn, comma] = [10, 13, 44];

/** No line of a record comes near this; a file without line ends must not be gathered whole. */
const longestLine = 65536;

/**
 * Reads a record from its bytes, in pieces that may end anywhere, and calls `take(cells, line)` for each row with its
 * numbers in the order of the headers; `cells` is used again for the next row. Throws a RecordError at the first line
 * that does not belong to a record. Lines may end with LF alone, and a byte order mark is passed over, as editors leave
 * files like this.
 */
export class RecordParser {
    /** The line at which the file ends too early; 0: it does not. The rows before it have been taken. */
    cutOffLine = 0;
    #take;
    #line = 0;
    #rows = 0;
    #rest = new Uint8Array(0);
    #cells = new Float64Array(headers.length);

    constructor(take) {
        this.#take = take;
    }

    push(piece) {
        const bytes = joined(this.#rest, piece);
        let from = 0;
        for (let end = bytes.indexOf(lineFeed); end >= 0; end = bytes.indexOf(lineFeed, from)) {
            this.#readLine(bytes, from, end);
            from = end + 1;
        }
        this.#rest = bytes.slice(from);
        if (this.#rest.length > longestLine) throw this.#notARecordOr('lineTooLong', this.#rest);
    }

    /** The end of the file. */
    finish() {
        if (this.#rest.length > 0) this.#readLastLine();
        if (this.#line === 0) throw new RecordError('emptyFile', 1);
        if (this.#rows === 0) throw new RecordError('noRows', 2);
    }

    #readLastLine() {
        try {
            this.#readLine(this.#rest, 0, this.#rest.length);
        } catch (error) {
            if (this.#rows === 0) throw error;
            this.cutOffLine = this.#line;
        }
    }

    #readLine(bytes, from, end) {
        ++this.#line;
        const to = bytes[end - 1] === carriageReturn ? end - 1 : end;
        if (this.#line === 1) this.#readHeader(bytes.subarray(from, to));
        else if (to > from) this.#readRow(bytes, from, to);
    }

    #readHeader(bytes) {
        // The decoder drops a byte order mark.
        if (new TextDecoder().decode(bytes) !== headers.join()) throw notARecord(bytes);
    }

    #readRow(bytes, from, to) {
        let column = 0;
        for (let start = from; start <= to; ++column) {
            const end = endOfCell(bytes, start, to);
            if (column < headers.length) this.#cells[column] = this.#readCell(column, bytes, start, end);
            start = end + 1;
        }
        if (column !== headers.length) throw this.#wrongColumns(column);
        ++this.#rows;
        this.#take(this.#cells, this.#line);
    }

    #readCell(column, bytes, from, to) {
        const value = parseDecimal(bytes, from, to);
        if (value !== undefined) return value;
        const values = { column: column + 1, name: headers[column], found: excerpt(bytes.subarray(from, to)) };
        throw new RecordError('noNumber', this.#line, values);
    }

    #wrongColumns(columns) {
        return new RecordError('wrongColumns', this.#line, { columns, expected: headers.length });
    }

    #notARecordOr(key, bytes) {
        return this.#line === 0 ? notARecord(bytes) : new RecordError(key, this.#line + 1);
    }
}

function notARecord(bytes) {
    return new RecordError('notARecord', 1, { expected: headers.slice(0, 3).join(), found: excerpt(bytes) });
}

function endOfCell(bytes, from, to) {
    let end = from;
    while (end < to && bytes[end] !== comma) ++end;
    return end;
}

function joined(a, b) {
    if (a.length === 0) return b;
    const both = new Uint8Array(a.length + b.length);
    both.set(a);
    both.set(b, a.length);
    return both;
}
