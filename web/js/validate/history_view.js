// @ts-check
import { byId, element, setText } from '../shared/dom.js';
import { download } from '../shared/download.js';
import { dateAndTime, number, onLanguage, quantity, text } from '../shared/language.js';
import { fileTime } from './file_names.js';
import { entryOf, figuresOf, historyTable, sessionsOf, summariesOf } from './history.js';
import { mapValidations, removeAllValidations, removeValidation, storeValidation, storedValidation } from './history_store.js';
import { labelsOf } from './result_texts.js';
import { trackerTitle } from './tracker_title.js';
/** @import { TextKey } from '../shared/language.js' */
/** @import { Drift, Entry, FigureName, SessionGroup, Spread, TrackerSummary } from './history.js' */
/** @import { Validation } from './validation.js' */

/** @type {Entry[]} */
let entries = [];

/** Why the browser does not store the history; null if it does. @type {string | null} */
let refusal = null;

/** @type {(validation: Validation) => void} */
let openValidation = () => {};

/** @type {[FigureName, number, TextKey][]} The figures with their decimals and the headings of their columns. */
const figureColumns = [
    ['leftAccuracy', 2, 'columnLeftAccuracy'], ['rightAccuracy', 2, 'columnRightAccuracy'], ['rmsS2s', 3, 'columnMeanRms'],
    ['std', 3, 'columnMeanStd'], ['dataLossPercent', 1, 'columnLoss'],
    ['dataLossFromExpectedPercent', 1, 'columnExpectedLoss'],
];
const figureKeys = figureColumns.map(([, , key]) => key);

/** @type {[keyof Spread, TextKey][]} */
const spreadRows = [['mean', 'spreadMean'], ['sd', 'spreadSd'], ['min', 'spreadMin'], ['max', 'spreadMax']];

/**
 * Shows the remembered validations.
 *
 * @param {object} requests
 * @param {(validation: Validation) => void} requests.open called when the user opens a validation
 */
export function startHistory({ open }) {
    openValidation = open;
    byId('history-export').addEventListener('click', exportTable);
    byId('history-delete').addEventListener('click', deleteAll);
    onLanguage(show);
    access(() => {});
}

/**
 * Adds a validation to the history. Never rejects: if the browser refuses to store it, the section says so.
 *
 * @param {Validation} validation
 */
export function rememberValidation(validation) {
    return access(() => storeValidation(validation));
}

/**
 * Accesses the store and shows its content.
 *
 * @param {() => unknown} request
 */
async function access(request) {
    try {
        await request();
        entries = await mapValidations(entryOf);
        refusal = null;
    } catch (error) {
        refusal = error instanceof Error ? error.message : '';
    }
    show();
}

function show() {
    byId('history-buttons').hidden = entries.length === 0;
    setText('history-note', noteText());
    byId('history-groups').replaceChildren(...sessionsOf(entries).map(groupOf), ...summariesOf(entries).map(summaryOf));
}

function noteText() {
    if (refusal !== null) return text('historyRefused', { reason: refusal });
    return text(entries.length === 0 ? 'historyEmpty' : 'historyHint');
}

/** @param {SessionGroup} session */
function groupOf({ participant, session, entries: shown, drift }) {
    const group = element('div');
    group.className = 'session';
    const scroll = element('div');
    scroll.className = 'scroll';
    scroll.append(tableOf(shown));
    group.append(element('h3', labelsOf(participant, session) || text('unlabelled')), scroll);
    if (drift.length > 0) {
        const note = element('p', `${text('drift')} ${drift.map(driftText).join('; ')}. ${text('driftSigns')}`);
        note.className = 'drift';
        group.append(note);
    }
    return group;
}

/** @param {Drift} drift */
function driftText({ name, azimuth, elevation, length, accuracy }) {
    return text(name === 'left' ? 'driftLeft' : 'driftRight', {
        length: quantity('degrees', length, 2), azimuth: change(azimuth), elevation: change(elevation), accuracy: change(accuracy),
    });
}

/** Returns a change in degrees with its sign. @param {number} degrees */
function change(degrees) {
    const shown = quantity('degrees', degrees, 2);
    return Number(degrees.toFixed(2)) > 0 ? `+${shown}` : shown;
}

/** @param {Entry[]} shown */
function tableOf(shown) {
    return tableWith([text('columnTime'), text('columnTracker'), ...figureKeys.map(key => text(key)), ''], shown.map(rowOf));
}

/**
 * @param {string[]} headings
 * @param {HTMLElement[]} rows
 */
function tableWith(headings, rows) {
    const headRow = element('tr');
    headRow.append(...headings.map(heading => {
        if (!heading) return element('td');
        const cell = element('th', heading);
        cell.setAttribute('scope', 'col');
        return cell;
    }));
    const head = element('thead');
    head.append(headRow);
    const body = element('tbody');
    body.append(...rows);
    const table = element('table');
    table.append(head, body);
    return table;
}

/** @param {TrackerSummary} summary */
function summaryOf({ tracker, count, spreads }) {
    const rows = spreadRows.map(([spread, key]) => {
        const row = element('tr');
        row.append(element('td', text(key)), ...figureColumns.map(([name, decimals]) =>
            element('td', shownNumber(spreads[name][spread], decimals))));
        return row;
    });
    const group = element('div');
    group.className = 'tracker';
    const scroll = element('div');
    scroll.className = 'scroll';
    scroll.append(tableWith(['', ...figureKeys.map(key => text(key))], rows));
    group.append(element('h3', text('summaryOf', { tracker: trackerTitle(tracker), count: number(count) })), scroll);
    return group;
}

/** @param {Entry} entry */
function rowOf(entry) {
    const time = dateAndTime(new Date(entry.time));
    const figures = figuresOf(entry);
    const row = element('tr');
    row.dataset.id = entry.id;
    row.append(
        cellWith(button(time, text('openOf', { time }), 'link', () => openEntry(entry.id))),
        element('td', trackerTitle(entry.tracker)),
        ...figureColumns.map(([name, decimals]) => element('td', shownNumber(figures[name], decimals))),
        cellWith(button(text('deleteEntry'), text('deleteOf', { time }), 'delete', () => deleteEntry(entry.id, time))),
    );
    return row;
}

/**
 * @param {number} value
 * @param {number} decimals
 */
function shownNumber(value, decimals) {
    return Number.isFinite(value) ? number(value, decimals) : text('unknown');
}

/** @param {HTMLElement} content */
function cellWith(content) {
    const cell = element('td');
    cell.append(content);
    return cell;
}

/**
 * @param {string} content
 * @param {string} label
 * @param {string} className
 * @param {() => void} clicked
 */
function button(content, label, className, clicked) {
    const created = Object.assign(element('button', content), { type: 'button', className });
    created.setAttribute('aria-label', label);
    created.addEventListener('click', clicked);
    return created;
}

/** @param {string} id */
function openEntry(id) {
    return access(async () => {
        const validation = await storedValidation(id);
        if (validation) openValidation(validation);
    });
}

/**
 * @param {string} id
 * @param {string} time
 */
function deleteEntry(id, time) {
    if (confirm(text('confirmDelete', { time }))) access(() => removeValidation(id));
}

function deleteAll() {
    if (confirm(text('confirmDeleteAll', { count: number(entries.length) }))) access(removeAllValidations);
}

function exportTable() {
    const content = new Blob([historyTable(entries)], { type: 'text/tab-separated-values' });
    download(content, `validations_${fileTime(new Date())}.tsv`);
}
