// @ts-check
import { drawScreen } from '../shared/canvas.js';
import { screenIn } from '../shared/screen.js';
import { drawMarkerSymbols } from './markers_view.js';
import { drawStimulus } from './stimulus_image.js';
/** @import { Surface } from '../shared/canvas.js' */
/** @import { RecordView } from './record_view.js' */

/** More fixations are drawn as dots, because their circles would cover each other. */
const maxCircleCount = 150;
const dotPx = 2;
const dotOpacity = 0.45;

/** Numbers are drawn only if the screen has at least this width for each fixation. */
const minNumberPx = 7;

const minRadiusPx = 4;
const maxRadiusShare = 0.05;

/** @typedef {{ x: number, y: number, radius: number }} Circle */

/**
 * Returns the radius of a fixation's circle. Between its limits, it grows with the square root of the duration.
 *
 * @param {number} durationMs
 * @param {number} screenWidth
 */
function radiusOf(durationMs, screenWidth) {
    return Math.min(minRadiusPx + Math.sqrt(durationMs) * (screenWidth / 1600), maxRadiusShare * screenWidth);
}

/**
 * Draws the fixations of the shown time range, with lines between them, and its markers. The fixations are numbered from the
 * start of the recording.
 *
 * @param {Surface} surface
 * @param {RecordView} view
 */
export function drawScanPath(surface, { fixations, firstFixation, aspect, markers, range, stimulus }) {
    const screen = screenIn(surface, aspect);
    const circles = fixations.map(({ x, y, durationMs }) => (
        { x: screen.toX(x), y: screen.toY(y), radius: radiusOf(durationMs, screen.width) }));
    drawScreen(surface, screen);
    drawStimulus(surface, screen, stimulus);
    drawLines(surface, circles);
    if (circles.length > maxCircleCount) drawDots(surface, circles);
    else drawCircles(surface, circles);
    if (showsNumbers(circles.length, surface, aspect)) drawNumbers(surface, circles, firstFixation);
    drawMarkerSymbols(surface, screen, markers, range);
}

/**
 * Returns whether the numbers of the fixations are drawn.
 *
 * @param {number} count
 * @param {{ width: number, height: number }} size of the canvas
 * @param {number} aspect
 */
export function showsNumbers(count, size, aspect) {
    return count * minNumberPx <= screenIn(size, aspect).width;
}

/**
 * @param {Surface} surface
 * @param {Circle[]} circles
 */
function drawLines({ context, palette }, circles) {
    context.strokeStyle = palette.accent;
    context.globalAlpha = Math.min(0.55, Math.max(60 / circles.length, 0.04));
    context.lineWidth = 1;
    context.beginPath();
    for (const { x, y } of circles) context.lineTo(x, y);
    context.stroke();
    context.globalAlpha = 1;
}

/**
 * @param {Surface} surface
 * @param {Circle[]} circles
 */
function drawDots({ context, palette }, circles) {
    context.fillStyle = palette.accent;
    context.globalAlpha = dotOpacity;
    for (const { x, y } of circles) context.fillRect(x - dotPx / 2, y - dotPx / 2, dotPx, dotPx);
    context.globalAlpha = 1;
}

/**
 * @param {Surface} surface
 * @param {Circle[]} circles
 */
function drawCircles({ context, palette }, circles) {
    context.lineWidth = 1.5;
    context.strokeStyle = context.fillStyle = palette.accent;
    for (const { x, y, radius } of circles) {
        context.beginPath();
        context.arc(x, y, radius, 0, 2 * Math.PI);
        context.globalAlpha = 0.28;
        context.fill();
        context.globalAlpha = 1;
        context.stroke();
    }
}

/**
 * Draws numbers with an outline in the screen's colour, so that they are legible on circles and lines.
 *
 * @param {Surface} surface
 * @param {Circle[]} circles
 * @param {number} first
 */
function drawNumbers({ context, palette }, circles, first) {
    context.font = palette.font;
    context.textAlign = 'center';
    context.textBaseline = 'middle';
    context.lineJoin = 'round';
    context.lineWidth = 3;
    context.strokeStyle = palette.screen;
    context.fillStyle = palette.ink;
    circles.forEach(({ x, y }, i) => {
        const number = String(first + i + 1);
        context.strokeText(number, x, y);
        context.fillText(number, x, y);
    });
}
