// @ts-check
import { onPaletteChange, prepareCanvas, readPalette } from '../shared/canvas.js';
import { allOf, byId, canvasById } from '../shared/dom.js';
import { onLanguage, startLanguage } from '../shared/language.js';
import { canvasAspect } from '../shared/screen.js';
import { openAreas, showAreas, startAreas } from './areas_card.js';
import { attach, attachedAreas } from './attachments.js';
import { fixationParameters, startDetection, useGeometryOf } from './detection_fields.js';
import { savePng } from './export_png.js';
import { showIntervals, startIntervals } from './intervals_view.js';
import { openRecording, startOpening } from './open_file.js';
import { assumedRateHz, startParameters } from './parameters.js';
import { controlRange, dragToMove, dragToSelect } from './range_control.js';
import { drawOverview, drawPupils, drawValidity, stages } from './record_charts.js';
import { showFile, showProblem, showProgress, showRange } from './record_texts.js';
import { RecordView } from './record_view.js';
import { requestedRecording, startRecordings } from './recordings.js';
import { openStimulus, startStimulus } from './stimulus_card.js';
import { between } from './time_range.js';
/** @import { Chart } from '../shared/chart.js' */
/** @import { Handlers } from './open_file.js' */
/** @import { StageMode } from './record_charts.js' */

/** The shown record file; null until one is open, and while another one is read. @type {RecordView | null} */
let view = null;
/** @type {StageMode} */
let mode = 'scanPath';
let palette = readPalette();
let frameRequest = 0;

/** Finding the fixations among more samples takes so long that the page first says so. */
const maxInstantCount = 200_000;

/** Changes of the fixations that wait until the page says so. @type {Set<(view: RecordView) => void>} */
const waitingChanges = new Set();

const charts = [
    { canvas: canvasById('overview'), draw: drawOverview, drag: dragToSelect },
    { canvas: canvasById('pupils'), draw: drawPupils, drag: dragToMove },
    { canvas: canvasById('validity'), draw: drawValidity, drag: dragToMove },
];

/** The charts as they were drawn last. @type {Map<HTMLCanvasElement, Chart>} */
const drawn = new Map();

/**
 * Calls `change` with the view, if a record file is shown, and redraws the page in the next frame.
 *
 * @param {(view: RecordView) => void} change
 */
function update(change = () => {}) {
    if (view) change(view);
    cancelAnimationFrame(frameRequest);
    frameRequest = requestAnimationFrame(draw);
}

/**
 * Does the same with a change of the fixations. In a long recording, the page first says that it takes time. Equal changes
 * that are requested in the meantime are made once.
 *
 * @param {(view: RecordView) => void} change
 */
function updateFixations(change) {
    if (!view || view.columns.length <= maxInstantCount) {
        update(change);
        return;
    }
    byId('detecting').hidden = false;
    waitingChanges.add(change);
    // The callback of the frame is called before the frame is painted.
    if (waitingChanges.size === 1) requestAnimationFrame(() => setTimeout(makeWaitingChanges));
}

function makeWaitingChanges() {
    for (const change of waitingChanges) update(change);
    waitingChanges.clear();
    byId('detecting').hidden = true;
}

const detectAgain = (/** @type {RecordView} */ shown) => shown.detect(fixationParameters());
const assumeRate = (/** @type {RecordView} */ shown) => shown.assumeRate(assumedRateHz());

function draw() {
    if (!view) return;
    stages[mode](prepareCanvas(canvasById('stage'), palette), view);
    for (const { canvas, draw: drawChart } of charts) drawn.set(canvas, drawChart(prepareCanvas(canvas, palette), view));
    showRange(view, mode);
    showIntervals(view);
    showAreas(palette);
}

/** @param {StageMode} chosen */
function chooseMode(chosen) {
    mode = chosen;
    for (const button of allOf('[data-mode]'))
        button.setAttribute('aria-pressed', String(button.dataset.mode === mode));
    update();
}

startLanguage();
startRecordings();
startDetection(() => updateFixations(detectAgain));
startAreas(() => view);
startStimulus(() => view, update);
startParameters({
    rate: () => updateFixations(assumeRate),
    range: (fromMs, toMs) => update(shown => shown.show(between(fromMs, toMs, shown.wholeMs))),
});
/** @type {Handlers} */
const opening = {
    progress: share => {
        view = null;
        showProgress(share);
    },
    record: (file, fileName, folder) => {
        useGeometryOf(file);
        view = new RecordView(file, fileName, fixationParameters(), assumedRateHz());
        byId('stage').style.aspectRatio = String(canvasAspect(view.aspect));
        byId('assumed').hidden = !view.timeless;
        openStimulus(view);
        openAreas(view, attachedAreas(fileName), folder);
        showFile(view);
        update();
    },
    problem: showProblem,
    attachments: (files, withRecord) => attach(files, view, withRecord, showProblem),
};
for (const { canvas, drag } of charts) {
    const access = () => {
        const chart = drawn.get(canvas);
        return view && chart ? { range: view.range, wholeMs: view.wholeMs, chart } : null;
    };
    controlRange(canvas, drag, access, range => update(shown => shown.show(range)));
}
startIntervals(range => update(shown => shown.show(range)));
byId('whole').addEventListener('click', () => update(shown => shown.show(shown.whole)));
byId('export').addEventListener('click', () => view && savePng(view, mode, palette));
for (const button of allOf('[data-mode]'))
    button.addEventListener('click', () => chooseMode(/** @type {StageMode} */ (button.dataset.mode)));
onLanguage(() => update(showFile));
onPaletteChange(() => {
    palette = readPalette();
    update();
});
new ResizeObserver(() => update()).observe(byId('view'));
startOpening(opening);
const requested = requestedRecording();
if (requested !== null) openRecording(requested, opening);
