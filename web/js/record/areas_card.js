// @ts-check
import { prepareOverlay, readPalette } from '../shared/canvas.js';
import { allOf, byId, canvasById, inputById, setText } from '../shared/dom.js';
import { download } from '../shared/download.js';
import { FileError } from '../shared/file_error.js';
import { number, onLanguage, text } from '../shared/language.js';
import { forgetAreas, keepAreas, keptAreas } from './area_drafts.js';
import { drawAreas, drawHandles } from './area_drawing.js';
import { AreaEditor } from './area_editor.js';
import { AreaList } from './area_list.js';
import { clearAreaTable, focusAreaName, showAreaTable } from './area_table.js';
import { readAreasFile, writeAreasFile, writeAreasTable } from './areas_file.js';
import { nameBeside } from './chosen_files.js';
import { fetchAreas, saveAreas } from './folder_areas.js';
/** @import { Palette } from '../shared/canvas.js' */
/** @import { Shape } from './area_shapes.js' */
/** @import { RowRequests } from './area_table.js' */
/** @import { FolderAreas } from './folder_areas.js' */
/** @import { RecordView } from './record_view.js' */

/** A larger file has no areas. */
const maxFileBytes = 1e6;

const canvas = canvasById('areas');

/** @type {() => RecordView | null} */
let shownView = () => null;

/** Returns the last message in the current language. */
let message = () => '';

let frameRequest = 0;

let palette = readPalette();

const editor = new AreaEditor(canvas, () => shownView(), {
    changed: redraw,
    finished,
    nameOf: value => text('areaName', { number: value }),
});

/** @type {RowRequests} */
const requests = {
    select: id => change(({ areaList }) => { areaList.selectedId = id; }),
    rename: (id, name) => change(({ areaList }) => { if (name) areaList.change(id, { name }); }),
    remove: id => change(({ areaList }) => areaList.remove(id)),
};

/**
 * Connects the areas of interest: their canvas above the stage, their buttons and their table.
 *
 * @param {() => RecordView | null} access returns the shown record file, or null
 */
export function startAreas(access) {
    shownView = access;
    for (const tool of allOf('[data-tool]')) {
        const shape = /** @type {Shape} */ (tool.dataset.tool);
        // A click by the keyboard has detail 0. The keyboard cannot draw, so it adds an area in the centre.
        tool.addEventListener('click', ({ detail }) => (detail === 0 ? editor.addInCentre(shape) : editor.choose(shape)));
    }
    canvas.addEventListener('dblclick', () => focusAreaName(shownView()?.areaList.selectedId ?? -1));
    byId('areas-rows').addEventListener('keydown', event => {
        if (event.target instanceof HTMLButtonElement && event.key !== 'Enter') editor.key(event);
    });
    const input = inputById('areas-file');
    byId('areas-open').addEventListener('click', () => input.click());
    input.addEventListener('change', () => {
        const view = shownView();
        if (view && input.files?.[0]) readAreas(view, input.files[0]);
        input.value = '';
    });
    byId('areas-undo').addEventListener('click', () => change(({ areaList }) => areaList.undo()));
    byId('areas-clear').addEventListener('click', () => change(clear));
    byId('areas-save').addEventListener('click', save);
    byId('areas-table').addEventListener('click', saveTable);
    onLanguage(redraw);
}

/**
 * Shows the areas of another record file: those of `file`, those that the browser keeps, or those in the records folder.
 *
 * @param {RecordView} view
 * @param {File | null} file
 * @param {FolderAreas | null} folder
 */
export function openAreas(view, file, folder) {
    clearAreaTable();
    view.folder = folder;
    const kept = keptAreas(view);
    view.areaList = new AreaList(kept?.areas ?? []);
    message = () => (kept ? text('areasKept') : '');
    if (folder && kept) continueFrom(view, folder, kept.base);
    if (file) readAreas(view, file);
    else if (folder?.areas && !kept) showSavedAreas(view, folder, folder.areas);
}

/**
 * Continues with areas that are not saved yet. Saving them asks first if the areas file is no longer the one on which they are
 * based.
 *
 * @param {RecordView} view
 * @param {FolderAreas} folder with the current content of the areas file
 * @param {string | null} base
 */
function continueFrom(view, folder, base) {
    const isChanged = folder.areas !== null && folder.areas !== base;
    folder.areas = base;
    message = () => text(isChanged ? 'areasOutdated' : 'areasUnsaved', { name: areasNameOf(view) });
}

/**
 * @param {RecordView} view
 * @param {FolderAreas} folder
 * @param {string} content of the areas file
 */
function showSavedAreas(view, folder, content) {
    const name = areasNameOf(view);
    try {
        const { areas } = readAreasFile(content);
        view.areaList = new AreaList(areas);
        message = () => text('areasFromFolder', { name, count: number(areas.length) });
    } catch (error) {
        folder.areas = null;
        message = () => text('cannotShow', { name, reason: reasonOf(error) });
    }
}

/** @param {RecordView} view */
const areasNameOf = ({ fileName }) => nameBeside(fileName, '_areas.json');

/**
 * Replaces the areas by those of a file, which can be undone. A file that is not valid changes nothing.
 *
 * @param {RecordView} view
 * @param {File} file
 */
export async function readAreas(view, file) {
    const { name } = file;
    try {
        if (file.size > maxFileBytes) throw new FileError('notAreas', 1);
        const { record, areas } = readAreasFile(await file.text());
        if (view !== shownView()) return;
        view.areaList.replace(areas);
        view.areaList.selectedId = null;
        finished();
        message = () => text(record === view.fileName ? 'areasOpened' : 'areasOfOther', { name, record, count: number(areas.length) });
    } catch (error) {
        message = () => text('cannotShow', { name, reason: reasonOf(error) });
    }
    redraw();
}

/** @param {unknown} error */
function reasonOf(error) {
    if (error instanceof FileError) return text(error.key, error.values);
    return text('unreadable', { reason: /** @type {Error} */ (error).message });
}

/** @param {(view: RecordView) => void} action */
function change(action) {
    const view = shownView();
    if (!view) return;
    action(view);
    finished();
}

function finished() {
    const view = shownView();
    if (!view) return;
    const isKept = keepAreas(view);
    message = () => (isKept ? '' : text('areasNotKept'));
    redraw();
}

function redraw() {
    cancelAnimationFrame(frameRequest);
    frameRequest = requestAnimationFrame(() => showAreas(palette));
}

/**
 * Draws the areas above the stage, and shows their figures for the shown time range.
 *
 * @param {Palette} colours
 */
export function showAreas(colours) {
    palette = colours;
    const view = shownView();
    if (!view) return;
    const surface = prepareOverlay(canvas, palette);
    drawAreas(surface, view);
    drawHandles(surface, view);
    showAreaTable(view, requests);
    showButtons(view);
    setText('areas-note', message());
}

/** @param {RecordView} view */
function showButtons({ areaList: list, folder }) {
    const isEmpty = list.areas.length === 0;
    for (const tool of allOf('[data-tool]')) {
        tool.setAttribute('aria-pressed', String(tool.dataset.tool === editor.tool));
        /** @type {HTMLButtonElement} */ (tool).disabled = list.isFull;
    }
    /** @type {HTMLButtonElement} */ (byId('areas-undo')).disabled = !list.canUndo;
    for (const id of ['areas-figures', 'areas-table', 'areas-clear']) byId(id).hidden = isEmpty;
    byId('areas-save').hidden = isEmpty && !folder?.areas;
    // A finger scrolls the page, except while it can draw or change an area.
    canvas.style.touchAction = editor.tool || list.selected ? 'none' : 'auto';
}

/** @param {RecordView} view */
function clear({ areaList: list }) {
    if (confirm(text('areasConfirmClear', { count: number(list.areas.length) }))) list.replace([]);
}

function save() {
    const view = shownView();
    if (!view) return;
    const { areaList: { areas }, folder, fileName, aspect } = view;
    const content = writeAreasFile(areas, fileName, aspect);
    if (folder) {
        saveInFolder(view, folder, content);
        return;
    }
    const name = areasNameOf(view);
    download(new Blob([content], { type: 'application/json' }), name);
    message = () => text('areasSaved', { name });
    redraw();
}

/**
 * Asks before it replaces areas that this page has not read, such as those of another user.
 *
 * @param {RecordView} view
 * @param {FolderAreas} folder
 * @param {string} content
 */
async function saveInFolder(view, folder, content) {
    const { areaList: { areas }, fileName } = view;
    const name = areasNameOf(view);
    let outcome = () => text('areasSavedInFolder', { name });
    try {
        const current = await fetchAreas(fileName);
        if (current !== null && current !== folder.areas && !confirm(text('areasConfirmReplace', { name }))) return;
        await saveAreas(fileName, content);
        folder.areas = content;
        if (view.areaList.areas === areas) forgetAreas(view);
        else keepAreas(view);
    } catch (error) {
        const reason = /** @type {Error} */ (error).message;
        outcome = () => text('areasNotSaved', { name, reason });
    }
    if (view !== shownView()) return;
    message = outcome;
    redraw();
}

function saveTable() {
    const view = shownView();
    if (!view) return;
    const { areaList: { areas }, fileName } = view;
    download(new Blob([writeAreasTable(areas, fileName, view)], { type: 'text/csv' }), nameBeside(fileName, '_areas.csv'));
}
