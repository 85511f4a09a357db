// @ts-check
import { onPaletteChange, prepareCanvas, readPalette } from '../shared/canvas.js';
import { byId, canvasById } from '../shared/dom.js';
import { startLanguage } from '../shared/language.js';
import { aspectOf, canvasAspect, defaultAspect } from '../shared/screen.js';
import { startControls } from './controls.js';
import { EventStream } from '../shared/event_stream.js';
import { drawGaze } from './gaze_view.js';
import { drawCharts } from './live_charts.js';
import { LiveModel } from '../shared/live_model.js';
import { showCondition, showFigures } from './live_texts.js';
import { showSession } from './session_view.js';

/** The drawing intervals. Drawing is expensive in a browser without a GPU. */
const frameMs = 60;
const chartsMs = 240;
const figuresMs = 500;

/** Samples arrive in groups, one for each event. The gaze is drawn with this delay, so that it moves evenly. */
const gazeDelayMs = 150;

const model = new LiveModel();
let palette = readPalette();
let aspect = defaultAspect;

/** @param {number} newAspect */
function useAspect(newAspect) {
    aspect = newAspect;
    byId('gaze').style.aspectRatio = String(canvasAspect(aspect));
}

function updateAspect() {
    const newAspect = aspectOf(model.recent);
    if (newAspect !== defaultAspect && Math.abs(newAspect - aspect) > 0.01) useAspect(newAspect);
}

/**
 * Returns a function that calls `show` at most once per `intervalMs` on average.
 *
 * @param {number} intervalMs
 * @param {(nowMs: number) => void} show
 */
function throttled(intervalMs, show) {
    let dueMs = 0;
    return (/** @type {number} */ nowMs) => {
        if (nowMs < dueMs) return;
        dueMs = Math.max(dueMs + intervalMs, nowMs);
        show(nowMs);
    };
}

const updateCharts = throttled(chartsMs, nowMs => {
    showSession(model);
    drawCharts(model, model.clock.now(nowMs), palette);
});
const updateFigures = throttled(figuresMs, nowMs => {
    updateAspect();
    showFigures(model, model.clock.now(nowMs), model.condition(nowMs) === 'live');
});

function frame() {
    const nowMs = performance.now();
    showCondition(model.condition(nowMs), model);
    updateFigures(nowMs);
    const surface = prepareCanvas(canvasById('gaze'), palette);
    drawGaze(surface, model.columns, model.clock.now(nowMs) - gazeDelayMs, aspect);
    updateCharts(nowMs);
    setTimeout(requestAnimationFrame, frameMs, frame);
}

useAspect(defaultAspect);
startLanguage();
startControls();
onPaletteChange(() => { palette = readPalette(); });
new EventStream({
    state: state => model.takeState(state, performance.now()),
    samples: samples => model.takeSamples(samples, performance.now()),
    event: marker => model.takeMarker(marker),
    missed: missed => model.takeMissed(missed),
    lost: reason => model.lose(reason),
});
requestAnimationFrame(frame);
