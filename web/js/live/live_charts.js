// @ts-check
import { prepareCanvas } from '../shared/canvas.js';
import { Chart } from '../shared/chart.js';
import { byId } from '../shared/dom.js';
import { number, text } from '../shared/language.js';
import { rangeOf } from '../shared/ticks.js';
import { spanMs } from '../shared/live_model.js';
/** @import { Colour, Palette } from '../shared/canvas.js' */
/** @import { Label } from '../shared/chart.js' */
/** @import { ColumnName } from '../shared/sample_columns.js' */
/** @import { LiveModel } from '../shared/live_model.js' */

/**
 * The value axis has the fixed `range`. Without `range`, it covers all values, extended to multiples of `step`.
 *
 * @typedef {{ id: string, series: [ColumnName, Colour][], range?: [number, number], step: number }} ChartDescription
 */

/** @type {ChartDescription[]} */
const charts = [
    { id: 'chart-x', series: [['x', 'band'], ['leftX', 'left'], ['rightX', 'right']], range: [0, 100], step: 0 },
    { id: 'chart-y', series: [['y', 'band'], ['leftY', 'left'], ['rightY', 'right']], range: [0, 100], step: 0 },
    { id: 'chart-pupil', series: [['leftPupil', 'left'], ['rightPupil', 'right']], step: 1 },
    { id: 'chart-distance', series: [['distance', 'accent']], step: 10 },
];

/** This chart is hidden if it has no values, because not all trackers measure the distance. */
const hiddenIfEmpty = 'chart-distance';

/** The combined gaze is drawn first, as a wide band, so that the lines of the two eyes are visible on it. */
const bandWidth = 6;

/** @type {Label} */
const secondsLabel = (timeMs, decimals) => text('seconds', { value: number(timeMs / 1000, decimals) });

/**
 * Draws the ten seconds before `nowMs`, with their markers.
 *
 * @param {LiveModel} model
 * @param {number} nowMs in the columns' time
 * @param {Palette} palette
 */
export function drawCharts(model, nowMs, palette) {
    for (const chart of charts) drawChart(chart, model, nowMs, palette);
}

/**
 * @param {ChartDescription} chart
 * @param {LiveModel} model
 * @param {number} nowMs
 * @param {Palette} palette
 */
function drawChart({ id, series, range, step }, { columns, markers }, nowMs, palette) {
    const figure = byId(id);
    const values = range ?? rangeOf(series.map(([name]) => columns[name]), 0, columns.length, step);
    figure.hidden = !values && id === hiddenIfEmpty;
    if (figure.hidden) return;

    const canvas = /** @type {HTMLCanvasElement} */ (figure.querySelector('canvas'));
    const surface = prepareCanvas(canvas, palette);
    const axes = new Chart(surface, { fromMs: -spanMs, toMs: 0 }, values ?? [0, 1]);
    axes.drawAxes(secondsLabel, number);
    if (!values && columns.length > 0) axes.drawNote(text('notMeasured'));
    const chart = new Chart(surface, { fromMs: nowMs - spanMs, toMs: nowMs }, values ?? [0, 1]);
    for (const [name, colour] of series)
        chart.drawSeries(columns, name, palette[colour], colour === 'band' ? { lineWidth: bandWidth } : {});
    chart.drawTimes(markers.map(({ time }) => time), palette.ink);
}
