import { prepare } from '../shared/canvas.js';
import { gapLimitMs } from '../shared/polyline.js';
import { drawScreen, placesIn, screenIn } from '../shared/screen.js';

/** How long the trail is, in ms. */
export const trailMs = 2000;

/** The trail is drawn in so many pieces, each a little fainter than the next newer one. */
const pieces = 10;

const tracks = [
    { x: 'leftX', y: 'leftY', colour: 'left', width: 1.5, radius: 4.5 },
    { x: 'rightX', y: 'rightY', colour: 'right', width: 1.5, radius: 4.5 },
    { x: 'x', y: 'y', colour: 'gaze', width: 2, radius: 10, ring: true },
];

/** Draws the screen and on it the gaze of the last two seconds before `nowMs` of the columns' time. */
export function drawGaze(canvas, columns, nowMs, aspect, palette) {
    const { context, width, height } = prepare(canvas, palette.surface);
    const screen = screenIn(width, height, aspect);
    drawScreen(context, screen, palette);
    const from = columns.indexAt(nowMs - trailMs);
    for (const track of tracks) drawTrack(context, screen, columns, from, nowMs, track, palette[track.colour]);
    context.globalAlpha = 1;
}

function drawTrack(context, screen, columns, from, nowMs, track, colour) {
    const [xs, ys] = [columns[track.x], columns[track.y]];
    const { toX, toY } = placesIn(screen);
    const { time, length } = columns;
    const limitMs = gapLimitMs(time, from, length);
    context.strokeStyle = colour;
    context.lineWidth = track.width;
    context.lineJoin = 'round';
    let begin = from;
    for (let piece = 1; piece <= pieces; ++piece) {
        const end = columns.indexAt(nowMs - trailMs + (piece * trailMs) / pieces);
        context.globalAlpha = (piece / pieces) ** 2 * 0.7;
        context.beginPath();
        // From the end of the piece before, so that they join.
        for (let i = Math.max(from + 1, begin); i < end; ++i) {
            if (time[i] - time[i - 1] > limitMs) continue;
            context.moveTo(toX(xs[i - 1]), toY(ys[i - 1]));
            context.lineTo(toX(xs[i]), toY(ys[i]));
        }
        context.stroke();
        begin = end;
    }
    drawHead(context, columns, nowMs, xs, ys, toX, toY, track, colour);
}

/** Where the gaze is at `nowMs`, unless it is lost; it fades when nothing follows. */
function drawHead(context, columns, nowMs, xs, ys, toX, toY, track, colour) {
    const last = columns.indexAt(nowMs) - 1;
    if (last < 0 || Number.isNaN(xs[last])) return;
    const age = nowMs - columns.time[last];
    context.globalAlpha = Math.min(1, Math.max(0, 1.25 - age / trailMs));
    context.beginPath();
    context.arc(toX(xs[last]), toY(ys[last]), track.radius, 0, 2 * Math.PI);
    context.fillStyle = colour;
    if (track.ring) context.stroke();
    else context.fill();
}
