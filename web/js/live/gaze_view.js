import { prepare } from '../shared/canvas.js';

/** How long the trail is, in ms. */
export const trailMs = 2000;

/** The trail is drawn in so many pieces, each a little fainter than the next newer one. */
const pieces = 10;

/** Gaze may leave the screen: so much of its width is shown around it. */
const margin = 0.05;

const tracks = [
    { x: 'leftX', y: 'leftY', colour: 'left', width: 1.5, radius: 4.5 },
    { x: 'rightX', y: 'rightY', colour: 'right', width: 1.5, radius: 4.5 },
    { x: 'x', y: 'y', colour: 'gaze', width: 2, radius: 10, ring: true },
];

/** Width by height of a canvas that a screen of this shape fills with its margin. */
export function canvasAspect(aspect) {
    return (1 + 2 * margin) / (1 / aspect + 2 * margin);
}

/** Draws the screen and on it the gaze of the last two seconds before `nowMs` of the columns' time. */
export function drawGaze(canvas, columns, nowMs, aspect, palette) {
    const { context, width, height } = prepare(canvas, palette.surface);
    const screen = screenIn(width, height, aspect);
    drawScreen(context, screen, palette);
    const from = columns.indexAt(nowMs - trailMs);
    for (const track of tracks) drawTrack(context, screen, columns, from, nowMs, track, palette[track.colour]);
    context.globalAlpha = 1;
}

/** The largest rectangle of this shape that leaves the margin free. */
export function screenIn(width, height, aspect) {
    const across = Math.min(width / (1 + 2 * margin), height / (1 / aspect + 2 * margin));
    const down = across / aspect;
    return { left: (width - across) / 2, top: (height - down) / 2, width: across, height: down };
}

function drawScreen(context, screen, palette) {
    context.fillStyle = palette.screen;
    context.strokeStyle = palette.line;
    context.lineWidth = 1;
    context.beginPath();
    context.rect(screen.left, screen.top, screen.width, screen.height);
    context.fill();
    context.beginPath();
    for (const part of [0.25, 0.5, 0.75]) {
        context.moveTo(screen.left + part * screen.width, screen.top);
        context.lineTo(screen.left + part * screen.width, screen.top + screen.height);
        context.moveTo(screen.left, screen.top + part * screen.height);
        context.lineTo(screen.left + screen.width, screen.top + part * screen.height);
    }
    context.stroke();
    context.strokeStyle = palette.edge;
    context.strokeRect(screen.left, screen.top, screen.width, screen.height);
}

function drawTrack(context, screen, columns, from, nowMs, track, colour) {
    const [xs, ys] = [columns[track.x], columns[track.y]];
    const toX = percent => screen.left + (percent * screen.width) / 100;
    const toY = percent => screen.top + (percent * screen.height) / 100;
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
