/** Gaze may leave the screen: so much of its width is shown around it. */
const margin = 0.05;

/** Width by height of a canvas that a screen of this shape fills with its margin. */
export function canvasAspect(aspect) {
    return (1 + 2 * margin) / (1 / aspect + 2 * margin);
}

/** The largest rectangle of this shape that leaves the margin free. */
export function screenIn(width, height, aspect) {
    const across = Math.min(width / (1 + 2 * margin), height / (1 / aspect + 2 * margin));
    const down = across / aspect;
    return { left: (width - across) / 2, top: (height - down) / 2, width: across, height: down };
}

/** The screen with lines at its quarters. */
export function drawScreen(context, screen, palette) {
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

/** How percent of the screen become places on the canvas. */
export function placesIn(screen) {
    return {
        toX: percent => screen.left + (percent * screen.width) / 100,
        toY: percent => screen.top + (percent * screen.height) / 100,
    };
}
