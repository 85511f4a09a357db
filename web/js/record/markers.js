// @ts-check
/** @import { TimeRange } from '../shared/chart.js' */
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { Marker } from './markers_file.js' */

/**
 * A marker at a time of the recording. The gaze is in percent, and NaN if there was none.
 *
 * @typedef {{ timeMs: number, text: string, x: number, y: number }} PlacedMarker
 */

/** Timestamps are whole numbers of milliseconds. */
const timestampToleranceMs = 1;

/** A gaze that is further from the marker does not tell where the person looked. */
const maxGazeDistanceMs = 100;

/**
 * Returns the markers with their gaze, sorted by time.
 *
 * @param {Marker[]} markers
 * @param {SampleColumns} columns
 * @param {boolean} byRow whether the times of the samples may not be their times of arrival. A marker is then shown between the
 *     sample that was the newest one when the marker was set, and the next one
 * @returns {PlacedMarker[]}
 */
export function placeMarkers(markers, columns, byRow) {
    const placed = markers.map(({ onsetMs, text, row }) => {
        const timeMs = byRow && row < columns.length ? timeAfterRow(columns, row, onsetMs) : onsetMs;
        return { timeMs, text, ...gazeAt(columns, timeMs) };
    });
    return placed.sort((a, b) => a.timeMs - b.timeMs);
}

/**
 * Returns the onset if it is between a sample and the next one, otherwise the time in the middle between them.
 *
 * @param {SampleColumns} columns
 * @param {number} row
 * @param {number} onsetMs
 */
function timeAfterRow({ time, length }, row, onsetMs) {
    const [fromMs, toMs] = [time[row], time[Math.min(row + 1, length - 1)]];
    const isBetween = onsetMs >= fromMs - timestampToleranceMs && onsetMs <= toMs + timestampToleranceMs;
    return isBetween ? onsetMs : (fromMs + toMs) / 2;
}

/**
 * Returns the valid gaze that is nearest to a time.
 *
 * @param {SampleColumns} columns
 * @param {number} timeMs
 */
function gazeAt(columns, timeMs) {
    const { time, x, y } = columns;
    let nearest = -1;
    let nearestMs = maxGazeDistanceMs;
    const end = columns.indexAt(timeMs + maxGazeDistanceMs);
    for (let i = columns.indexAt(timeMs - maxGazeDistanceMs); i < end; ++i) {
        const distanceMs = Math.abs(time[i] - timeMs);
        if (Number.isNaN(x[i]) || distanceMs > nearestMs) continue;
        nearest = i;
        nearestMs = distanceMs;
    }
    return nearest < 0 ? { x: NaN, y: NaN } : { x: x[nearest], y: y[nearest] };
}

/**
 * Returns the markers in a time range, which includes its ends.
 *
 * @param {PlacedMarker[]} markers
 * @param {TimeRange} range
 */
export function markersIn(markers, { fromMs, toMs }) {
    return markers.filter(({ timeMs }) => timeMs >= fromMs && timeMs <= toMs);
}
