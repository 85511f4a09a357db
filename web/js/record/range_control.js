import { between, moved, zoomed } from './time_range.js';

const keyStep = 0.1;
const keyZoom = 0.7;
const wheelZoom = 1.0015;

/** What a key does to the range, of the whole that is `wholeMs` long. */
const keys = {
    ArrowLeft: (range, width, whole) => moved(range, -keyStep * width, whole),
    ArrowRight: (range, width, whole) => moved(range, keyStep * width, whole),
    '+': (range, width, whole) => zoomed(range, keyZoom, range.fromMs + width / 2, whole),
    '=': (range, width, whole) => zoomed(range, keyZoom, range.fromMs + width / 2, whole),
    '-': (range, width, whole) => zoomed(range, 1 / keyZoom, range.fromMs + width / 2, whole),
    Home: (range, width, whole) => moved(range, -whole, whole),
    End: (range, width, whole) => moved(range, whole, whole),
    0: (range, width, whole) => between(0, whole, whole),
};

/**
 * Lets a chart change the range: the wheel zooms, keys move and zoom, and a double click shows the whole. Dragging
 * moves what is under the pointer along (`drag` 'move'), or marks a new range ('mark').
 *
 * @param view { range, wholeMs, frame(canvas), change(range) }: `frame` is what chartFrame() gave for the chart
 */
export function controlRange(canvas, drag, view) {
    canvas.addEventListener('keydown', event => {
        const act = event.ctrlKey || event.altKey || event.metaKey ? null : keys[event.key];
        if (!act) return;
        event.preventDefault();
        view.change(act(view.range, view.range.toMs - view.range.fromMs, view.wholeMs));
    });
    canvas.addEventListener('wheel', event => {
        const atMs = view.frame(canvas).toTime(event.offsetX);
        const range = zoomed(view.range, wheelZoom ** event.deltaY, atMs, view.wholeMs);
        // What cannot be zoomed any further leaves the wheel to the page.
        if (range.fromMs === view.range.fromMs && range.toMs === view.range.toMs) return;
        event.preventDefault();
        view.change(range);
    }, { passive: false });
    canvas.addEventListener('dblclick', () => view.change(between(0, view.wholeMs, view.wholeMs)));
    canvas.addEventListener('pointerdown', event => beginDrag(canvas, event, drags[drag], view));
}

/** Ranges during a drag, from its begin: the range and the time under the pointer there, and the time there now. */
const drags = {
    move: (range, beginMs, nowMs, whole) => moved(range, beginMs - nowMs, whole),
    mark: (range, beginMs, nowMs, whole) => between(beginMs, nowMs, whole),
};

/** A click that hardly moves is none of it. */
const leastPx = 3;

function beginDrag(canvas, begin, rangeOf, view) {
    const { range } = view;
    const frame = view.frame(canvas);
    const move = event => {
        if (Math.abs(event.offsetX - begin.offsetX) < leastPx) return;
        view.change(rangeOf(range, frame.toTime(begin.offsetX), frame.toTime(event.offsetX), view.wholeMs));
    };
    canvas.setPointerCapture(begin.pointerId);
    canvas.addEventListener('pointermove', move);
    for (const end of ['pointerup', 'pointercancel'])
        canvas.addEventListener(end, () => canvas.removeEventListener('pointermove', move), { once: true });
}
