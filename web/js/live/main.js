// @ts-check
import { onPaletteChange, prepareCanvas, readPalette } from '../shared/canvas.js';
import { byId, canvasById } from '../shared/dom.js';
import { startLanguage } from '../shared/language.js';
import { aspectOf, canvasAspect, defaultAspect } from '../shared/screen.js';
import { startControls } from './controls.js';
import { drawGaze } from './gaze_view.js';
import { drawCharts } from './live_charts.js';
import { showFigures, showState } from './live_texts.js';
import { Poller } from './poller.js';
import { SampleStream } from './sample_stream.js';

/** The drawing intervals. Drawing is expensive in a browser without a GPU. */
const frameMs = 60;
const chartsMs = 240;
const figuresMs = 500;

/** Samples arrive in bursts, one for each answer. The gaze is drawn with this delay, so that it moves evenly. */
const gazeDelayMs = 200;

const stream = new SampleStream();
let palette = readPalette();
let answerMs = NaN;
let aspect = defaultAspect;

/** @param {number} newAspect */
function useAspect(newAspect) {
    aspect = newAspect;
    byId('gaze').style.aspectRatio = String(canvasAspect(aspect));
}

function updateAspect() {
    const newAspect = aspectOf(stream.newest);
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

const updateCharts = throttled(chartsMs, nowMs => drawCharts(stream.columns, stream.timeline.now(nowMs), palette));
const updateFigures = throttled(figuresMs, nowMs => {
    updateAspect();
    showFigures(stream, stream.timeline.now(nowMs), stream.state(nowMs) === 'live', answerMs);
});

function frame() {
    const nowMs = performance.now();
    showState(stream.state(nowMs), stream);
    updateFigures(nowMs);
    const surface = prepareCanvas(canvasById('gaze'), palette);
    drawGaze(surface, stream.columns, stream.timeline.now(nowMs) - gazeDelayMs, aspect);
    updateCharts(nowMs);
    setTimeout(requestAnimationFrame, frameMs, frame);
}

useAspect(defaultAspect);
startLanguage();
startControls();
onPaletteChange(() => { palette = readPalette(); });
new Poller((answer, tookMs) => {
    answerMs = answer ? tookMs : NaN;
    return stream.take(answer, performance.now());
});
requestAnimationFrame(frame);
