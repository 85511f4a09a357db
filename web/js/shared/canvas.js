// @ts-check
/** @import { Screen } from './screen.js' */

const colourNames = /** @type {const} */ ([
    'ink', 'muted', 'line', 'surface', 'screen', 'edge', 'gaze', 'band', 'left', 'right', 'accent',
]);

/** @typedef {(typeof colourNames)[number]} Colour */
/** @typedef {Record<Colour | 'font', string>} Palette */

/**
 * A drawing area. Its unit is the CSS pixel.
 *
 * @typedef {{ context: CanvasRenderingContext2D, width: number, height: number, palette: Palette }} Surface
 */

/** Returns the style sheet's colours, which are different in light and dark mode. */
export function readPalette() {
    const style = getComputedStyle(document.documentElement);
    const colours = colourNames.map(name => [name, style.getPropertyValue(`--${name}`).trim()]);
    const font = style.getPropertyValue('--chart-font').trim();
    return /** @type {Palette} */ ({ ...Object.fromEntries(colours), font });
}

/**
 * @param {() => void} changed called after a change between light and dark mode, before printing, which is always light, and
 *     after it
 */
export function onPaletteChange(changed) {
    for (const query of ['(prefers-color-scheme: dark)', 'print']) matchMedia(query).addEventListener('change', changed);
}

/**
 * Clears a canvas, and adapts it to its size in the layout.
 *
 * @param {HTMLCanvasElement} canvas
 * @param {Palette} palette
 */
export function prepareCanvas(canvas, palette) {
    // The browser composites an opaque canvas faster.
    const surface = fittedSurface(canvas, palette, { alpha: false });
    surface.context.fillStyle = palette.surface;
    surface.context.fillRect(0, 0, surface.width, surface.height);
    return surface;
}

/**
 * Does the same with a transparent canvas above another one.
 *
 * @param {HTMLCanvasElement} canvas
 * @param {Palette} palette
 */
export function prepareOverlay(canvas, palette) {
    const surface = fittedSurface(canvas, palette, { alpha: true });
    surface.context.clearRect(0, 0, surface.width, surface.height);
    return surface;
}

/**
 * @param {HTMLCanvasElement} canvas
 * @param {Palette} palette
 * @param {CanvasRenderingContext2DSettings} settings
 * @returns {Surface}
 */
function fittedSurface(canvas, palette, settings) {
    const { clientWidth: width, clientHeight: height } = canvas;
    const ratio = window.devicePixelRatio || 1;
    const size = [Math.round(width * ratio), Math.round(height * ratio)];
    if (canvas.width !== size[0] || canvas.height !== size[1]) [canvas.width, canvas.height] = size;
    const context = /** @type {CanvasRenderingContext2D} */ (canvas.getContext('2d', settings));
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    return { context, width, height, palette };
}

/**
 * Draws the screen with lines at its quarters.
 *
 * @param {Surface} surface
 * @param {Screen} screen
 */
export function drawScreen({ context, palette }, { left, top, width, height }) {
    context.fillStyle = palette.screen;
    context.strokeStyle = palette.line;
    context.lineWidth = 1;
    context.fillRect(left, top, width, height);
    context.beginPath();
    for (const part of [0.25, 0.5, 0.75]) {
        context.moveTo(left + part * width, top);
        context.lineTo(left + part * width, top + height);
        context.moveTo(left, top + part * height);
        context.lineTo(left + width, top + part * height);
    }
    context.stroke();
    context.strokeStyle = palette.edge;
    context.strokeRect(left, top, width, height);
}
