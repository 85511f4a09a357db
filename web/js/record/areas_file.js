// @ts-check
// The JSON file with the areas of interest of a record file, and the CSV file with their figures.
import { csvOf, rounded } from '../shared/csv.js';
import { FileError } from '../shared/file_error.js';
import { areaFiguresOf } from './area_figures.js';
import { maxAreaCount } from './area_list.js';
import { minSize } from './area_shapes.js';
/** @import { ShownFixations } from './area_figures.js' */
/** @import { Area } from './area_shapes.js' */

const format = 'Ocela areas';

/** Increased after an incompatible change. The page refuses files of later versions. */
const version = 1;

export const maxNameLength = 100;
const screenSize = 100;

/** An area may exceed the screen by this, because another program may round positions and sizes to two decimals. */
const roundingError = 0.02;

const tableHeaders = [
    'Record', 'From_ms', 'To_ms', 'Area', 'Shape', 'Left_percent', 'Top_percent', 'Width_percent', 'Height_percent',
    'Dwell_ms', 'DwellShare', 'FixationCount', 'EntryCount', 'TimeToFirstFixation_ms', 'FirstFixation_ms',
];

/** In the table. */
const maxDecimals = 6;

/**
 * Returns whether a file is named like one with areas. A browser adds a number to a file that it saves again.
 *
 * @param {string} fileName
 */
export function isAreasName(fileName) {
    return /_areas ?(\(\d+\))?\.json$/i.test(fileName);
}

/**
 * @param {readonly Area[]} areas
 * @param {string} record the name of the record file
 * @param {number} aspect the screen's width divided by its height
 */
export function writeAreasFile(areas, record, aspect) {
    return JSON.stringify({
        format, version, record, screen: { aspect },
        areas: areas.map(({ name, shape, left, top, width, height }) => ({ name, shape, left, top, width, height })),
    }, null, 2);
}

/**
 * Reads the content of a file. Throws a FileError if a part of it is not valid.
 *
 * @param {string} content
 * @returns {{ record: string, areas: Area[] }}
 */
export function readAreasFile(content) {
    const file = parsed(content);
    if (file?.format !== format || !Number.isInteger(file.version)) throw new FileError('notAreas', 1);
    if (file.version > version) throw new FileError('laterVersion', 1, { version: String(file.version) });
    if (!Array.isArray(file.areas)) throw new FileError('noAreas', 1);
    if (file.areas.length > maxAreaCount) throw new FileError('tooManyAreas', 1, { count: file.areas.length, max: maxAreaCount });
    return { record: String(file.record ?? ''), areas: file.areas.map(areaOf) };
}

/** @param {string} content */
function parsed(content) {
    try {
        return JSON.parse(content.replace(/^\uFEFF/, ''));
    } catch {
        throw new FileError('brokenJson', 1);
    }
}

/**
 * @param {any} values
 * @param {number} id
 * @returns {Area}
 */
function areaOf(values, id) {
    const { name, shape, left, top, width, height } = values ?? {};
    const check = (/** @type {string} */ part, /** @type {boolean} */ isValid) => {
        if (!isValid) throw new FileError('damagedArea', 1, { number: id + 1, part });
    };
    check('name', typeof name === 'string' && name.trim() !== '' && name.length <= maxNameLength);
    check('shape', shape === 'rectangle' || shape === 'ellipse');
    for (const [start, size, value, length] of [['left', 'width', left, width], ['top', 'height', top, height]]) {
        check(start, Number.isFinite(value) && value >= 0);
        check(size, Number.isFinite(length) && length >= minSize && value + length <= screenSize + roundingError);
    }
    return { id, name, shape, left, top, width, height };
}

/**
 * Returns a table with the figures of each area, in the format of record files. Missing values are empty.
 *
 * @param {readonly Area[]} areas
 * @param {string} record
 * @param {ShownFixations} shown
 */
export function writeAreasTable(areas, record, shown) {
    const { fromMs, toMs } = shown.range;
    return csvOf(tableHeaders, areas.map(area => {
        const { name, shape, left, top, width, height } = area;
        const { dwellMs, dwellShare, fixationCount, entryCount, firstAfterMs, firstDurationMs } = areaFiguresOf(area, shown);
        const cells = [
            record, fromMs, toMs, name, shape, left, top, width, height,
            dwellMs, dwellShare, fixationCount, entryCount, firstAfterMs, firstDurationMs,
        ];
        return cells.map(cell => (typeof cell === 'number' ? rounded(cell, maxDecimals) : cell));
    }));
}
