// @ts-check
import { markersIn } from './markers.js';
/** @import { Surface } from '../shared/canvas.js' */
/** @import { Chart, TimeRange } from '../shared/chart.js' */
/** @import { Screen } from '../shared/screen.js' */
/** @import { PlacedMarker } from './markers.js' */

/** Markers that are closer have short lines, so that the chart stays visible. */
const minLinePx = 8;
const shortLinePx = 6;
const lineOpacity = 0.55;

const labelGapPx = 4;
/** A label is cut before the next line, unless it would be shorter than the minimum. */
const [minLabelPx, maxLabelPx] = [50, 160];
const labelHeightPx = 14;
const labelOpacity = 0.8;
const maxLabelLength = 60;

/** More markers are drawn as dots without labels in the scan path. */
const maxSymbolCount = 300;
const [symbolPx, dotPx] = [4.5, 3];

/** A label, cut to its maximum width. @typedef {{ text: string, widthPx: number }} Label */

/**
 * Draws a line for each marker in the shown range of a chart, and labels that do not overlap. A marker with a label has a
 * long line, also if the other lines are short.
 *
 * @param {Surface} surface
 * @param {Chart} chart
 * @param {PlacedMarker[]} markers sorted by time
 * @param {TimeRange} range
 */
export function drawMarkers(surface, chart, markers, range) {
    const shown = markersIn(markers, range);
    if (shown.length === 0) return;
    const labels = chartLabels(surface, chart, shown);
    const isDense = shown.length * minLinePx > chart.width;
    const long = isDense ? labels.map(({ marker }) => marker) : shown;
    drawLines(surface, chart, shown, chart.bottom - shortLinePx);
    drawLines(surface, chart, long, chart.top);
    for (const label of labels) drawLabel(surface, label, label.left, chart.top + 1 + labelHeightPx / 2);
}

/**
 * Draws one line for each column of pixels that has markers.
 *
 * @param {Surface} surface
 * @param {Chart} chart
 * @param {PlacedMarker[]} markers
 * @param {number} top
 */
function drawLines({ context, palette }, chart, markers, top) {
    const columns = new Set(markers.map(({ timeMs }) => Math.round(chart.toX(timeMs)) + 0.5));
    context.strokeStyle = palette.ink;
    context.lineWidth = 1;
    context.globalAlpha = lineOpacity;
    context.beginPath();
    for (const x of columns) {
        context.moveTo(x, top);
        context.lineTo(x, chart.bottom);
    }
    context.stroke();
    context.globalAlpha = 1;
}

/**
 * Returns the labels for which there is room, from left to right. A label is to the right of its line, or to the left of it
 * if the chart ends there.
 *
 * @param {Surface} surface
 * @param {Chart} chart
 * @param {PlacedMarker[]} markers
 */
function chartLabels({ context, palette }, chart, markers) {
    const right = chart.left + chart.width;
    const labels = [];
    let free = chart.left;
    context.font = palette.font;
    for (const [i, marker] of markers.entries()) {
        const x = chart.toX(marker.timeMs) + labelGapPx;
        if (x < free) continue;
        const roomPx = chart.toX(markers[i + 1]?.timeMs) - x - labelGapPx;
        const label = labelOf(context, marker.text, roomPx >= minLabelPx ? roomPx : maxLabelPx);
        const left = x + label.widthPx <= right ? x : x - 2 * labelGapPx - label.widthPx;
        if (left < free) continue;
        labels.push({ ...label, marker, left });
        free = left + label.widthPx + 2 * labelGapPx;
    }
    return labels;
}

/**
 * Draws a symbol for each marker in the shown range at the gaze at that time, and labels that do not overlap.
 *
 * @param {Surface} surface
 * @param {Screen} screen
 * @param {PlacedMarker[]} markers sorted by time
 * @param {TimeRange} range
 */
export function drawMarkerSymbols(surface, screen, markers, range) {
    const points = markersIn(markers, range).flatMap(({ x, y, text }) => (
        Number.isNaN(x) ? [] : { x: screen.toX(x), y: screen.toY(y), text }));
    if (points.length > maxSymbolCount) drawDots(surface, points);
    else drawSymbols(surface, points);
}

/** @typedef {{ x: number, y: number, text: string }} Point */

/**
 * Draws one dot for each pixel that has points.
 *
 * @param {Surface} surface
 * @param {Point[]} points
 */
function drawDots({ context, palette, width }, points) {
    const pixels = new Map(points.map(({ x, y }) => [Math.round(y) * width + Math.round(x), { x, y }]));
    context.fillStyle = palette.ink;
    for (const { x, y } of pixels.values()) context.fillRect(x - dotPx / 2, y - dotPx / 2, dotPx, dotPx);
}

/**
 * Draws diamonds with labels.
 *
 * @param {Surface} surface
 * @param {Point[]} points
 */
function drawSymbols(surface, points) {
    for (const { x, y } of points) drawSymbol(surface, x, y);
    drawSymbolLabels(surface, points);
}

/**
 * @param {Surface} surface
 * @param {number} x
 * @param {number} y
 */
function drawSymbol({ context, palette }, x, y) {
    context.beginPath();
    context.moveTo(x, y - symbolPx);
    for (const [stepX, stepY] of [[1, 0], [0, 1], [-1, 0], [0, -1]]) context.lineTo(x + stepX * symbolPx, y + stepY * symbolPx);
    context.lineWidth = 2;
    context.strokeStyle = palette.screen;
    context.fillStyle = palette.ink;
    context.stroke();
    context.fill();
}

/**
 * @param {Surface} surface
 * @param {Point[]} points
 */
function drawSymbolLabels(surface, points) {
    const { context, palette, width } = surface;
    /** @type {{ left: number, right: number, y: number }[]} */
    const taken = [];
    context.font = palette.font;
    for (const { x, y, text } of points) {
        const label = labelOf(context, text, maxLabelPx);
        const gap = symbolPx + labelGapPx;
        const left = x + gap + label.widthPx <= width ? x + gap : x - gap - label.widthPx;
        const box = { left, right: left + label.widthPx, y };
        const overlaps = taken.some(other => (
            box.left < other.right && other.left < box.right && Math.abs(y - other.y) < labelHeightPx));
        if (overlaps) continue;
        taken.push(box);
        drawLabel(surface, label, left, y);
    }
}

/**
 * @param {CanvasRenderingContext2D} context with its font
 * @param {string} text
 * @param {number} roomPx
 * @returns {Label}
 */
function labelOf(context, text, roomPx) {
    const maxPx = Math.min(roomPx, maxLabelPx);
    const characters = [...text.slice(0, 2 * maxLabelLength).replace(/\s+/g, ' ')];
    const isTooLong = (/** @type {string} */ label) => context.measureText(label).width > maxPx;
    let label = characters.join('');
    while (characters.length > maxLabelLength || isTooLong(label)) {
        characters.pop();
        label = `${characters.join('').trimEnd()}…`;
    }
    return { text: label, widthPx: context.measureText(label).width };
}

/**
 * Draws a text with a background, so that it is legible on lines and bars.
 *
 * @param {Surface} surface
 * @param {Label} label
 * @param {number} left
 * @param {number} middle
 */
function drawLabel({ context, palette }, { text, widthPx }, left, middle) {
    context.font = palette.font;
    context.textAlign = 'left';
    context.textBaseline = 'middle';
    context.fillStyle = palette.surface;
    context.globalAlpha = labelOpacity;
    context.fillRect(left - 2, middle - labelHeightPx / 2, widthPx + 4, labelHeightPx);
    context.globalAlpha = 1;
    context.fillStyle = palette.ink;
    context.fillText(text, left, middle);
}
