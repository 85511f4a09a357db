// @ts-check
// The areas that this browser keeps for each record file, so that closing the page loses nothing.
import { readAreasFile, writeAreasFile } from './areas_file.js';
/** @import { Area } from './area_shapes.js' */
/** @import { RecordView } from './record_view.js' */
const storageKey = 'areas';

/** The areas of the record files that were changed least recently are dropped. */
const maxRecordCount = 50;

/**
 * The contents of areas files by record, the least recently changed one first. `base` is the content of the file in the records
 * folder from which the areas were changed, or null if there was none.
 *
 * @typedef {[record: string, content: string, base: string | null][]} Drafts
 */

/**
 * Record files of different folders may have the same name.
 *
 * @param {RecordView} view
 */
function keyOf({ fileName, columns }) {
    return `${fileName} ${columns.length}`;
}

/**
 * A browser may refuse access to the storage, and a user may change its content.
 *
 * @returns {Drafts}
 */
function drafts() {
    try {
        const stored = JSON.parse(localStorage.getItem(storageKey) ?? '[]');
        return Array.isArray(stored) ? stored.filter(entry => Array.isArray(entry) && entry.length === 3) : [];
    } catch {
        return [];
    }
}

/**
 * Returns the areas that the browser keeps for a record file, and their base, or null if it keeps none.
 *
 * @param {RecordView} view
 * @returns {{ areas: Area[], base: string | null } | null}
 */
export function keptAreas(view) {
    const draft = drafts().find(([record]) => record === keyOf(view));
    try {
        return draft ? { areas: readAreasFile(draft[1]).areas, base: draft[2] } : null;
    } catch {
        return null;
    }
}

/**
 * Keeps the areas of a record file. Returns false if the browser refuses to.
 *
 * @param {RecordView} view
 */
export function keepAreas(view) {
    const { areaList: { areas }, folder, fileName, aspect } = view;
    const kept = others(view);
    // An empty list differs from the areas that are saved beside the record file.
    if (areas.length > 0 || folder?.areas) kept.push([keyOf(view), writeAreasFile(areas, fileName, aspect), folder?.areas ?? null]);
    return store(kept);
}

/**
 * Forgets the areas of a record file, which are saved beside it.
 *
 * @param {RecordView} view
 */
export function forgetAreas(view) {
    store(others(view));
}

/** @param {RecordView} view */
const others = view => drafts().filter(([record]) => record !== keyOf(view));

/** @param {Drafts} kept */
function store(kept) {
    try {
        localStorage.setItem(storageKey, JSON.stringify(kept.slice(-maxRecordCount)));
        return true;
    } catch {
        return false;
    }
}
