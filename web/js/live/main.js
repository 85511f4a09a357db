import { aspectOf, usualAspect } from '../shared/aspect.js';
import { byId, setText } from '../shared/dom.js';
import { startLanguage, text } from '../shared/language.js';
import { onPaletteChange, readPalette } from '../shared/palette.js';
import { canvasAspect } from '../shared/screen.js';
import { startControls } from './controls.js';
import { showFigures } from './figures.js';
import { drawGaze } from './gaze_view.js';
import { drawCharts } from './live_charts.js';
import { Poller } from './poller.js';
import { SampleStream } from './sample_stream.js';
import { streamState } from './stream_state.js';

/** A browser without a graphics processor takes the time of a core for every picture: no more of them than it needs. */
const frameMs = 60;
const chartMs = 240;
const figuresMs = 500;

/** Samples come in bursts, one an answer. Drawn this much later, they move evenly. */
const gazeDelayMs = 200;

const stream = new SampleStream();
let palette = readPalette();
let answer;
let answerMs = NaN;
let answeredMs = NaN;
let aspect = usualAspect;

function take(newAnswer, tookMs) {
    answer = newAnswer;
    answeredMs = performance.now();
    answerMs = newAnswer ? tookMs : NaN;
    return newAnswer !== null && newAnswer.result && stream.add(newAnswer.samples, answeredMs) > 0;
}

/** Written only when it changes: what touches the document costs, and is read aloud. */
let shown = '';

function showState(state) {
    const { byArrival } = stream.timeline;
    const now = [state, byArrival, stream.crossed, document.documentElement.lang].join();
    if (now === shown) return;
    shown = now;
    const hint = state === 'stalled' && byArrival ? 'stalledByArrivalHint' : `${state}Hint`;
    byId('gaze-title').dataset.state = state;
    setText('state', text(state));
    byId('veil').hidden = !text(hint);
    setText('veil-title', text(state));
    setText('veil-hint', text(hint));
    byId('by-arrival').hidden = !byArrival;
    byId('crossed').hidden = !stream.crossed;
}

function useAspect(shape) {
    aspect = shape;
    byId('gaze').style.aspectRatio = String(canvasAspect(aspect));
}

function showSlowThings(state, nowMs) {
    const shape = aspectOf(stream.newest);
    if (shape !== usualAspect && Math.abs(shape - aspect) > 0.01) useAspect(shape);
    showFigures(stream.columns, nowMs, stream.timeline.byArrival, state === 'live', answerMs);
}

/** Calls `show` at most once in `intervalMs`. */
function throttled(intervalMs, show) {
    let dueMs = 0;
    return (pageMs, ...rest) => {
        if (pageMs < dueMs) return;
        dueMs = Math.max(dueMs + intervalMs, pageMs);
        show(...rest);
    };
}

const chartsIfDue = throttled(chartMs, nowMs => drawCharts(stream.columns, nowMs, palette));
const figuresIfDue = throttled(figuresMs, showSlowThings);

function frame(pageMs) {
    const nowMs = stream.timeline.now(performance.now());
    const state = streamState(answer, stream.startedMs, stream.changedMs, answeredMs, performance.now());
    showState(state);
    figuresIfDue(pageMs, state, nowMs);
    drawGaze(byId('gaze'), stream.columns, nowMs - gazeDelayMs, aspect, palette);
    chartsIfDue(pageMs, nowMs);
    setTimeout(requestAnimationFrame, frameMs, frame);
}

useAspect(usualAspect);
startLanguage();
startControls();
onPaletteChange(() => { palette = readPalette(); });
new Poller(take);
requestAnimationFrame(frame);
