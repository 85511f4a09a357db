// @ts-check
import { FileError, excerpt } from '../shared/file_error.js';

/**
 * A marker of an events file: the time from the arrival of the first sample, its text, and the row of the record file that
 * was the newest one when the marker was set. The row is NaN if there is none.
 *
 * @typedef {{ onsetMs: number, text: string, row: number }} Marker
 */

const headers = ['onset', 'duration', 'text', 'number', 'row'];
const [onsetColumn, textColumn, rowColumn] = ['onset', 'text', 'row'].map(name => headers.indexOf(name));

const decimal = /^[-+]?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?$/i;
const wholeNumber = /^\d+$/;

/**
 * Reads the content of an events file. Throws a FileError if it is invalid.
 *
 * @param {string} content
 * @param {number} rowCount the number of rows of the record file, or Infinity if some of them are missing
 */
export function readMarkers(content, rowCount) {
    const reader = new LineReader(content);
    const found = reader.next();
    if (!found) throw new FileError('emptyFile', 1);
    if (found.join() !== headers.join()) throw wrongHeader(found.join());
    /** @type {Marker[]} */
    const markers = [];
    for (let cells = reader.next(); cells; cells = reader.next()) {
        const isEmptyLine = cells.length === 1 && cells[0] === '';
        if (!isEmptyLine) markers.push(markerOf(cells, reader.line, rowCount));
    }
    return markers;
}

/** @param {string} found */
function wrongHeader(found) {
    return new FileError('notEvents', 1, { expected: headers.slice(0, 3).join(), found: short(found) });
}

/** @param {string} text */
function short(text) {
    return excerpt(new TextEncoder().encode(text.slice(0, 100)));
}

/**
 * @param {string[]} cells
 * @param {number} line
 * @param {number} rowCount
 * @returns {Marker}
 */
function markerOf(cells, line, rowCount) {
    if (cells.length !== headers.length)
        throw new FileError('wrongColumns', line, { columns: cells.length, expected: headers.length });
    const [onset, rowCell] = [cells[onsetColumn], cells[rowColumn]];
    if (!decimal.test(onset)) throw wrongCell('noNumber', cells, line, onsetColumn);
    if (rowCell !== '' && !wholeNumber.test(rowCell)) throw wrongCell('noWholeNumber', cells, line, rowColumn);
    const row = rowCell === '' ? NaN : Number(rowCell);
    if (row >= rowCount) throw wrongCell('noSuchRow', cells, line, rowColumn);
    return { onsetMs: 1000 * Number(onset), text: cells[textColumn], row };
}

/**
 * @param {'noNumber' | 'noWholeNumber' | 'noSuchRow'} key
 * @param {string[]} cells
 * @param {number} line
 * @param {number} index
 */
function wrongCell(key, cells, line, index) {
    return new FileError(key, line, { column: index + 1, name: headers[index], found: short(cells[index]) });
}

/** Reads CSV with quoted cells, which may contain line breaks. */
class LineReader {
    /** The line at which the last cells begin, counted from 1. */
    line = 1;
    #content;
    #at = 0;
    #nextLine = 1;

    /** @param {string} content */
    constructor(content) {
        this.#content = content;
    }

    /** Returns the cells up to the next end of a line, or null at the end of the file. */
    next() {
        if (this.#at >= this.#content.length) return null;
        this.line = this.#nextLine++;
        const cells = [this.#cell(1)];
        while (this.#content[this.#at] === ',') {
            ++this.#at;
            cells.push(this.#cell(cells.length + 1));
        }
        ++this.#at;
        return cells;
    }

    /**
     * Reads a cell, and a carriage return after it.
     *
     * @param {number} column counted from 1
     */
    #cell(column) {
        const isQuoted = this.#content[this.#at] === '"';
        const text = isQuoted ? this.#quoted(column) : '';
        const rest = this.#plain();
        if (isQuoted && rest !== '') throw new FileError('afterQuote', this.line, { column, found: short(rest) });
        return text + rest;
    }

    /** @param {number} column */
    #quoted(column) {
        const start = this.#at + 1;
        let end = this.#content.indexOf('"', start);
        while (end >= 0 && this.#content[end + 1] === '"') end = this.#content.indexOf('"', end + 2);
        if (end < 0) throw new FileError('openQuote', this.line, { column });
        const text = this.#content.slice(start, end);
        this.#nextLine += text.split('\n').length - 1;
        this.#at = end + 1;
        return text.replaceAll('""', '"');
    }

    #plain() {
        const separator = /[,\n]/g;
        separator.lastIndex = this.#at;
        const end = separator.exec(this.#content)?.index ?? this.#content.length;
        const text = this.#content.slice(this.#at, end);
        this.#at = end;
        return this.#content[end] === ',' ? text : text.replace(/\r$/, '');
    }
}
