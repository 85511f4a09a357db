// @ts-check
import { drawScreen } from '../shared/canvas.js';
import { pixelsToDegrees } from '../shared/data_quality.js';
import { windowsOf } from '../shared/exchange_file.js';
import { number } from '../shared/language.js';
import { screenIn } from '../shared/screen.js';
/** @import { Surface } from '../shared/canvas.js' */
/** @import { DataQuality, Geometry } from '../shared/data_quality.js' */
/** @import { EyeGaze, TargetWindow } from '../shared/exchange_file.js' */
/** @import { Screen } from '../shared/screen.js' */
/** @import { Validation } from './validation.js' */
/** @import { QualityTable } from './verdict.js' */

/**
 * How the picture is drawn. Distances from a target are drawn `enlargement` times as large as the screen. A ring around
 * each target has the radius `ringDeg`.
 *
 * @typedef {{ enlargement: number, ringDeg: number }} PictureOptions
 */

/** A position in pixels from the screen's centre, or in the canvas. @typedef {{ x: number, y: number }} Point */
/** @typedef {(point: Point) => Point} Place Returns where a position near a target is drawn. */

/** More samples of an eye would hide each other, and delay the page. */
const maxDotCount = 20000;

const outlinePointCount = 48;
const targetRadius = 6;
const headLength = 8;
const headAngle = 0.45;

/**
 * Draws the screen with the targets, the gaze samples, the mean offset of each eye as an arrow, and its BCEA as an ellipse.
 *
 * @param {Surface} surface
 * @param {Validation} validation
 * @param {QualityTable} table
 * @param {PictureOptions} options
 */
export function drawPicture(surface, { samples, geometry }, table, { enlargement, ringDeg }) {
    const { context, palette, width, height } = surface;
    const screen = screenIn(surface, geometry.widthMm / geometry.heightMm);
    drawScreen(surface, screen);
    const toCanvas = placeOn(screen, geometry);
    const windows = windowsOf(samples);
    const eyes = table.gazes.flatMap(({ name, targets }) => {
        const gaze = name === 'combined' ? null : samples[name];
        return gaze && name !== 'combined' ? [{ gaze, targets, colour: palette[name] }] : [];
    });
    const placeNear = (/** @type {TargetWindow} */ target) => (/** @type {Point} */ { x, y }) =>
        toCanvas({ x: target.x + enlargement * (x - target.x), y: target.y + enlargement * (y - target.y) });

    const ring = { orientation: 0, majorAxis: ringDeg, minorAxis: ringDeg };
    const ringAround = (/** @type {Point} */ target) => ellipseOutline(target, ring, geometry);

    context.save();
    context.beginPath();
    context.rect(0, 0, width, height);
    context.clip();
    for (const target of windows) drawOutline(context, ringAround(target).map(placeNear(target)), palette.edge, 1);
    const step = Math.ceil(samples.timestampMs.length / maxDotCount);
    for (const { gaze, colour } of eyes) {
        for (const target of windows) drawDots(context, gaze, target, placeNear(target), colour, step);
    }
    for (const { gaze, targets, colour } of eyes) {
        windows.forEach((target, i) => {
            const mean = meanOf(gaze, target);
            const { bcea, accuracy } = targets[i].quality;
            drawEllipse(context, ellipseOutline(mean, bcea, geometry).map(placeNear(target)), colour);
            if (accuracy) drawArrow(surface, toCanvas(target), placeNear(target)(mean), colour);
        });
    }
    for (const target of windows) drawTarget(surface, target.targetId, toCanvas(target));
    context.restore();
}

/**
 * Returns a function that converts pixels from the screen's centre to positions in the canvas.
 *
 * @param {Screen} screen
 * @param {Geometry} geometry
 * @returns {Place}
 */
function placeOn(screen, { widthPx, heightPx }) {
    return ({ x, y }) => ({ x: screen.toX(50 + (100 * x) / widthPx), y: screen.toY(50 + (100 * y) / heightPx) });
}

/**
 * Draws a cross with the id of the target.
 *
 * @param {Surface} surface
 * @param {number} targetId
 * @param {Point} position
 */
function drawTarget({ context, palette }, targetId, { x, y }) {
    context.strokeStyle = palette.gaze;
    context.lineWidth = 1.5;
    context.beginPath();
    for (const [dx, dy] of [[targetRadius, 0], [0, targetRadius]]) {
        context.moveTo(x - dx, y - dy);
        context.lineTo(x + dx, y + dy);
    }
    context.stroke();
    Object.assign(context, { font: palette.font, textAlign: 'left', textBaseline: 'top', lineJoin: 'round' });
    Object.assign(context, { strokeStyle: palette.screen, fillStyle: palette.ink, lineWidth: 3 });
    for (const write of /** @type {const} */ (['strokeText', 'fillText']))
        context[write](number(targetId), x + targetRadius - 1, y + targetRadius - 3);
}

/**
 * @param {CanvasRenderingContext2D} context
 * @param {EyeGaze} gaze
 * @param {TargetWindow} target
 * @param {Place} place
 * @param {string} colour
 * @param {number} step only each `step`th sample is drawn
 */
function drawDots(context, gaze, { from, to }, place, colour, step) {
    context.fillStyle = colour;
    context.globalAlpha = 0.35;
    for (let i = from; i < to; i += step) {
        const { x, y } = place({ x: gaze.x[i], y: gaze.y[i] });
        if (!Number.isNaN(x + y)) context.fillRect(x - 1, y - 1, 2, 2);
    }
    context.globalAlpha = 1;
}

/**
 * @param {CanvasRenderingContext2D} context
 * @param {Point[]} outline
 * @param {string} colour
 */
function drawEllipse(context, outline, colour) {
    context.globalAlpha = 0.12;
    context.fillStyle = colour;
    drawOutline(context, outline, colour, 1.5, true);
}

/**
 * @param {CanvasRenderingContext2D} context
 * @param {Point[]} points
 * @param {string} colour
 * @param {number} lineWidth
 * @param {boolean} isFilled
 */
function drawOutline(context, points, colour, lineWidth, isFilled = false) {
    context.strokeStyle = colour;
    context.lineWidth = lineWidth;
    context.beginPath();
    points.forEach(({ x, y }, i) => (i === 0 ? context.moveTo(x, y) : context.lineTo(x, y)));
    if (isFilled) context.fill();
    context.globalAlpha = 1;
    context.stroke();
}

/**
 * Draws an arrow with an edge that separates it from the samples.
 *
 * @param {Surface} surface
 * @param {Point} from
 * @param {Point} to
 * @param {string} colour
 */
function drawArrow({ context, palette }, from, to, colour) {
    const angle = Math.atan2(to.y - from.y, to.x - from.x);
    const head = Math.min(headLength, Math.hypot(to.x - from.x, to.y - from.y) / 2);
    context.lineCap = 'round';
    context.beginPath();
    context.moveTo(from.x, from.y);
    context.lineTo(to.x, to.y);
    for (const side of [angle - headAngle, angle + headAngle]) {
        context.moveTo(to.x, to.y);
        context.lineTo(to.x - head * Math.cos(side), to.y - head * Math.sin(side));
    }
    for (const [style, lineWidth] of /** @type {const} */ ([[palette.screen, 5], [colour, 2]])) {
        context.strokeStyle = style;
        context.lineWidth = lineWidth;
        context.stroke();
    }
}

/**
 * Returns the mean position of the gaze in a window; NaN if it has no valid sample.
 *
 * @param {EyeGaze} gaze
 * @param {TargetWindow} target
 * @returns {Point}
 */
function meanOf(gaze, { from, to }) {
    const sum = { x: 0, y: 0, count: 0 };
    for (let i = from; i < to; ++i) {
        if (Number.isNaN(gaze.x[i]) || Number.isNaN(gaze.y[i])) continue;
        sum.x += gaze.x[i];
        sum.y += gaze.y[i];
        ++sum.count;
    }
    return { x: sum.x / sum.count, y: sum.y / sum.count };
}

/**
 * Returns the outline of an ellipse whose axes are in degrees, as a closed line.
 *
 * @param {Point} centre in pixels from the screen's centre, as the result
 * @param {Omit<DataQuality['bcea'], 'area'>} ellipse
 * @param {Geometry} geometry
 * @returns {Point[]}
 */
function ellipseOutline(centre, { orientation, majorAxis, minorAxis }, geometry) {
    const { azimuth: [azimuth], elevation: [elevation] } = pixelsToDegrees([centre.x], [centre.y], geometry);
    const turn = (orientation * Math.PI) / 180;
    const [cos, sin] = [Math.cos(turn), Math.sin(turn)];
    return Array.from({ length: outlinePointCount + 1 }, (_, i) => {
        const angle = (2 * Math.PI * i) / outlinePointCount;
        const [major, minor] = [majorAxis * Math.cos(angle), minorAxis * Math.sin(angle)];
        return degreesToPixels(azimuth + cos * major - sin * minor, elevation + sin * major + cos * minor, geometry);
    });
}

/**
 * The inverse of pixelsToDegrees().
 *
 * @param {number} azimuth
 * @param {number} elevation
 * @param {Geometry} geometry
 * @returns {Point}
 */
function degreesToPixels(azimuth, elevation, { widthMm, heightMm, widthPx, heightPx, distanceMm }) {
    const x = distanceMm * Math.tan((azimuth * Math.PI) / 180);
    const y = Math.hypot(x, distanceMm) * Math.tan((elevation * Math.PI) / 180);
    return { x: (x * widthPx) / widthMm, y: (y * heightPx) / heightMm };
}
