import { aspectOf, usualAspect } from '../shared/aspect.js';
import { byId, setText } from '../shared/dom.js';
import { startLanguage, text } from '../shared/language.js';
import { onPaletteChange, readPalette } from '../shared/palette.js';
import { startControls } from './controls.js';
import { showFigures } from './figures.js';
import { canvasAspect, drawGaze } from './gaze_view.js';
import { drawCharts } from './live_charts.js';
import { Poller } from './poller.js';
import { SampleStream } from './sample_stream.js';
import { streamState } from './stream_state.js';

/** The gaze moves smoothly at this; the charts, which cost more, are drawn as answers come. */
const frameMs = 33;
const chartMs = 100;
const figuresMs = 500;

const stream = new SampleStream();
let palette = readPalette();
let answer;
let answerMs = NaN;
let aspect = usualAspect;

function take(newAnswer, tookMs) {
    answer = newAnswer;
    answerMs = newAnswer ? tookMs : NaN;
    return newAnswer !== null && newAnswer.result && stream.add(newAnswer.samples, performance.now()) > 0;
}

function showState(state) {
    const { byArrival } = stream.timeline;
    const hint = state === 'stalled' && byArrival ? 'stalledByArrivalHint' : `${state}Hint`;
    byId('gaze-title').dataset.state = state;
    setText('state', text(state));
    byId('veil').hidden = !text(hint);
    setText('veil-title', text(state));
    setText('veil-hint', text(hint));
    byId('by-arrival').hidden = !byArrival;
    byId('crossed').hidden = !stream.crossed;
}

function showSlowThings(state, nowMs) {
    const shape = aspectOf(stream.newest);
    if (shape !== usualAspect) aspect = shape;
    byId('gaze').style.aspectRatio = String(canvasAspect(aspect));
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

const gazeIfDue = throttled(frameMs, nowMs => drawGaze(byId('gaze'), stream.columns, nowMs, aspect, palette));
const chartsIfDue = throttled(chartMs, nowMs => drawCharts(stream.columns, nowMs, palette));
const figuresIfDue = throttled(figuresMs, showSlowThings);

function frame(pageMs) {
    const nowMs = stream.timeline.now(performance.now());
    const state = streamState(answer, stream.changedMs, performance.now());
    showState(state);
    figuresIfDue(pageMs, state, nowMs);
    gazeIfDue(pageMs, nowMs);
    chartsIfDue(pageMs, nowMs);
    requestAnimationFrame(frame);
}

startLanguage();
startControls();
onPaletteChange(() => { palette = readPalette(); });
new Poller(take);
requestAnimationFrame(frame);
