import { prepare } from '../shared/canvas.js';
import { chartFrame, drawAxes, drawNote, drawSeries } from '../shared/chart.js';
import { number, text } from '../shared/language.js';
import { rangeOf } from '../shared/ticks.js';
import { byId } from '../shared/dom.js';
import { spanMs } from './sample_stream.js';

const gazeRange = [0, 100];

/** The combined gaze runs between the two eyes: a broad band that does not hide them. */
const lineWidths = { band: 6 };

/** `range` or, in steps of `step`, that of the values. */
const charts = [
    { id: 'chart-x', series: { x: 'band', leftX: 'left', rightX: 'right' }, range: gazeRange },
    { id: 'chart-y', series: { y: 'band', leftY: 'left', rightY: 'right' }, range: gazeRange },
    { id: 'chart-pupil', series: { leftPupil: 'left', rightPupil: 'right' }, step: 1 },
    { id: 'chart-distance', series: { distance: 'accent' }, step: 10, hidesEmpty: true },
];

function seconds(timeMs, digits) {
    return text('seconds', { value: number(timeMs / 1000, digits) });
}

/** Draws the last ten seconds before `nowMs` of the columns' time. */
export function drawCharts(columns, nowMs, palette) {
    for (const chart of charts) drawChart(chart, columns, nowMs, palette);
}

function drawChart(chart, columns, nowMs, palette) {
    const figure = byId(chart.id);
    const names = Object.keys(chart.series);
    const range = chart.range ?? rangeOf(names.map(name => columns[name]), 0, columns.length, chart.step);
    figure.hidden = !range && Boolean(chart.hidesEmpty);
    if (figure.hidden) return;

    const { context, width, height } = prepare(figure.querySelector('canvas'), palette.surface);
    const frame = chartFrame(width, height, -spanMs, 0, ...(range ?? [0, 1]));
    drawAxes(context, frame, palette, seconds, number);
    if (!range) drawNote(context, frame, palette, text('notMeasured'));
    const moving = { ...frame, toX: timeMs => frame.toX(timeMs - nowMs) };
    const { time, length } = columns;
    for (const [name, colour] of Object.entries(chart.series))
        drawSeries(context, moving, time, columns[name], 0, length, palette[colour], lineWidths[colour]);
}
