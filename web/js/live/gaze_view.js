// @ts-check
import { drawScreen } from '../shared/canvas.js';
import { gapLimitMs } from '../shared/polyline.js';
import { screenIn } from '../shared/screen.js';
/** @import { Colour, Surface } from '../shared/canvas.js' */
/** @import { ColumnName, SampleColumns } from '../shared/sample_columns.js' */
/** @import { Screen } from '../shared/screen.js' */

const trailMs = 2000;

/** The trail is drawn in pieces, because its opacity increases from the oldest piece to the newest. */
const pieceCount = 10;

/** @typedef {{ x: ColumnName, y: ColumnName, colour: Colour, width: number, radius: number, ring?: boolean }} Track */

/** @type {Track[]} */
const tracks = [
    { x: 'leftX', y: 'leftY', colour: 'left', width: 1.5, radius: 4.5 },
    { x: 'rightX', y: 'rightY', colour: 'right', width: 1.5, radius: 4.5 },
    { x: 'x', y: 'y', colour: 'gaze', width: 2, radius: 10, ring: true },
];

/**
 * Draws the screen, and the gaze of the two seconds before `nowMs`.
 *
 * @param {Surface} surface
 * @param {SampleColumns} columns
 * @param {number} nowMs in the columns' time
 * @param {number} aspect
 */
export function drawGaze(surface, columns, nowMs, aspect) {
    const { context, palette } = surface;
    const screen = screenIn(surface, aspect);
    drawScreen(surface, screen);
    context.lineJoin = 'round';
    for (const track of tracks) {
        context.strokeStyle = context.fillStyle = palette[track.colour];
        context.lineWidth = track.width;
        drawTrail(context, screen, columns, track, nowMs);
        drawHead(context, screen, columns, track, nowMs);
    }
    context.globalAlpha = 1;
}

/**
 * @param {CanvasRenderingContext2D} context
 * @param {Screen} screen
 * @param {SampleColumns} columns
 * @param {Track} track
 * @param {number} nowMs
 */
function drawTrail(context, { toX, toY }, columns, track, nowMs) {
    const { time, [track.x]: x, [track.y]: y } = columns;
    const from = columns.indexAt(nowMs - trailMs);
    const limitMs = gapLimitMs(time, from, columns.length);
    let start = from + 1;
    for (let piece = 1; piece <= pieceCount; ++piece) {
        const end = columns.indexAt(nowMs - trailMs + (piece * trailMs) / pieceCount);
        context.globalAlpha = (piece / pieceCount) ** 2 * 0.7;
        context.beginPath();
        for (let i = start; i < end; ++i) {
            // A canvas ignores points with NaN, so a single polyline would continue across the loss.
            if (Number.isNaN(x[i - 1]) || Number.isNaN(x[i]) || time[i] - time[i - 1] > limitMs) continue;
            context.moveTo(toX(x[i - 1]), toY(y[i - 1]));
            context.lineTo(toX(x[i]), toY(y[i]));
        }
        context.stroke();
        start = Math.max(start, end);
    }
}

/**
 * Draws a dot or a ring at the position in the newest sample, unless the position is missing. The mark fades if no new
 * samples arrive.
 *
 * @param {CanvasRenderingContext2D} context
 * @param {Screen} screen
 * @param {SampleColumns} columns
 * @param {Track} track
 * @param {number} nowMs
 */
function drawHead(context, { toX, toY }, columns, track, nowMs) {
    const last = columns.indexAt(nowMs) - 1;
    const [x, y] = [columns[track.x][last], columns[track.y][last]];
    if (last < 0 || Number.isNaN(x)) return;
    const ageMs = nowMs - columns.time[last];
    context.globalAlpha = Math.min(1, Math.max(0, 1.25 - ageMs / trailMs));
    context.beginPath();
    context.arc(toX(x), toY(y), track.radius, 0, 2 * Math.PI);
    if (track.ring) context.stroke();
    else context.fill();
}
