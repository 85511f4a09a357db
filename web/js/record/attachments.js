// @ts-check
import { readAreas } from './areas_card.js';
import { isAreasName } from './areas_file.js';
import { nameBeside } from './chosen_files.js';
import { showImage } from './stimulus_card.js';
import { isImage } from './stimulus_image.js';
/** @import { Problem } from './parse_worker.js' */
/** @import { RecordView } from './record_view.js' */

/** The areas files that were chosen together with the record file that is being read. @type {File[]} */
let waiting = [];

/**
 * Shows chosen areas files and images. Areas that were chosen together with a record file wait for it, see attachedAreas().
 *
 * @param {File[]} files
 * @param {RecordView | null} view the shown record file, or null
 * @param {boolean} withRecord
 * @param {(problem: Problem, fileName: string) => void} refuse called for a file that needs a record file
 */
export function attach(files, view, withRecord, refuse) {
    const areas = files.filter(({ name }) => isAreasName(name));
    const image = files.find(isImage);
    if (withRecord) waiting = areas;
    if (files.length > 0 && !view && !withRecord) return refuse({ key: 'needsRecord', values: {} }, files[0].name);
    if (image) showImage(image);
    if (view && !withRecord && areas.length > 0) readAreas(view, areas[0]);
}

/**
 * Returns the areas file that was chosen together with a record file, or null.
 *
 * @param {string} recordName
 */
export function attachedAreas(recordName) {
    return waiting.find(({ name }) => name === nameBeside(recordName, '_areas.json')) ?? waiting[0] ?? null;
}
