// @ts-check
import { csvOf, rounded } from '../shared/csv.js';
import { download } from '../shared/download.js';
import { meanOf, validCountOf } from '../shared/statistics.js';
import { nameBeside } from './chosen_files.js';
import { describeDetection } from './detection.js';
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { RecordView } from './record_view.js' */

const headers = [
    'Index', 'Start_ms', 'Duration_ms', 'X', 'Y', 'X_px', 'Y_px', 'L_Pupil_mm', 'R_Pupil_mm', 'SampleCount', 'Marker',
    'Detection',
];

/** The end of a fixation is the sum of its start and its duration, which is rounded. Samples are further apart. */
const roundingErrorMs = 1e-6;

/**
 * Returns the fixations of the whole recording as CSV. The index is the number in the scan path. The pixels are missing if
 * the size of the calibrated area is not known. The marker is the last one before the fixation. Each row names the method and
 * its parameters.
 *
 * @param {RecordView} view
 */
export function fixationsCsv({ allFixations, columns, markers, parameters, file: { areaPx } }) {
    const detection = describeDetection(parameters);
    let markerCount = 0;
    return csvOf(headers, allFixations.map(({ startMs, durationMs, x, y }, i) => {
        while (markers[markerCount]?.timeMs <= startMs) ++markerCount;
        const [from, to] = samplesOf(columns, startMs, startMs + durationMs);
        return [
            i + 1, rounded(startMs, 3), rounded(durationMs, 3), rounded(x, 3), rounded(y, 3),
            rounded((x * areaPx.width) / 100, 0), rounded((y * areaPx.height) / 100, 0),
            rounded(meanOf(columns.leftPupil, from, to), 3), rounded(meanOf(columns.rightPupil, from, to), 3),
            validCountOf(columns.x, from, to), markers[markerCount - 1]?.text ?? '', detection,
        ];
    }));
}

/**
 * Returns the indexes of the first sample in a time range and of the first sample after it.
 *
 * @param {SampleColumns} columns
 * @param {number} fromMs
 * @param {number} toMs
 */
function samplesOf(columns, fromMs, toMs) {
    let to = columns.indexAt(toMs);
    while (to < columns.length && columns.time[to] <= toMs + roundingErrorMs) ++to;
    return [columns.indexAt(fromMs), to];
}

/**
 * Saves the fixations of the whole recording beside the name of the record file.
 *
 * @param {RecordView} view
 */
export function saveFixations(view) {
    download(new Blob([fixationsCsv(view)], { type: 'text/csv' }), nameBeside(view.fileName, '_fixations.csv'));
}
