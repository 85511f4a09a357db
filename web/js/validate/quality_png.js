// @ts-check
import { number, quantity, text } from '../shared/language.js';
import { canvasAspect } from '../shared/screen.js';
import { drawPicture } from './quality_picture.js';
import { factsOf, legendOf, titleOf } from './result_texts.js';
import { headlineOf } from './verdict_texts.js';
/** @import { Palette } from '../shared/canvas.js' */
/** @import { GazeQuality } from '../shared/quality_table.js' */
/** @import { PictureOptions } from './quality_picture.js' */
/** @import { Validation } from './validation.js' */
/** @import { QualityTable, Verdict } from './verdict.js' */

/** Lengths in units of `scale` pixels of the image. */
const [width, edge, scale] = [1000, 24, 2];
const [titleHeight, lineHeight] = [84, 22];
const innerWidth = width - 2 * edge;

/**
 * Returns an image of a validation: its labels, the verdict, the picture of the screen, and the means of each eye.
 *
 * @param {Validation} validation
 * @param {QualityTable} table
 * @param {Verdict} verdict
 * @param {PictureOptions} options
 * @param {Palette} palette
 */
export function imageOf(validation, table, verdict, options, palette) {
    const { widthMm, heightMm } = validation.geometry;
    const pictureHeight = Math.round(innerWidth / canvasAspect(widthMm / heightMm));
    const height = titleHeight + pictureHeight + lineHeight * (table.gazes.length + 2) + edge;
    const canvas = Object.assign(document.createElement('canvas'), { width: width * scale, height: height * scale });
    const context = /** @type {CanvasRenderingContext2D} */ (canvas.getContext('2d'));
    context.scale(scale, scale);
    context.fillStyle = palette.surface;
    context.fillRect(0, 0, width, height);

    const write = (/** @type {string} */ content, /** @type {number} */ y, /** @type {string} */ colour, font = '13px') => {
        Object.assign(context, {
            font: palette.font.replace(/^\d+px/, font), fillStyle: colour, textAlign: 'left', textBaseline: 'alphabetic',
        });
        context.fillText(content, edge, y, innerWidth);
    };
    write(titleOf(validation), 32, palette.ink, '600 18px');
    write(headlineOf(verdict), 54, palette.ink, '600 14px');
    write(factsOf(validation), 74, palette.muted);
    context.translate(edge, titleHeight);
    drawPicture({ context, width: innerWidth, height: pictureHeight, palette }, validation, table, options);
    context.translate(-edge, pictureHeight);
    table.gazes.forEach((gaze, i) =>
        write(figuresOf(gaze), lineHeight * (i + 1), gaze.name === 'combined' ? palette.ink : palette[gaze.name]));
    legendOf(options).forEach((line, i) => write(line, lineHeight * (table.gazes.length + i + 1), palette.muted));
    return canvas;
}

/** @param {GazeQuality} gaze */
function figuresOf({ name, mean }) {
    const { accuracy, rmsS2s, std, bcea } = mean;
    const labels = /** @type {const} */ ({ left: 'leftEye', right: 'rightEye', combined: 'combinedGaze' });
    const degrees = (/** @type {number} */ value) => quantity('degrees', value, 2);
    const figures = [
        text('pngAccuracy', { value: accuracy ? degrees(accuracy.offset) : text('notEnoughData') }),
        `RMS-S2S ${degrees(rmsS2s.total)}`, `STD ${degrees(std.total)}`,
        text('pngBcea', { value: Number.isFinite(bcea.area) ? number(bcea.area, 3) : text('unknown') }),
        text('pngLoss', { value: quantity('percent', mean.dataLossPercent, 1) }),
    ];
    if (Number.isFinite(mean.dataLossFromExpectedPercent))
        figures.push(text('pngExpectedLoss', { value: quantity('percent', mean.dataLossFromExpectedPercent, 1) }));
    return `${text(labels[name])}: ${figures.join('  ·  ')}`;
}
