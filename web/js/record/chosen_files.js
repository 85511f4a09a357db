// @ts-check
import { isAreasName } from './areas_file.js';
import { isImage } from './stimulus_image.js';

/**
 * The files of one recording: its record file, and the samples file and events file beside it, if they were chosen, too.
 *
 * @typedef {{ record: File, samples: File | null, events: File | null }} RecordingFiles
 */

/**
 * Returns the name of a file beside a record file.
 *
 * @param {string} recordName
 * @param {string} ending
 */
export function nameBeside(recordName, ending) {
    return `${recordName.replace(/\.csv$/i, '')}${ending}`;
}

/**
 * Returns whether a file is shown with a recording, but is not a part of it: areas of interest, or an image of the stimulus.
 *
 * @param {File} file
 */
export function isAttachment(file) {
    return isAreasName(file.name) || isImage(file);
}

/**
 * Returns the first recording among the files that the user has chosen or dropped, or null if there are no files.
 * Descriptions and exported tables are skipped. A single samples file or events file belongs to a single record file, whatever
 * its name is.
 *
 * @param {Iterable<File>} files
 * @returns {RecordingFiles | null}
 */
export function recordingOf(files) {
    const all = [...files];
    const records = all.filter(({ name }) => !/(\.json|_(samples|events|areas|fixations|intervals)\.csv)$/i.test(name));
    const record = records[0] ?? all[0];
    if (!record) return null;
    const beside = (/** @type {string} */ ending) => {
        const others = all.filter(file => file.name.toLowerCase().endsWith(ending) && file !== record);
        const named = others.find(({ name }) => name.toLowerCase() === nameBeside(record.name, ending).toLowerCase());
        const only = records.length === 1 && others.length === 1 ? others[0] : null;
        return named ?? only;
    };
    return { record, samples: beside('_samples.csv'), events: beside('_events.csv') };
}
