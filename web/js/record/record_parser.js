// @ts-check
import { parseDecimal } from '../shared/decimal.js';
import { FileError, excerpt } from '../shared/file_error.js';
/** @import { TextKey } from '../shared/language.js' */

/** @typedef {(cells: Float64Array, line: number) => void} TakeRow Called for each row, with its line, counted from 1. */

const eyeHeaders = (/** @type {string} */ eye) =>
    ['X', 'Y', 'X_px', 'Y_px', 'Pupil_mm', 'PupilX_px', 'PupilY_px'].map(name => `${eye}_${name}`);

/** The columns of a record file. */
export const headers = [
    'Timestamp', 'Time', 'Valid', 'X', 'Y', 'X_px', 'Y_px', 'Distance_cm', ...eyeHeaders('L'), ...eyeHeaders('R'), 'Focus',
];

/**
 * A kind of file that RecordParser reads, and the text for a file with another header.
 *
 * @typedef {{ headers: string[], wrongHeader: TextKey }} TableFormat
 */

/** @type {TableFormat} */
export const recordFormat = { headers, wrongHeader: 'notARecord' };

/** The samples file beside a record file. @type {TableFormat} */
export const samplesFormat = { headers: ['Number', 'Arrival_ms', 'L_Valid', 'R_Valid'], wrongHeader: 'notSamples' };

const [lineFeed, carriageReturn, comma] = [10, 13, 44];

/** Much longer than any line of a record file. A file without line ends must not fill the memory. */
const maxLineBytes = 65536;

/** A parser for record files and samples files. It also accepts LF line ends and a byte order mark, which some editors write. */
export class RecordParser {
    /** The line in which the file was cut off; 0 if it is complete. */
    cutOffLine = 0;
    #take;
    #format;
    #line = 0;
    #rowCount = 0;
    /** The start of a line that continues in the next piece. */
    #rest = new Uint8Array(0);
    #cells;

    /**
     * @param {TakeRow} take called with the numbers of each row, in the order of the headers; the array is reused
     * @param {TableFormat} format
     */
    constructor(take, format = recordFormat) {
        this.#take = take;
        this.#format = format;
        this.#cells = new Float64Array(format.headers.length);
    }

    /**
     * Parses the next piece of the file, which may end anywhere. Throws a FileError at the first line that does not
     * belong to such a file.
     *
     * @param {Uint8Array} piece
     */
    push(piece) {
        const bytes = joined(this.#rest, piece);
        let from = 0;
        for (let end = bytes.indexOf(lineFeed); end >= 0; end = bytes.indexOf(lineFeed, from)) {
            this.#readLine(bytes, from, end);
            from = end + 1;
        }
        this.#rest = bytes.slice(from);
        if (this.#rest.length > maxLineBytes) throw this.#tooLong();
    }

    /** Parses the last line. If it is invalid, the file is cut off in it. Throws a FileError if the file has no rows. */
    finish() {
        if (this.#rest.length > 0) this.#readLastLine();
        if (this.#line === 0) throw new FileError('emptyFile', 1);
        if (this.#rowCount === 0) throw new FileError('noRows', 2);
    }

    #readLastLine() {
        try {
            this.#readLine(this.#rest, 0, this.#rest.length);
        } catch (error) {
            if (this.#rowCount === 0) throw error;
            this.cutOffLine = this.#line;
        }
    }

    /**
     * @param {Uint8Array} bytes
     * @param {number} from
     * @param {number} end
     */
    #readLine(bytes, from, end) {
        ++this.#line;
        const to = bytes[end - 1] === carriageReturn ? end - 1 : end;
        if (this.#line === 1) this.#readHeader(bytes.subarray(from, to));
        else if (to > from) this.#readRow(bytes, from, to);
    }

    /** @param {Uint8Array} bytes */
    #readHeader(bytes) {
        // The decoder removes a byte order mark.
        if (new TextDecoder().decode(bytes) !== this.#format.headers.join()) throw this.#wrongHeader(bytes);
    }

    /**
     * @param {Uint8Array} bytes
     * @param {number} from
     * @param {number} to
     */
    #readRow(bytes, from, to) {
        let column = 0;
        for (let start = from; start <= to; ++column) {
            const end = endOfCell(bytes, start, to);
            if (column < this.#cells.length) this.#cells[column] = this.#readCell(column, bytes, start, end);
            start = end + 1;
        }
        if (column !== this.#cells.length) throw this.#wrongColumns(column);
        ++this.#rowCount;
        this.#take(this.#cells, this.#line);
    }

    /**
     * @param {number} column
     * @param {Uint8Array} bytes
     * @param {number} from
     * @param {number} to
     */
    #readCell(column, bytes, from, to) {
        const value = parseDecimal(bytes, from, to);
        if (value !== undefined) return value;
        const values = {
            column: column + 1, name: this.#format.headers[column], found: excerpt(bytes.subarray(from, to)),
        };
        throw new FileError('noNumber', this.#line, values);
    }

    /** @param {number} columns */
    #wrongColumns(columns) {
        return new FileError('wrongColumns', this.#line, { columns, expected: this.#cells.length });
    }

    /** @param {Uint8Array} bytes */
    #wrongHeader(bytes) {
        const { headers: expected, wrongHeader } = this.#format;
        return new FileError(wrongHeader, 1, { expected: expected.slice(0, 3).join(), found: excerpt(bytes) });
    }

    #tooLong() {
        return this.#line === 0 ? this.#wrongHeader(this.#rest) : new FileError('lineTooLong', this.#line + 1);
    }
}

/**
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 */
function endOfCell(bytes, from, to) {
    let end = from;
    while (end < to && bytes[end] !== comma) ++end;
    return end;
}

/**
 * @param {Uint8Array} a
 * @param {Uint8Array} b
 */
function joined(a, b) {
    if (a.length === 0) return b;
    const both = new Uint8Array(a.length + b.length);
    both.set(a);
    both.set(b, a.length);
    return both;
}
