import { drawScreen, placesIn, screenIn } from '../shared/screen.js';

/** More fixations than this are dots, each with so much opacity, or they would be a blot. */
const mostCircles = 150;
const dotPx = 2;
const dotOpacity = 0.45;

/** So much of the screen's width is needed for each number to be read. */
const numberPx = 7;

const smallestPx = 4;
const largestShare = 0.05;

/** The radius of a fixation's circle: its area is in proportion to the duration, up to a limit. */
function radiusOf(durationMs, screenWidth) {
    return Math.min(smallestPx + Math.sqrt(durationMs) * (screenWidth / 1600), largestShare * screenWidth);
}

/**
 * Draws the fixations of a range, in their order, with lines between them.
 *
 * @param first how many fixations the record has before them: their numbers count from its beginning
 */
export function drawScanPath(context, width, height, fixations, first, aspect, palette) {
    const screen = screenIn(width, height, aspect);
    drawScreen(context, screen, palette);
    const { toX, toY } = placesIn(screen);
    const places = fixations.map(({ x, y, durationMs }) => (
        { x: toX(x), y: toY(y), radius: radiusOf(durationMs, screen.width) }));
    drawWay(context, places, palette);
    if (places.length > mostCircles) drawDots(context, places, palette);
    else drawCircles(context, places, palette);
    if (showsNumbers(places.length, width, height, aspect)) drawNumbers(context, places, first, palette);
}

/** Whether all fixations of so many are drawn with their numbers on a canvas of this width. */
export function showsNumbers(count, width, height, aspect) {
    return count * numberPx <= screenIn(width, height, aspect).width;
}

function drawDots(context, places, palette) {
    context.fillStyle = palette.accent;
    context.globalAlpha = dotOpacity;
    for (const { x, y } of places) context.fillRect(x - dotPx / 2, y - dotPx / 2, dotPx, dotPx);
    context.globalAlpha = 1;
}

function drawWay(context, places, palette) {
    context.strokeStyle = palette.accent;
    // The more there are, the fainter, as long as they can be seen.
    context.globalAlpha = Math.min(0.55, Math.max(60 / places.length, 0.04));
    context.lineWidth = 1;
    context.beginPath();
    for (const { x, y } of places) context.lineTo(x, y);
    context.stroke();
    context.globalAlpha = 1;
}

function drawCircles(context, places, palette) {
    context.lineWidth = 1.5;
    for (const { x, y, radius } of places) {
        context.beginPath();
        context.arc(x, y, radius, 0, 2 * Math.PI);
        context.globalAlpha = 0.28;
        context.fillStyle = palette.accent;
        context.fill();
        context.globalAlpha = 1;
        context.strokeStyle = palette.accent;
        context.stroke();
    }
}

/** With a rim in the screen's colour, so that they can be read on circles and lines. */
function drawNumbers(context, places, first, palette) {
    context.font = palette.font;
    context.textAlign = 'center';
    context.textBaseline = 'middle';
    context.lineJoin = 'round';
    context.lineWidth = 3;
    context.strokeStyle = palette.screen;
    context.fillStyle = palette.ink;
    places.forEach(({ x, y }, i) => {
        const number = String(first + i + 1);
        context.strokeText(number, x, y);
        context.fillText(number, x, y);
    });
}
