// @ts-check
import { onPaletteChange, prepareCanvas, readPalette } from '../shared/canvas.js';
import { allOf, byId, canvasById, element, setText } from '../shared/dom.js';
import { downloadPng } from '../shared/download.js';
import { onLanguage, text } from '../shared/language.js';
import { canvasAspect } from '../shared/screen.js';
import { copyText } from './copy_text.js';
import { fileNameOf } from './file_names.js';
import { currentLimits, startLimits } from './limit_fields.js';
import { methodsText } from './methods_text.js';
import { qualityOf } from './quality_of.js';
import { drawPicture } from './quality_picture.js';
import { imageOf } from './quality_png.js';
import { tableParts } from './quality_view_table.js';
import { remarksOf } from './remarks.js';
import { factsOf, legendOf, titleOf } from './result_texts.js';
import { saveJson, saveTsv } from './save_files.js';
import { verdictOf } from './verdict.js';
import { headlineOf, reasonsOf } from './verdict_texts.js';
/** @import { PictureOptions } from './quality_picture.js' */
/** @import { Validation } from './validation.js' */
/** @import { QualityTable } from './verdict.js' */

/** The shown validation with its measures. @type {{ validation: Validation, table: QualityTable } | null} */
let shown = null;
let palette = readPalette();
let enlargement = 3;
let frameRequest = 0;

/**
 * Connects the section.
 *
 * @param {object} requests called when the user asks for another validation or calibration
 * @param {() => void} requests.repeat
 * @param {() => void} requests.calibrateAgain
 */
export function startResult({ repeat, calibrateAgain }) {
    startLimits(write);
    connect('repeat', repeat);
    connect('calibrate-again', calibrateAgain);
    connect('save-tsv', () => shown && saveTsv(shown.validation));
    connect('save-json', () => shown && saveJson(shown.validation, currentLimits()));
    connect('save-png', savePng);
    connect('print', () => print());
    connect('copy-methods', copyMethods);
    for (const button of enlargementButtons()) button.addEventListener('click', () => enlarge(Number(button.dataset.enlargement)));
    onLanguage(write);
    onPaletteChange(() => {
        palette = readPalette();
        // Printing does not wait for the next frame.
        draw();
    });
    new ResizeObserver(requestPicture).observe(byId('picture'));
}

/**
 * @param {string} id
 * @param {() => void} clicked
 */
function connect(id, clicked) {
    byId(id).addEventListener('click', clicked);
}

/**
 * Shows a validation. Its windows must be usable; see windowsOf().
 *
 * @param {Validation} validation
 * @param {boolean} isRepeatable whether it was measured with the values of the set-up, which Repeat uses
 */
export function showResult(validation, isRepeatable) {
    const { geometry, circumstances } = validation;
    shown = { validation, table: qualityOf(validation) };
    byId('repeat').hidden = !isRepeatable;
    byId('calibrate-again').hidden = circumstances.fileName !== '';
    byId('picture').style.aspectRatio = String(canvasAspect(geometry.widthMm / geometry.heightMm));
    byId('result').hidden = false;
    setText('copy-note', '');
    write();
    scrollTo(0, 0);
    byId('result-title').focus({ preventScroll: true });
}

export function hideResult() {
    shown = null;
    byId('result').hidden = true;
}

/** Writes all texts and draws the picture. */
function write() {
    if (!shown) return;
    const { validation, table } = shown;
    setText('result-title', titleOf(validation));
    setText('result-facts', factsOf(validation));
    byId('quality-table').replaceChildren(...tableParts(table, currentLimits()));
    byId('remarks').replaceChildren(...remarksOf(validation).map(remark => element('li', remark)));
    setText('methods-text', methodsText(validation, table));
    setText('picture-legend', legendOf(pictureOptions()).join(' '));
    writeVerdict();
    requestPicture();
}

function writeVerdict() {
    if (!shown) return;
    const verdict = verdictOf(shown.table, currentLimits());
    byId('verdict').dataset.level = verdict.level;
    setText('verdict-headline', headlineOf(verdict));
    byId('verdict-reasons').replaceChildren(...reasonsOf(verdict).map(reason => element('p', reason)));
}

function requestPicture() {
    cancelAnimationFrame(frameRequest);
    frameRequest = requestAnimationFrame(draw);
}

function draw() {
    if (shown) drawPicture(prepareCanvas(canvasById('picture'), palette), shown.validation, shown.table, pictureOptions());
}

/** @returns {PictureOptions} */
function pictureOptions() {
    return { enlargement, ringDeg: currentLimits().accuracy };
}

function enlargementButtons() {
    return allOf('[data-enlargement]');
}

/** @param {number} chosen */
function enlarge(chosen) {
    enlargement = chosen;
    for (const button of enlargementButtons())
        button.setAttribute('aria-pressed', String(Number(button.dataset.enlargement) === enlargement));
    setText('picture-legend', legendOf(pictureOptions()).join(' '));
    requestPicture();
}

function savePng() {
    if (!shown) return;
    const { validation, table } = shown;
    const verdict = verdictOf(table, currentLimits());
    downloadPng(imageOf(validation, table, verdict, pictureOptions(), palette), `${fileNameOf(validation)}.png`);
}

async function copyMethods() {
    setText('copy-note', text(await copyText(byId('methods-text')) ? 'copied' : 'notCopied'));
}
