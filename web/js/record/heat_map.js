// @ts-check
/** @import { SampleColumns } from '../shared/sample_columns.js' */

/**
 * A grid of cells, row by row, from the top left. `shares` are relative to the highest cell, from 0 to 1.
 *
 * @typedef {{ width: number, height: number, shares: Float32Array }} HeatMap
 */

/** The number of cells across the screen. Cells are square. */
const cellsAcross = 160;

/** Repeated moving averages are close to a Gaussian blur. The radius is in cells. */
const blurRadius = 2;
const blurPasses = 5;

/**
 * Returns the smoothed number of samples in each cell of the screen, relative to the highest cell.
 *
 * @param {SampleColumns} columns
 * @param {number} from
 * @param {number} to
 * @param {number} aspect
 * @returns {HeatMap}
 */
export function heatMapOf(columns, from, to, aspect) {
    const [width, height] = [cellsAcross, Math.round(cellsAcross / aspect)];
    let cells = countIn(columns, from, to, width, height);
    for (let pass = 0; pass < blurPasses; ++pass) {
        cells = blurred(cells, { count: height, step: width }, { count: width, step: 1 });
        cells = blurred(cells, { count: width, step: 1 }, { count: height, step: width });
    }
    const highest = cells.reduce((a, b) => Math.max(a, b), 0);
    return { width, height, shares: highest > 0 ? cells.map(count => count / highest) : cells };
}

/**
 * Counts the samples in each cell. Gaze beyond the screen is ignored.
 *
 * @param {SampleColumns} columns
 * @param {number} from
 * @param {number} to
 * @param {number} width
 * @param {number} height
 */
function countIn(columns, from, to, width, height) {
    const cells = new Float32Array(width * height);
    for (let i = from; i < to; ++i) {
        const column = Math.floor((columns.x[i] * width) / 100);
        const row = Math.floor((columns.y[i] * height) / 100);
        if (column >= 0 && column < width && row >= 0 && row < height) ++cells[row * width + column];
    }
    return cells;
}

/** @typedef {{ count: number, step: number }} Axis `step` is the distance between neighbouring cells in the array. */

/**
 * Returns the moving average along one axis.
 *
 * @param {Float32Array} cells
 * @param {Axis} across
 * @param {Axis} along
 */
function blurred(cells, across, along) {
    const result = new Float32Array(cells.length);
    for (let line = 0; line < across.count; ++line) {
        const indexOf = (/** @type {number} */ i) => line * across.step + i * along.step;
        const at = (/** @type {number} */ i) => (i >= 0 && i < along.count ? cells[indexOf(i)] : 0);
        let sum = 0;
        for (let i = -blurRadius; i < along.count; ++i) {
            sum += at(i + blurRadius) - at(i - blurRadius - 1);
            if (i >= 0) result[indexOf(i)] = sum / (2 * blurRadius + 1);
        }
    }
    return result;
}
