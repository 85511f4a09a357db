/**
 * A fake canvas context that stores the drawn shapes and texts. Colours are the names of the palette. As on a canvas,
 * non-finite coordinates are ignored, and a lineTo() without a previous point only sets the point.
 */
class FakeContext {
    strokeStyle = '';
    fillStyle = '';
    /** [fromX, fromY, toX, toY] of the lines of each colour. */
    lines = {};
    /** [left, top, right, bottom] of the filled rectangles of each colour. */
    boxes = {};
    /** [x, y] of each circle. */
    circles = [];
    texts = [];
    #path = [];
    #point = null;

    beginPath() {
        this.#path = [];
        this.#point = null;
    }

    moveTo(x, y) {
        if (Number.isFinite(x + y)) this.#point = [x, y];
    }

    lineTo(x, y) {
        if (!Number.isFinite(x + y)) return;
        if (this.#point) this.#path.push([...this.#point, x, y]);
        this.#point = [x, y];
    }

    stroke() {
        (this.lines[this.strokeStyle] ??= []).push(...this.#path);
    }

    arc(x, y) {
        if (Number.isFinite(x + y)) this.circles.push([x, y]);
    }

    fillRect(x, y, width, height) {
        (this.boxes[this.fillStyle] ??= []).push([x, y, x + width, y + height]);
    }

    fillText(text, x, y) {
        this.texts.push({ text, x, y });
    }

    /** All characters have the same width. */
    measureText(text) {
        return { width: 6 * text.length };
    }

    strokeText() {}
    strokeRect() {}
    rect() {}
    clip() {}
    fill() {}
    save() {}
    restore() {}
}

export function fakeSurface(width, height) {
    return { context: new FakeContext(), width, height, palette: new Proxy({}, { get: (_, name) => name }) };
}
