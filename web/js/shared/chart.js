import { forEachPoint } from './polyline.js';
import { decimalsOf, ticks, timeTicks } from './ticks.js';

const pad = { left: 40, right: 8, top: 8, bottom: 22 };

/**
 * Where a chart of this size has its plot, and how its numbers become places.
 *
 * @param t0,t1 the times at the left and the right edge, ms
 * @param y0,y1 the values at the bottom and the top
 */
export function chartFrame(width, height, t0, t1, y0, y1) {
    const [left, right, top, bottom] = [pad.left, width - pad.right, pad.top, height - pad.bottom];
    return {
        left, right, top, bottom, t0, t1, y0, y1,
        toX: timeMs => left + ((timeMs - t0) * (right - left)) / (t1 - t0),
        toY: value => bottom - ((value - y0) * (bottom - top)) / (y1 - y0),
        toTime: x => t0 + ((x - left) * (t1 - t0)) / (right - left),
    };
}

/** @param timeText,valueText what a time in ms and a value are called, with so many decimals */
export function drawAxes(context, frame, palette, timeText, valueText) {
    context.font = palette.font;
    context.lineWidth = 1;
    context.strokeStyle = palette.line;
    context.fillStyle = palette.muted;
    drawValueAxis(context, frame, valueText);
    drawTimeAxis(context, frame, timeText);
}

function drawValueAxis(context, frame, text) {
    context.textAlign = 'right';
    context.textBaseline = 'middle';
    context.beginPath();
    const values = ticks(frame.y0, frame.y1, frame.bottom - frame.top > 60 ? 4 : 2);
    for (const value of values) {
        const y = Math.round(frame.toY(value)) + 0.5;
        context.moveTo(frame.left, y);
        context.lineTo(frame.right, y);
        context.fillText(text(value, decimalsOf(values[1] - values[0])), frame.left - 6, y);
    }
    context.stroke();
}

function drawTimeAxis(context, frame, text) {
    context.textAlign = 'center';
    context.textBaseline = 'top';
    const most = Math.max(2, Math.floor((frame.right - frame.left) / 70));
    const times = timeTicks(frame.t0, frame.t1, most);
    for (const timeMs of times) {
        const x = Math.min(Math.max(frame.toX(timeMs), frame.left), frame.right - 8);
        context.fillText(text(timeMs, decimalsOf((times[1] - times[0]) / 1000)), x, frame.bottom + 7);
    }
}

/** A column of so many pixels is drawn as one: half the work, and the eye sees no difference. */
const columnPx = 2;

/** One series as a line with its gaps. Values beyond the chart stay within its edges. */
export function drawSeries(context, frame, time, values, from, to, colour, lineWidth = 1.5) {
    context.save();
    context.beginPath();
    context.rect(frame.left, 0, frame.right - frame.left, frame.bottom + pad.top);
    context.clip();
    context.strokeStyle = colour;
    context.lineWidth = lineWidth;
    context.lineJoin = 'bevel';
    context.beginPath();
    forEachPoint(time, values, from, to, timeMs => frame.toX(timeMs) / columnPx, (column, value, starts) => {
        const x = column * columnPx;
        const y = frame.toY(Math.min(Math.max(value, frame.y0), frame.y1));
        // A value by itself is a dot.
        if (starts) context.moveTo(x - 1, y);
        context.lineTo(x, y);
    });
    context.stroke();
    context.restore();
}

/** A stretch of time from the top to the bottom of the chart. */
export function drawBand(context, frame, fromMs, toMs, colour) {
    const left = Math.max(frame.toX(fromMs), frame.left);
    const right = Math.min(frame.toX(toMs), frame.right);
    context.fillStyle = colour;
    if (right > left) context.fillRect(left, frame.top, right - left, frame.bottom - frame.top);
}

/** Says in the middle of an empty chart why it is empty. */
export function drawNote(context, frame, palette, text) {
    context.fillStyle = palette.muted;
    context.font = palette.font;
    context.textAlign = 'center';
    context.textBaseline = 'middle';
    context.fillText(text, (frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2);
}
