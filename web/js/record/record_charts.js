// @ts-check
import { Chart } from '../shared/chart.js';
import { clock, number, text } from '../shared/language.js';
import { rangeOf } from '../shared/ticks.js';
import { drawHeatMap } from './heat_map_view.js';
import { drawMarkers } from './markers_view.js';
import { drawScanPath } from './scan_path_view.js';
import { validShares } from './validity.js';
/** @import { Surface } from '../shared/canvas.js' */
/** @import { Label, TimeRange } from '../shared/chart.js' */
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { RecordView } from './record_view.js' */

/** Longer durations are shown in minutes. */
export const maxInSecondsMs = 120000;

/** Bands for fixations are drawn only if the chart has at least this width for each fixation. */
const minFixationPx = 3;

/** The functions that draw the stage, by mode. */
export const stages = { scanPath: drawScanPath, heatMap: drawHeatMap };

/** @typedef {keyof typeof stages} StageMode */

/**
 * @param {TimeRange} range
 * @returns {Label}
 */
function timeLabel({ fromMs, toMs }) {
    if (toMs - fromMs > maxInSecondsMs) return clock;
    return (timeMs, decimals) => text('seconds', { value: number(timeMs / 1000, decimals) });
}

/**
 * Draws the pupil diameters in the shown range, with bands behind them for the fixations.
 *
 * @param {Surface} surface
 * @param {RecordView} view
 */
export function drawPupils(surface, { columns, range, fixations, markers }) {
    // One more sample at each end, so that the lines reach the edges.
    const from = Math.max(columns.indexAt(range.fromMs) - 1, 0);
    const to = Math.min(columns.indexAt(range.toMs) + 1, columns.length);
    const values = rangeOf([columns.leftPupil, columns.rightPupil], from, to, 0.5);
    const { palette } = surface;
    const chart = new Chart(surface, range, values ?? [0, 1]);
    if (fixations.length * minFixationPx < surface.width) {
        for (const { startMs, durationMs } of fixations)
            chart.drawBand({ fromMs: startMs, toMs: startMs + durationMs }, palette.screen);
    }
    chart.drawAxes(timeLabel(range), number);
    if (!values) chart.drawNote(text('notMeasured'));
    chart.drawSeries(columns, 'leftPupil', palette.left, { from, to });
    chart.drawSeries(columns, 'rightPupil', palette.right, { from, to });
    drawMarkers(surface, chart, markers, range);
    return chart;
}

/**
 * Draws the share of valid samples in the shown range.
 *
 * @param {Surface} surface
 * @param {RecordView} view
 */
export function drawValidity(surface, { columns, range, markers }) {
    const chart = new Chart(surface, range, [0, 100]);
    chart.drawAxes(timeLabel(range), number);
    drawShares(surface, chart, columns, range, surface.palette.accent);
    drawMarkers(surface, chart, markers, range);
    return chart;
}

/**
 * Draws the share of valid samples in the whole recording, with a frame around the shown range.
 *
 * @param {Surface} surface
 * @param {RecordView} view
 */
export function drawOverview(surface, { columns, range, whole, markers }) {
    const { context, palette } = surface;
    const chart = new Chart(surface, whole, [0, 100]);
    chart.drawAxes(timeLabel(whole), () => '');
    drawShares(surface, chart, columns, whole, palette.band);
    context.globalAlpha = 0.15;
    chart.drawBand(range, palette.accent);
    context.globalAlpha = 1;
    chart.drawFrame(range, palette.accent);
    drawMarkers(surface, chart, markers, whole);
    return chart;
}

/**
 * Draws a bar for each column of pixels.
 *
 * @param {Surface} surface
 * @param {Chart} chart
 * @param {SampleColumns} columns
 * @param {TimeRange} range
 * @param {string} colour
 */
function drawShares({ context }, chart, columns, range, colour) {
    const shares = validShares(columns, range, Math.max(1, Math.floor(chart.width)));
    context.fillStyle = colour;
    context.globalAlpha = 0.7;
    shares.forEach((share, i) => {
        const top = chart.toY(100 * share);
        if (share > 0) context.fillRect(chart.left + i, top, 1, chart.bottom - top);
    });
    context.globalAlpha = 1;
}
