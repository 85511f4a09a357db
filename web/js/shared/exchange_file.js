// @ts-check
// The file format in which tools for data quality exchange gaze: tab-separated values with a header line, in UTF-8. Columns
// may be in any order, and unknown columns are ignored.
import { parseDecimal, readDecimal } from './decimal.js';
import { FileError, excerpt } from './file_error.js';

/** @typedef {{ x: Float64Array, y: Float64Array }} EyeGaze In pixels from the centre, x to the right, y downward. */

/**
 * The samples of a file. A target's id is -1 outside the collection windows. The targets' positions are in pixels from the
 * screen's centre. Missing positions of gaze and targets are NaN. An eye without columns is null.
 *
 * @typedef {{
 *     timestampMs: Float64Array, left: EyeGaze | null, right: EyeGaze | null, targetId: Float64Array,
 *     targetX: Float64Array, targetY: Float64Array,
 * }} ExchangeSamples
 */

/**
 * The samples `from` to `to` (excluded), during which a target stands still. A target that is shown several times has
 * several windows.
 *
 * @typedef {{ targetId: number, x: number, y: number, from: number, to: number }} TargetWindow
 */

const requiredColumns = ['timestamp', 'target_id', 'tar_x', 'tar_y'];
const eyeColumns = [['left_x', 'left_y'], ['right_x', 'right_y']];
const knownColumns = [...requiredColumns, ...eyeColumns.flat()];

/** Only these columns may have empty cells. */
const mayBeMissing = (/** @type {string} */ name) => name !== 'timestamp' && name !== 'target_id';

const [tab, lineFeed, carriageReturn] = [9, 10, 13];
const firstRowLine = 2;
const outsideId = -1;

/**
 * A column with its number, counted from 1. Null if the column is ignored.
 *
 * @typedef {{ name: string, number: number, values: Float64Array } | null} Column
 */

/**
 * Reads a file. Throws a FileError at the first line that is not valid. Also throws a FileError if the file has no
 * target, or if its windows are not usable; see windowsOf().
 *
 * @param {Uint8Array} bytes
 * @returns {ExchangeSamples}
 */
export function readExchangeFile(bytes) {
    const endOfRows = endOfContent(bytes);
    if (endOfRows === 0) throw new FileError('emptyFile', 1);
    const endOfHeader = endOfLine(bytes, 0, endOfRows);
    const columns = columnsOf(bytes.subarray(0, endOfHeader), lineEndCountOf(bytes, endOfHeader, endOfRows));
    readRows(bytes, endOfHeader + 1, endOfRows, columns);

    const samples = samplesOf(columns);
    checkRows(samples);
    if (windowsOf(samples).length === 0) throw new FileError('noTargets', firstRowLine);
    return samples;
}

/**
 * @param {Column[]} columns
 * @returns {ExchangeSamples}
 */
function samplesOf(columns) {
    const find = (/** @type {string} */ name) => columns.find(column => column?.name === name)?.values;
    const required = (/** @type {string} */ name) => /** @type {Float64Array} */ (find(name));
    const eye = (/** @type {string} */ name) =>
        find(`${name}_x`) ? { x: required(`${name}_x`), y: required(`${name}_y`) } : null;
    return {
        timestampMs: required('timestamp'),
        left: eye('left'),
        right: eye('right'),
        targetId: required('target_id'),
        targetX: required('tar_x'),
        targetY: required('tar_y'),
    };
}

/**
 * Returns the number of bytes without the line ends at the end of the file.
 *
 * @param {Uint8Array} bytes
 */
function endOfContent(bytes) {
    let end = bytes.length;
    while (end > 0 && (bytes[end - 1] === lineFeed || bytes[end - 1] === carriageReturn)) --end;
    return end;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 */
function endOfLine(bytes, from, to) {
    const end = bytes.indexOf(lineFeed, from);
    return end < 0 || end > to ? to : end;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 */
function lineEndCountOf(bytes, from, to) {
    let count = 0;
    for (let end = bytes.indexOf(lineFeed, from); end >= 0 && end < to; end = bytes.indexOf(lineFeed, end + 1)) ++count;
    return count;
}

/**
 * Returns the columns of the header, with room for the rows.
 *
 * @param {Uint8Array} header
 * @param {number} rowCount
 * @returns {Column[]}
 */
function columnsOf(header, rowCount) {
    // The decoder removes a byte order mark.
    const names = new TextDecoder().decode(header).replace(/\r$/, '').split('\t');
    const has = (/** @type {string} */ name) => names.includes(name);
    const found = excerpt(header);
    const needed = eyeColumns.filter(pair => pair.some(has)).flat();
    const missing = [...requiredColumns, ...needed].find(name => !has(name));
    if (missing !== undefined) throw new FileError('noColumn', 1, { name: missing, found });
    if (needed.length === 0) throw new FileError('noEye', 1, { found });
    const known = names.filter(name => knownColumns.includes(name));
    const twice = known.find((name, i) => known.indexOf(name) !== i);
    if (twice !== undefined) throw new FileError('columnTwice', 1, { name: twice });
    return names.map((name, i) =>
        knownColumns.includes(name) ? { name, number: i + 1, values: new Float64Array(rowCount) } : null);
}

/**
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 * @param {Column[]} columns
 */
function readRows(bytes, from, to, columns) {
    for (let [start, row] = [from, 0]; start < to; ++row) start = readRow(bytes, start, to, columns, row) + 1;
}

/**
 * Reads a line and returns its end.
 *
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 * @param {Column[]} columns
 * @param {number} row
 */
function readRow(bytes, from, to, columns, row) {
    let end = readCell(bytes, from, to, columns[0], row);
    let cellCount = 1;
    for (; end < to && bytes[end] === tab; ++cellCount) end = readCell(bytes, end + 1, to, columns[cellCount], row);
    if (cellCount !== columns.length)
        throw new FileError('wrongColumns', row + firstRowLine, { columns: cellCount, expected: columns.length });
    return end;
}

/**
 * Reads a cell and returns its end: the next tab, line feed, or `to`.
 *
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 * @param {Column} column
 * @param {number} row
 */
function readCell(bytes, from, to, column, row) {
    if (!column) return endOfCell(bytes, from, to);
    const end = readDecimal(bytes, from, to, column.values, row);
    const isPlain = end > from || mayBeMissing(column.name);
    return isPlain && isEndOfCell(bytes, end, to) ? end : readUnusualCell(bytes, from, to, column, row);
}

/**
 * Reads a cell like readCell(). Handles all texts, and the carriage return at the end of a line.
 *
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 * @param {NonNullable<Column>} column
 * @param {number} row
 */
function readUnusualCell(bytes, from, to, { name, number, values }, row) {
    const end = endOfCell(bytes, from, to);
    const endOfText = bytes[end] === lineFeed && bytes[end - 1] === carriageReturn ? end - 1 : end;
    const value = from === endOfText ? NaN : parseDecimal(bytes, from, endOfText);
    if (value === undefined || (Number.isNaN(value) && !mayBeMissing(name))) {
        const found = excerpt(bytes.subarray(from, endOfText));
        throw new FileError('noNumber', row + firstRowLine, { column: number, name, found });
    }
    values[row] = value;
    return end;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 */
function endOfCell(bytes, from, to) {
    let end = from;
    while (!isEndOfCell(bytes, end, to)) ++end;
    return end;
}

/**
 * @param {Uint8Array} bytes
 * @param {number} at
 * @param {number} to
 */
function isEndOfCell(bytes, at, to) {
    return at >= to || bytes[at] === tab || bytes[at] === lineFeed;
}

/** @param {ExchangeSamples} samples */
function checkRows({ timestampMs, targetId }) {
    for (let row = 0; row < timestampMs.length; ++row) {
        const line = row + firstRowLine;
        if (timestampMs[row] < timestampMs[row - 1]) throw new FileError('timeOrder', line);
        if (!Number.isSafeInteger(targetId[row]) || targetId[row] < outsideId)
            throw new FileError('noTargetId', line, { found: targetId[row] });
    }
}

/**
 * Returns the collection windows of all targets, in the order of time. Throws a FileError if a target has no position,
 * if it moves within its window, or if all timestamps of a window are equal.
 *
 * @param {ExchangeSamples} samples
 */
export function windowsOf(samples) {
    const { targetId } = samples;
    /** @type {TargetWindow[]} */
    const windows = [];
    for (let [from, to] = [0, 0]; from < targetId.length; from = to) {
        while (to < targetId.length && targetId[to] === targetId[from]) ++to;
        if (targetId[from] !== outsideId) windows.push(windowOf(samples, from, to));
    }
    return windows;
}

/**
 * @param {ExchangeSamples} samples
 * @param {number} from
 * @param {number} to
 * @returns {TargetWindow}
 */
function windowOf({ timestampMs, targetId, targetX, targetY }, from, to) {
    const [target, x, y] = [targetId[from], targetX[from], targetY[from]];
    for (let row = from; row < to; ++row) {
        const line = row + firstRowLine;
        if (Number.isNaN(targetX[row]) || Number.isNaN(targetY[row])) throw new FileError('noPosition', line, { target });
        if (targetX[row] !== x || targetY[row] !== y) throw new FileError('targetMoves', line, { target });
    }
    if (to - from > 1 && timestampMs[from] === timestampMs[to - 1])
        throw new FileError('constantTime', from + firstRowLine, { target });
    return { targetId: target, x, y, from, to };
}

/**
 * Returns the text of a file. Missing values are empty cells.
 *
 * @param {ExchangeSamples} samples
 */
export function writeExchangeFile(samples) {
    const columns = namedColumnsOf(samples);
    const lines = [columns.map(([name]) => name).join('\t')];
    for (let row = 0; row < samples.timestampMs.length; ++row)
        lines.push(columns.map(([, values]) => (Number.isFinite(values[row]) ? values[row] : '')).join('\t'));
    return `${lines.join('\n')}\n`;
}

/**
 * @param {ExchangeSamples} samples
 * @returns {[string, Float64Array][]}
 */
function namedColumnsOf({ timestampMs, left, right, targetId, targetX, targetY }) {
    return [
        ['timestamp', timestampMs],
        ...eyeColumnsOf('left', left),
        ...eyeColumnsOf('right', right),
        ['target_id', targetId],
        ['tar_x', targetX],
        ['tar_y', targetY],
    ];
}

/**
 * @param {string} eye
 * @param {EyeGaze | null} gaze
 * @returns {[string, Float64Array][]}
 */
function eyeColumnsOf(eye, gaze) {
    return gaze ? [[`${eye}_x`, gaze.x], [`${eye}_y`, gaze.y]] : [];
}
