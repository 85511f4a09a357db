import { chartFrame, drawAxes, drawBand, drawNote, drawSeries } from '../shared/chart.js';
import { clock, number, text } from '../shared/language.js';
import { validShares } from './validity.js';
import { rangeOf } from '../shared/ticks.js';

/** Longer ranges have their times in minutes. */
export const longestInSecondsMs = 120000;

/** Fixations closer together than this are not told apart behind a chart. */
const fewestPxPerFixation = 3;

function timeText(frame) {
    if (frame.t1 - frame.t0 > longestInSecondsMs) return clock;
    return (timeMs, digits) => text('seconds', { value: number(timeMs / 1000, digits) });
}

/** The pupils in a range of the record, with the fixations behind them. */
export function drawPupils(context, width, height, { columns, range, fixations }, palette) {
    // With a neighbour at each end, so that lines reach the edges.
    const from = Math.max(columns.indexAt(range.fromMs) - 1, 0);
    const to = Math.min(columns.indexAt(range.toMs) + 1, columns.length);
    const values = rangeOf([columns.leftPupil, columns.rightPupil], from, to, 0.5);
    const frame = chartFrame(width, height, range.fromMs, range.toMs, ...(values ?? [0, 1]));
    if (fixations.length * fewestPxPerFixation < width) drawFixations(context, frame, fixations, palette.screen);
    drawAxes(context, frame, palette, timeText(frame), number);
    if (!values) drawNote(context, frame, palette, text('notMeasured'));
    for (const [name, colour] of [['leftPupil', 'left'], ['rightPupil', 'right']])
        drawSeries(context, frame, columns.time, columns[name], from, to, palette[colour]);
    return frame;
}

function drawFixations(context, frame, fixations, colour) {
    for (const { startMs, durationMs } of fixations) drawBand(context, frame, startMs, startMs + durationMs, colour);
}

/** The share of valid samples over the time of a range. */
export function drawValidity(context, width, height, { columns, range }, palette) {
    const frame = chartFrame(width, height, range.fromMs, range.toMs, 0, 100);
    drawAxes(context, frame, palette, timeText(frame), number);
    drawShares(context, frame, columns, palette.accent);
    return frame;
}

/** The validity of the whole record, small, with the range marked in it. */
export function drawOverview(context, width, height, { columns, range, wholeMs }, palette) {
    const frame = chartFrame(width, height, 0, wholeMs, 0, 100);
    drawAxes(context, frame, palette, timeText(frame), () => '');
    drawShares(context, frame, columns, palette.band);
    context.globalAlpha = 0.15;
    drawBand(context, frame, range.fromMs, range.toMs, palette.accent);
    context.globalAlpha = 1;
    context.strokeStyle = palette.accent;
    context.lineWidth = 2;
    const [left, right] = [frame.toX(range.fromMs), frame.toX(range.toMs)];
    context.strokeRect(left, frame.top, Math.max(right - left, 2), frame.bottom - frame.top);
    return frame;
}

/** A bar a pixel, as high as the share of valid samples in it. */
function drawShares(context, frame, columns, colour) {
    const count = Math.max(1, Math.floor(frame.right - frame.left));
    const shares = validShares(columns, frame.t0, frame.t1, count);
    context.fillStyle = colour;
    context.globalAlpha = 0.7;
    shares.forEach((share, i) => {
        const top = frame.toY(100 * share);
        if (share > 0) context.fillRect(frame.left + i, top, 1, frame.bottom - top);
    });
    context.globalAlpha = 1;
}
