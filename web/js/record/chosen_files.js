// @ts-check

/**
 * The files of one recording: its record file, and the samples file beside it, if it was chosen, too.
 *
 * @typedef {{ record: File, samples: File | null }} RecordingFiles
 */

/** @param {File} file */
function isSamples({ name }) {
    return /_samples\.csv$/i.test(name);
}

/**
 * Returns the name of the samples file beside a record file.
 *
 * @param {string} recordName
 */
function samplesNameOf(recordName) {
    return `${recordName.replace(/\.csv$/i, '')}_samples.csv`;
}

/**
 * Returns the first recording among the files that the user has chosen or dropped, or null if there are no files.
 * Descriptions and events files are skipped. A single samples file belongs to a single record file, whatever its name is.
 *
 * @param {Iterable<File>} files
 * @returns {RecordingFiles | null}
 */
export function recordingOf(files) {
    const all = [...files];
    const records = all.filter(file => !isSamples(file) && !/(\.json|_events\.csv)$/i.test(file.name));
    const record = records[0] ?? all[0];
    if (!record) return null;
    const others = all.filter(file => isSamples(file) && file !== record);
    const named = others.find(({ name }) => name.toLowerCase() === samplesNameOf(record.name).toLowerCase());
    const only = records.length === 1 && others.length === 1 ? others[0] : null;
    return { record, samples: named ?? only };
}
