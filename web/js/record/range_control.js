// @ts-check
import { between, moved, zoomed } from './time_range.js';
/** @import { Chart, TimeRange } from '../shared/chart.js' */

const keyStep = 0.1;
const keyZoom = 0.7;
const wheelZoom = 1.0015;

/** A shorter movement of the pointer is a click. */
const minDragPx = 3;

/**
 * The shown range, the duration of the recording, and the chart as it was last drawn.
 *
 * @typedef {{ range: TimeRange, wholeMs: number, chart: Chart }} Shown
 */

/**
 * Functions that return the new range, by key.
 *
 * @type {Record<string, (range: TimeRange, widthMs: number, wholeMs: number) => TimeRange>}
 */
const keys = {
    ArrowLeft: (range, widthMs, wholeMs) => moved(range, -keyStep * widthMs, wholeMs),
    ArrowRight: (range, widthMs, wholeMs) => moved(range, keyStep * widthMs, wholeMs),
    '+': (range, widthMs, wholeMs) => zoomed(range, keyZoom, range.fromMs + widthMs / 2, wholeMs),
    '=': (range, widthMs, wholeMs) => zoomed(range, keyZoom, range.fromMs + widthMs / 2, wholeMs),
    '-': (range, widthMs, wholeMs) => zoomed(range, 1 / keyZoom, range.fromMs + widthMs / 2, wholeMs),
    Home: (range, _, wholeMs) => moved(range, -wholeMs, wholeMs),
    End: (range, _, wholeMs) => moved(range, wholeMs, wholeMs),
    0: (_range, _, wholeMs) => between(0, wholeMs, wholeMs),
};

/**
 * Returns the range during a drag, from the range at the start of the drag and the times under the pointer at the start
 * and now.
 *
 * @typedef {(range: TimeRange, startMs: number, nowMs: number, wholeMs: number) => TimeRange} Drag
 */

/** @type {Drag} */
export const dragToMove = (range, startMs, nowMs, wholeMs) => moved(range, startMs - nowMs, wholeMs);
/** @type {Drag} */
export const dragToSelect = (_, startMs, nowMs, wholeMs) => between(startMs, nowMs, wholeMs);

/**
 * Connects the wheel, keyboard, double click and drag on a chart to the shown range.
 *
 * @param {HTMLCanvasElement} canvas
 * @param {Drag} drag
 * @param {() => Shown | null} access returns null if no record file is shown
 * @param {(range: TimeRange) => void} change called with the new range
 */
export function controlRange(canvas, drag, access, change) {
    canvas.addEventListener('keydown', event => {
        const shown = access();
        const next = event.ctrlKey || event.altKey || event.metaKey ? null : keys[event.key];
        if (!shown || !next) return;
        event.preventDefault();
        const { range, wholeMs } = shown;
        change(next(range, range.toMs - range.fromMs, wholeMs));
    });
    canvas.addEventListener('wheel', event => {
        const shown = access();
        if (!shown) return;
        const { range, wholeMs, chart } = shown;
        const next = zoomed(range, wheelZoom ** event.deltaY, chart.toTime(event.offsetX), wholeMs);
        // At the limits of the zoom, the wheel scrolls the page.
        if (next.fromMs === range.fromMs && next.toMs === range.toMs) return;
        event.preventDefault();
        change(next);
    }, { passive: false });
    canvas.addEventListener('dblclick', () => {
        const shown = access();
        if (shown) change(between(0, shown.wholeMs, shown.wholeMs));
    });
    canvas.addEventListener('pointerdown', event => {
        const shown = access();
        if (shown) startDrag(canvas, event, drag, shown, change);
    });
}

/**
 * @param {HTMLCanvasElement} canvas
 * @param {PointerEvent} start
 * @param {Drag} toRange
 * @param {Shown} shown
 * @param {(range: TimeRange) => void} change
 */
function startDrag(canvas, start, toRange, { range, wholeMs, chart }, change) {
    const move = (/** @type {PointerEvent} */ event) => {
        if (Math.abs(event.offsetX - start.offsetX) < minDragPx) return;
        change(toRange(range, chart.toTime(start.offsetX), chart.toTime(event.offsetX), wholeMs));
    };
    canvas.setPointerCapture(start.pointerId);
    const drag = new AbortController();
    canvas.addEventListener('pointermove', move, { signal: drag.signal });
    for (const end of ['pointerup', 'pointercancel'])
        canvas.addEventListener(end, () => drag.abort(), { signal: drag.signal });
}
