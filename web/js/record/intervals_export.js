// @ts-check
import { csvOf, rounded } from '../shared/csv.js';
import { download } from '../shared/download.js';
import { nameBeside } from './chosen_files.js';
/** @import { Interval } from './intervals.js' */
/** @import { RecordView } from './record_view.js' */

const headers = [
    'Marker', 'Start_ms', 'Duration_ms', 'SampleCount', 'ValidShare', 'FixationCount', 'MeanFixation_ms', 'L_Pupil_mm', 'R_Pupil_mm',
];

/**
 * Returns the intervals between markers as CSV. The time before the first marker has no text.
 *
 * @param {Interval[]} intervals
 */
export function intervalsCsv(intervals) {
    return csvOf(headers, intervals.map(interval => [
        interval.text ?? '',
        rounded(interval.startMs, 3),
        rounded(interval.endMs - interval.startMs, 3),
        interval.sampleCount,
        rounded(interval.validShare, 4),
        interval.fixationCount,
        rounded(interval.meanFixationMs, 3),
        rounded(interval.leftPupil, 3),
        rounded(interval.rightPupil, 3),
    ]));
}

/**
 * Saves the intervals between markers beside the name of the record file.
 *
 * @param {RecordView} view
 */
export function saveIntervals({ intervals, fileName }) {
    download(new Blob([intervalsCsv(intervals)], { type: 'text/csv' }), nameBeside(fileName, '_intervals.csv'));
}
