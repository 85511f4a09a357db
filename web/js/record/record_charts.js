import { chartFrame, drawAxes, drawBand, drawNote, drawSeries } from '../shared/chart.js';
import { clock, number, text } from '../shared/language.js';
import { validShares } from './validity.js';
import { decimalsOf, niceStep, rangeOf } from '../shared/ticks.js';

/** Longer ranges have their times in minutes. */
const longestInSecondsMs = 120000;

/** Fixations closer together than this are not told apart behind a chart. */
const fewestPxPerFixation = 3;

/** With as many digits as tell the ticks apart. */
function timeText(frame) {
    if (frame.t1 - frame.t0 > longestInSecondsMs) return clock;
    const digits = decimalsOf(niceStep((frame.t1 - frame.t0) / 1000, 8));
    return timeMs => text('seconds', { value: number(timeMs / 1000, digits) });
}

/** The pupils in a range of the record, with the fixations behind them. */
export function drawPupils(context, width, height, { columns, range, fixations }, palette) {
    const [from, to] = [columns.indexAt(range.fromMs), columns.indexAt(range.toMs) + 1];
    const values = rangeOf([columns.leftPupil, columns.rightPupil], from, Math.min(to, columns.length), 0.5);
    const frame = chartFrame(width, height, range.fromMs, range.toMs, ...(values ?? [0, 1]));
    if (fixations.length * fewestPxPerFixation < width) {
        for (const { startMs, durationMs } of fixations) drawBand(context, frame, startMs, startMs + durationMs, palette.screen);
    }
    drawAxes(context, frame, palette, timeText(frame), number);
    if (!values) drawNote(context, frame, palette, text('notMeasured'));
    for (const [name, colour] of [['leftPupil', 'left'], ['rightPupil', 'right']])
        drawSeries(context, frame, columns.time, columns[name], Math.max(from - 1, 0), Math.min(to, columns.length), palette[colour]);
    return frame;
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
        if (share > 0) context.fillRect(frame.left + i, frame.toY(100 * share), 1, frame.bottom - frame.toY(100 * share));
    });
    context.globalAlpha = 1;
}
