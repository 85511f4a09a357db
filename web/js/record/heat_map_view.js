import { drawScreen, screenIn } from '../shared/screen.js';

/** Red, green, blue and opacity, from rare to frequent; rare is see-through. */
const ramp = [
    [70, 120, 190, 0],
    [60, 150, 190, 110],
    [120, 190, 110, 170],
    [245, 190, 60, 215],
    [205, 40, 40, 240],
];

function colourOf(share) {
    const at = Math.min(share, 1) * (ramp.length - 1);
    const step = Math.min(Math.floor(at), ramp.length - 2);
    return ramp[step].map((part, i) => part + (ramp[step + 1][i] - part) * (at - step));
}

/** Draws what heatMapOf() has counted. */
export function drawHeatMap(context, width, height, heatMap, aspect, palette) {
    const screen = screenIn(width, height, aspect);
    drawScreen(context, screen, palette);
    context.imageSmoothingEnabled = true;
    context.drawImage(pictureOf(heatMap), screen.left, screen.top, screen.width, screen.height);
}

/** A pixel a cell. The square root shows the rare beside the frequent. */
function pictureOf({ width, height, shares }) {
    const canvas = Object.assign(document.createElement('canvas'), { width, height });
    const context = canvas.getContext('2d');
    const image = context.createImageData(width, height);
    shares.forEach((share, i) => image.data.set(colourOf(Math.sqrt(share)), 4 * i));
    context.putImageData(image, 0, 0);
    return canvas;
}
