// @ts-check
import { byId, element } from '../shared/dom.js';
import { count, quantity, text } from '../shared/language.js';
import { colourNameOf } from './area_drawing.js';
import { areaFiguresOf } from './area_figures.js';
import { maxNameLength } from './areas_file.js';
/** @import { Area } from './area_shapes.js' */
/** @import { RecordView } from './record_view.js' */

/**
 * @typedef {object} RowRequests
 * @property {(id: number) => void} select
 * @property {(id: number, name: string) => void} rename
 * @property {(id: number) => void} remove
 */

/** The rows by the ids of their areas. Rows are kept, because the user may be editing a name. @type {Map<number, Row>} */
const rows = new Map();

/** A row of the table: the area's name, its figures, and buttons that select and delete it. */
class Row {
    element = element('tr');
    #select = button('area-select');
    #name = /** @type {HTMLInputElement} */ (element('input'));
    #remove = button('area-delete', '×');
    #figures = Array.from({ length: 6 }, () => element('td'));

    /**
     * @param {number} id
     * @param {RowRequests} requests
     */
    constructor(id, { select, rename, remove }) {
        const name = this.#name;
        Object.assign(name, { type: 'text', maxLength: maxNameLength, required: true });
        this.#select.addEventListener('click', () => select(id));
        this.#remove.addEventListener('click', () => remove(id));
        // The keys on a button change the selected area.
        for (const part of [this.#select, name, this.#remove]) part.addEventListener('focus', () => select(id));
        name.addEventListener('change', () => rename(id, name.value.trim()));
        const head = element('th');
        head.setAttribute('scope', 'row');
        const labels = element('div');
        labels.append(this.#select, name);
        head.append(labels);
        const end = element('td');
        end.append(this.#remove);
        this.element.append(head, ...this.#figures, end);
    }

    focusName() {
        this.#name.focus();
        this.#name.select();
    }

    /**
     * @param {Area} area
     * @param {RecordView} view
     */
    show(area, view) {
        const { dwellMs, dwellShare, fixationCount, entryCount, firstAfterMs, firstDurationMs } = areaFiguresOf(area, view);
        const figures = [
            quantity('ms', dwellMs), quantity('percent', 100 * dwellShare, 1), count(fixationCount), count(entryCount),
            quantity('ms', firstAfterMs), quantity('ms', firstDurationMs),
        ];
        this.#figures.forEach((cell, i) => { cell.textContent = figures[i]; });
        if (document.activeElement !== this.#name || !this.#name.value) this.#name.value = area.name;
        this.#select.style.setProperty('--key', `var(${colourNameOf(area)})`);
        this.#select.setAttribute('aria-pressed', String(area.id === view.areaList.selectedId));
        this.#select.setAttribute('aria-label', text('areaSelect', { name: area.name }));
        this.#name.setAttribute('aria-label', text('areaNameLabel'));
        this.#remove.setAttribute('aria-label', text('areaDelete', { name: area.name }));
        this.element.dataset.area = area.name;
    }
}

/**
 * @param {string} className
 * @param {string} content
 */
function button(className, content = '') {
    return /** @type {HTMLButtonElement} */ (Object.assign(element('button', content), { type: 'button', className }));
}

/** Removes all rows, before the areas of another record file are shown. */
export function clearAreaTable() {
    rows.clear();
    byId('areas-rows').replaceChildren();
}

/**
 * Shows the figures of each area for the shown time range.
 *
 * @param {RecordView} view
 * @param {RowRequests} requests
 */
export function showAreaTable(view, requests) {
    const { areas } = view.areaList;
    const ids = new Set(areas.map(({ id }) => id));
    for (const [id, row] of rows) {
        if (ids.has(id)) continue;
        if (row.element.contains(document.activeElement)) byId('areas').focus({ preventScroll: true });
        row.element.remove();
        rows.delete(id);
    }
    areas.forEach((area, i) => {
        const row = rows.get(area.id) ?? new Row(area.id, requests);
        rows.set(area.id, row);
        row.show(area, view);
        const body = byId('areas-rows');
        // Inserting a row again would take the focus from its name.
        if (body.children[i] !== row.element) body.insertBefore(row.element, body.children[i] ?? null);
    });
}

/**
 * Starts the editing of an area's name.
 *
 * @param {number} id
 */
export function focusAreaName(id) {
    rows.get(id)?.focusName();
}
