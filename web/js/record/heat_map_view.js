// @ts-check
import { drawScreen } from '../shared/canvas.js';
import { screenIn } from '../shared/screen.js';
import { drawStimulus } from './stimulus_image.js';
/** @import { Surface } from '../shared/canvas.js' */
/** @import { HeatMap } from './heat_map.js' */
/** @import { RecordView } from './record_view.js' */

/** Red, green, blue and opacity, from the lowest to the highest share. */
const colours = [
    [70, 120, 190, 0],
    [60, 150, 190, 110],
    [120, 190, 110, 170],
    [245, 190, 60, 215],
    [205, 40, 40, 240],
];

/** @param {number} share */
function colourOf(share) {
    const position = Math.min(share, 1) * (colours.length - 1);
    const step = Math.min(Math.floor(position), colours.length - 2);
    return colours[step].map((part, i) => part + (colours[step + 1][i] - part) * (position - step));
}

/**
 * @param {Surface} surface
 * @param {RecordView} view
 */
export function drawHeatMap(surface, { heatMap, aspect, stimulus }) {
    const { context } = surface;
    const screen = screenIn(surface, aspect);
    drawScreen(surface, screen);
    drawStimulus(surface, screen, stimulus);
    context.imageSmoothingEnabled = true;
    context.drawImage(imageOf(heatMap), screen.left, screen.top, screen.width, screen.height);
}

/**
 * Returns an image with one pixel for each cell. The square root makes low shares visible.
 *
 * @param {HeatMap} heatMap
 */
function imageOf({ width, height, shares }) {
    const canvas = Object.assign(document.createElement('canvas'), { width, height });
    const context = /** @type {CanvasRenderingContext2D} */ (canvas.getContext('2d'));
    const image = context.createImageData(width, height);
    shares.forEach((share, i) => image.data.set(colourOf(Math.sqrt(share)), 4 * i));
    context.putImageData(image, 0, 0);
    return canvas;
}
