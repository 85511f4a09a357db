// @ts-check
import { element } from '../shared/dom.js';
import { number, text } from '../shared/language.js';
/** @import { DataQuality } from '../shared/data_quality.js' */
/** @import { TextKey } from '../shared/language.js' */
/** @import { GazeName } from '../shared/quality_table.js' */
/** @import { Limits, QualityTable } from './verdict.js' */

/** @typedef {GazeName | 'mean'} RowName */

/**
 * @typedef {object} Column
 * @property {string} name
 * @property {TextKey} label
 * @property {(quality: DataQuality) => string} shown
 * @property {(quality: DataQuality, limits: Limits) => boolean} [isBad] whether the value is marked
 */

/**
 * @param {number} value
 * @param {number} decimals
 */
const shownNumber = (value, decimals) => (Number.isFinite(value) ? number(value, decimals) : text('unknown'));

/** A mean of counts may have a fraction. @param {number} value */
const shownCount = value => number(value, Number.isInteger(value) ? 0 : 1);

/** @type {Column[]} */
const columns = [
    {
        name: 'accuracy', label: 'columnAccuracy',
        isBad: ({ accuracy }, limits) => !accuracy || accuracy.offset > limits.accuracy,
        shown: ({ accuracy }) => (accuracy ? number(accuracy.offset, 2) : text('notEnoughData')),
    },
    { name: 'accuracyX', label: 'columnHorizontal', shown: ({ accuracy }) => shownNumber(accuracy?.azimuth ?? NaN, 2) },
    { name: 'accuracyY', label: 'columnVertical', shown: ({ accuracy }) => shownNumber(accuracy?.elevation ?? NaN, 2) },
    { name: 'rmsS2s', label: 'columnRms', shown: ({ rmsS2s }) => shownNumber(rmsS2s.total, 3) },
    { name: 'std', label: 'columnStd', shown: ({ std }) => shownNumber(std.total, 3) },
    { name: 'bcea', label: 'columnBcea', shown: ({ bcea }) => shownNumber(bcea.area, 3) },
    {
        name: 'dataLoss', label: 'columnLoss',
        isBad: ({ dataLossPercent }, limits) => dataLossPercent > limits.dataLoss,
        shown: quality => shownNumber(quality.dataLossPercent, 1),
    },
    {
        name: 'dataLossFromExpected', label: 'columnExpectedLoss',
        isBad: ({ dataLossFromExpectedPercent }, limits) => dataLossFromExpectedPercent > limits.dataLoss,
        shown: quality => shownNumber(quality.dataLossFromExpectedPercent, 1),
    },
    {
        name: 'samples', label: 'columnSamples',
        shown: ({ validCount, sampleCount }) => `${shownCount(validCount)} / ${shownCount(sampleCount)}`,
    },
    { name: 'rate', label: 'columnRate', shown: quality => shownNumber(quality.effectiveFrequencyHz, 1) },
];

/** @type {Record<RowName, TextKey>} */
const rowLabels = { left: 'leftEye', right: 'rightEye', combined: 'combinedGaze', mean: 'meanOfEyes' };

/**
 * Returns the parts of the table: its head, the means over the targets, and a body for each
 * collection window, in the order of the targets.
 *
 * @param {QualityTable} table
 * @param {Limits} limits
 */
export function tableParts({ gazes, mean }, limits) {
    const hasExpectedLoss = Number.isFinite(mean.dataLossFromExpectedPercent);
    const shown = columns.filter(({ name }) => hasExpectedLoss || name !== 'dataLossFromExpected');
    const summary = gazes.map(gaze => rowOf(shown, limits, gaze.name, 'mean', gaze.mean));
    // With one eye only, the mean over the eyes would repeat its row.
    if (gazes.length > 1) summary.push(rowOf(shown, limits, 'mean', 'mean', mean));
    const windows = gazes[0].targets.map(({ targetId }, i) => ({ targetId, i })).sort((a, b) => a.targetId - b.targetId);
    const bodies = windows.map(({ targetId, i }) => bodyOf(text('target', { id: number(targetId) }),
        gazes.map(({ name, targets }) => rowOf(shown, limits, name, String(targetId), targets[i].quality))));
    return [headOf(shown), bodyOf(text('meanOfTargets'), summary, 'summary'), ...bodies];
}

/** @param {Column[]} shown */
function headOf(shown) {
    const row = element('tr');
    const corner = element('td');
    row.append(corner, ...shown.map(({ label }) => headerCell(text(label), 'col')));
    const head = element('thead');
    head.append(row);
    return head;
}

/**
 * @param {string} title
 * @param {HTMLElement[]} rows
 * @param {string} className
 */
function bodyOf(title, rows, className = '') {
    const body = element('tbody');
    body.className = className;
    const titleRow = element('tr');
    titleRow.className = 'group';
    const cell = headerCell(title, 'rowgroup');
    cell.setAttribute('colspan', String(columns.length + 1));
    titleRow.append(cell);
    body.append(titleRow, ...rows);
    return body;
}

/**
 * @param {Column[]} shown
 * @param {Limits} limits
 * @param {RowName} name
 * @param {string} target
 * @param {DataQuality} quality
 */
function rowOf(shown, limits, name, target, quality) {
    const row = element('tr');
    Object.assign(row.dataset, { eye: name, target });
    row.append(headerCell(text(rowLabels[name]), 'row'), ...shown.map(column => cellOf(column, limits, quality)));
    return row;
}

/**
 * @param {Column} column
 * @param {Limits} limits
 * @param {DataQuality} quality
 */
function cellOf({ name, shown, isBad }, limits, quality) {
    const cell = element('td', shown(quality));
    cell.dataset.measure = name;
    cell.classList.toggle('exceeds', isBad?.(quality, limits) ?? false);
    return cell;
}

/**
 * @param {string} content
 * @param {string} scope
 */
function headerCell(content, scope) {
    const cell = element('th', content);
    cell.setAttribute('scope', scope);
    return cell;
}
