// @ts-check
import { downloadPng } from '../shared/download.js';
import { number, text } from '../shared/language.js';
import { canvasAspect } from '../shared/screen.js';
import { drawAreas } from './area_drawing.js';
import { drawPupils, drawValidity, stages } from './record_charts.js';
import { figuresOf } from './record_texts.js';
/** @import { Colour, Palette, Surface } from '../shared/canvas.js' */
/** @import { TextKey } from '../shared/language.js' */
/** @import { StageMode } from './record_charts.js' */
/** @import { RecordView } from './record_view.js' */

/** Lengths. One unit is `scale` pixels of the image. */
const [width, edge, scale] = [1000, 24, 2];
const [titleHeight, chartHeight, captionHeight] = [64, 150, 24];
const innerWidth = width - 2 * edge;

/** @typedef {[TextKey, Colour][]} Captions Texts with their colours. */

/** @type {{ draw: (surface: Surface, view: RecordView) => void, captions: Captions }[]} */
const charts = [
    { draw: drawPupils, captions: [['chartPupil', 'ink'], ['leftEye', 'left'], ['rightEye', 'right']] },
    { draw: drawValidity, captions: [['chartValid', 'ink']] },
];

/**
 * Saves the shown range and its figures as a PNG file with the base name of the record file.
 *
 * @param {RecordView} view
 * @param {StageMode} mode
 * @param {Palette} palette
 */
export function savePng(view, mode, palette) {
    return downloadPng(imageOf(view, mode, palette), `${view.fileName.replace(/\.csv$/i, '')}.png`);
}

/**
 * @param {RecordView} view
 * @param {StageMode} mode
 * @param {Palette} palette
 */
function imageOf(view, mode, palette) {
    const stageHeight = Math.round(innerWidth / canvasAspect(view.aspect));
    const height = titleHeight + stageHeight + charts.length * (captionHeight + chartHeight) + edge;
    const canvas = Object.assign(document.createElement('canvas'), { width: width * scale, height: height * scale });
    const context = /** @type {CanvasRenderingContext2D} */ (canvas.getContext('2d'));
    context.scale(scale, scale);
    context.fillStyle = palette.surface;
    context.fillRect(0, 0, width, height);
    drawTitle(context, view, palette);
    context.translate(edge, titleHeight);
    const stage = { context, width: innerWidth, height: stageHeight, palette };
    stages[mode](stage, view);
    drawAreas(stage, view);
    context.translate(0, stageHeight);
    for (const { draw, captions } of charts) {
        drawCaptions(context, captions, palette);
        context.translate(0, captionHeight);
        draw({ context, width: innerWidth, height: chartHeight, palette }, view);
        context.translate(0, chartHeight);
    }
    return canvas;
}

/**
 * @param {CanvasRenderingContext2D} context
 * @param {RecordView} view
 * @param {Palette} palette
 */
function drawTitle(context, view, palette) {
    const { fromMs, toMs } = view.range;
    const seconds = (/** @type {number} */ ms) => text('seconds', { value: number(ms / 1000, 1) });
    const { rate, valid, 'fixation-count': count, 'mean-fixation': mean } = figuresOf(view);
    const figures = [
        `${seconds(fromMs)} – ${seconds(toMs)}`, rate, `${text('validShare')}: ${valid}`,
        `${text('fixations')}: ${count}`, `${text('meanFixation')}: ${mean}`,
        text(view.parameters.method === 'velocity' ? 'velocityMethod' : 'dispersionMethod'),
    ];
    write(context, view.fileName, edge, 30, palette.ink, fontOf(palette, '600 17px'));
    write(context, figures.join('  ·  '), edge, 52, palette.muted, fontOf(palette, '13px'));
}

/**
 * @param {CanvasRenderingContext2D} context
 * @param {Captions} captions
 * @param {Palette} palette
 */
function drawCaptions(context, captions, palette) {
    let x = 0;
    for (const [key, colour] of captions)
        x += write(context, text(key), x, captionHeight - 6, palette[colour], fontOf(palette, '600 13px')) + edge;
}

/**
 * Returns the charts' font with another weight and size.
 *
 * @param {Palette} palette
 * @param {string} size
 */
function fontOf({ font }, size) {
    return font.replace(/^\d+px/, size);
}

/**
 * Writes a line of text and returns its width.
 *
 * @param {CanvasRenderingContext2D} context
 * @param {string} content
 * @param {number} x
 * @param {number} y
 * @param {string} colour
 * @param {string} font
 */
function write(context, content, x, y, colour, font) {
    Object.assign(context, { font, fillStyle: colour, textAlign: 'left', textBaseline: 'alphabetic' });
    context.fillText(content, x, y, innerWidth);
    return context.measureText(content).width;
}
