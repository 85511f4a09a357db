/** Cells across the screen; as many down as make them square. */
const across = 160;

/** Half the width of the moving average, in cells, and how often it is taken, so that its corners wear off. */
const blurCells = 2;
const passes = 5;

/**
 * How often the gaze was where, smoothed, as shares of the most frequented cell.
 *
 * @returns { width, height, shares }: rows from the top, each from the left
 */
export function heatMapOf(columns, from, to, aspect) {
    const [width, height] = [across, Math.round(across / aspect)];
    let cells = countIn(columns, from, to, width, height);
    for (let pass = 0; pass < passes; ++pass) {
        cells = blurred(cells, width, height, 1, width);
        cells = blurred(cells, height, width, width, 1);
    }
    const most = cells.reduce((a, b) => Math.max(a, b), 0);
    return { width, height, shares: most > 0 ? cells.map(count => count / most) : cells };
}

/** Gaze beyond the screen is left out. */
function countIn(columns, from, to, width, height) {
    const cells = new Float32Array(width * height);
    for (let i = from; i < to; ++i) {
        const column = Math.floor((columns.x[i] * width) / 100);
        const row = Math.floor((columns.y[i] * height) / 100);
        if (column >= 0 && column < width && row >= 0 && row < height) ++cells[row * width + column];
    }
    return cells;
}

/** The moving average along one direction: lines of `length` cells, `step` apart, and the lines `lineStep` apart. */
function blurred(cells, length, lines, step, lineStep) {
    const result = new Float32Array(cells.length);
    for (let line = 0; line < lines; ++line) {
        const at = i => (i >= 0 && i < length ? cells[line * lineStep + i * step] : 0);
        let sum = 0;
        for (let i = -blurCells; i < length + blurCells; ++i) {
            sum += at(i + blurCells) - at(i - blurCells - 1);
            if (i >= 0 && i < length) result[line * lineStep + i * step] = sum / (2 * blurCells + 1);
        }
    }
    return result;
}
