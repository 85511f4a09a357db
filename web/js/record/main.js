import { usualAspect } from '../shared/aspect.js';
import { prepare } from '../shared/canvas.js';
import { byId } from '../shared/dom.js';
import { onLanguage, startLanguage } from '../shared/language.js';
import { onPaletteChange, readPalette } from '../shared/palette.js';
import { SampleColumns } from '../shared/sample_columns.js';
import { canvasAspect } from '../shared/screen.js';
import { savePicture } from './export_png.js';
import { findFixations } from './fixations.js';
import { heatMapOf } from './heat_map.js';
import { startOpening } from './open_file.js';
import { controlRange } from './range_control.js';
import { startParameters } from './parameters.js';
import { drawOverview, drawPupils, drawValidity } from './record_charts.js';
import { spreadTimes } from './record_builder.js';
import { showFile, showProblem, showProgress, showRange, showSummary } from './record_texts.js';
import { drawStage } from './stage.js';
import { fixationsIn, summaryOf } from './summary.js';
import { between } from './time_range.js';

/** What is shown; null until a record is open, and while another is being read. The range is in ms from the record's first sample. */
let view = null;
let palette = readPalette();
let mode = 'scanPath';
const frames = new Map();

function open(record, file) {
    view = { ...record, columns: SampleColumns.from(record.columns), fileName: file.name };
    byId('stage').style.aspectRatio = String(canvasAspect(view.aspect ?? usualAspect));
    byId('assumed').hidden = !view.timeless;
    layOutTimes();
    showFile(view);
}

/** After a change of what the times or the fixations depend on. */
function layOutTimes() {
    if (!view) return;
    const { columns } = view;
    if (view.timeless) spreadTimes(columns, parameters.assumedRateHz());
    view.wholeMs = columns.time[columns.length - 1] - columns.time[0];
    view.range = between(0, view.wholeMs, view.wholeMs);
    detect();
}

function detect() {
    if (!view) return;
    view.allFixations = findFixations(view.columns, parameters.detection(), view.aspect);
    changeRange(view.range);
}

function changeRange(range) {
    if (!view) return;
    const { first, list } = fixationsIn(view.allFixations, range);
    Object.assign(view, { range, firstFixation: first, fixations: list, heatMap: null });
    drawSoon();
}

let drawing = 0;

function drawSoon() {
    cancelAnimationFrame(drawing);
    drawing = requestAnimationFrame(draw);
}

function draw() {
    if (!view) return;
    const { columns, range } = view;
    view.summary = summaryOf(columns, view.fixations, range);
    const [from, to] = [columns.indexAt(range.fromMs), columns.indexAt(range.toMs)];
    if (mode === 'heatMap') view.heatMap ??= heatMapOf(columns, from, to, view.aspect);
    const stage = prepare(byId('stage'), palette.surface);
    drawStage(stage.context, stage.width, stage.height, mode, view, palette);
    for (const [id, drawChart] of [['overview', drawOverview], ['pupils', drawPupils], ['validity', drawValidity]]) {
        const { context, width, height } = prepare(byId(id), palette.surface);
        frames.set(byId(id), drawChart(context, width, height, view, palette));
    }
    showRange(view);
    showSummary(view, mode);
}

function chooseMode(chosen) {
    mode = chosen;
    for (const button of document.querySelectorAll('[data-mode]'))
        button.setAttribute('aria-pressed', String(button.dataset.mode === mode));
    drawSoon();
}

const rangeView = {
    get range() { return view.range; },
    get wholeMs() { return view.wholeMs; },
    frame: canvas => frames.get(canvas),
    change: changeRange,
};

const parameters = startParameters({
    detection: detect,
    rate: layOutTimes,
    range: (fromMs, toMs) => view && changeRange(between(fromMs, toMs, view.wholeMs)),
});
startLanguage();
startOpening({
    progress: share => {
        view = null;
        showProgress(share);
    },
    record: open,
    error: showProblem,
});
controlRange(byId('overview'), 'mark', rangeView);
controlRange(byId('pupils'), 'move', rangeView);
controlRange(byId('validity'), 'move', rangeView);
byId('whole').addEventListener('click', () => changeRange(between(0, view.wholeMs, view.wholeMs)));
byId('export').addEventListener('click', () => savePicture(view, mode, palette));
for (const button of document.querySelectorAll('[data-mode]'))
    button.addEventListener('click', () => chooseMode(button.dataset.mode));
onLanguage(() => {
    if (view) showFile(view);
    drawSoon();
});
onPaletteChange(() => {
    palette = readPalette();
    drawSoon();
});
new ResizeObserver(drawSoon).observe(byId('view'));
