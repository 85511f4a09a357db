// @ts-check
// The geometry of areas of interest. All lengths are in percent of the screen, from its left and top edge.

/** @typedef {{ left: number, top: number, width: number, height: number }} Box */
/** @typedef {'rectangle' | 'ellipse'} Shape The ellipse touches the edges of its box. */

/**
 * `id` is unique within a list, and decides the colour.
 *
 * @typedef {Box & { id: number, name: string, shape: Shape }} Area
 */

/** The edge or corner of a box that is dragged: -1 is left or top, 1 is right or bottom, 0 is neither. @typedef {[number, number]} Handle */

export const minSize = 1;
const screenSize = 100;

/** Numbers in files need no more digits. On a screen 4000 pixels wide, it is less than half a pixel. */
const stepsPerPercent = 100;

/** @type {Handle} */
export const lowerRight = [1, 1];

/** @type {Handle[]} */
export const handles = [[-1, -1], [0, -1], [1, -1], [-1, 0], [1, 0], [-1, 1], [0, 1], lowerRight];

/**
 * Returns whether a point is in an area. The edge belongs to the area.
 *
 * @param {Area} area
 * @param {{ x: number, y: number }} point
 */
export function contains({ shape, left, top, width, height }, { x, y }) {
    if (shape === 'rectangle') return x >= left && x <= left + width && y >= top && y <= top + height;
    const right = (x - left) / (width / 2) - 1;
    const down = (y - top) / (height / 2) - 1;
    return right * right + down * down <= 1;
}

/**
 * @param {number} value
 * @param {number} min
 * @param {number} max
 */
const limited = (value, min, max) => Math.min(Math.max(value, min), max);

/** @param {number} value */
const rounded = value => Math.round(value * stepsPerPercent) / stepsPerPercent;

/**
 * Returns a box with rounded edges.
 *
 * @param {[number, number]} horizontal the left and the right edge
 * @param {[number, number]} vertical the upper and the lower edge
 * @returns {Box}
 */
function boxOf(horizontal, vertical) {
    const [[left, right], [top, bottom]] = [horizontal.map(rounded), vertical.map(rounded)];
    return { left, top, width: rounded(right - left), height: rounded(bottom - top) };
}

/**
 * Returns the box between two corners, within the screen.
 *
 * @param {{ x: number, y: number }} a
 * @param {{ x: number, y: number }} b
 */
export function boxBetween(a, b) {
    return boxOf(edgesBetween(a.x, b.x), edgesBetween(a.y, b.y));
}

/**
 * @param {number} a
 * @param {number} b
 * @returns {[number, number]}
 */
function edgesBetween(a, b) {
    const start = limited(Math.min(a, b), 0, screenSize - minSize);
    return [start, limited(Math.max(a, b), start + minSize, screenSize)];
}

/**
 * Returns the box moved within the screen.
 *
 * @param {Box} box
 * @param {number} right
 * @param {number} down
 */
export function movedBox({ left, top, width, height }, right, down) {
    const [x, y] = [limited(left + right, 0, screenSize - width), limited(top + down, 0, screenSize - height)];
    return boxOf([x, x + width], [y, y + height]);
}

/**
 * Returns the box after a handle was dragged within the screen.
 *
 * @param {Box} box
 * @param {Handle} handle
 * @param {number} right
 * @param {number} down
 */
export function resizedBox({ left, top, width, height }, [horizontal, vertical], right, down) {
    return boxOf(draggedEdges(left, left + width, horizontal, right), draggedEdges(top, top + height, vertical, down));
}

/**
 * @param {number} start
 * @param {number} end
 * @param {number} handle
 * @param {number} by
 * @returns {[number, number]}
 */
function draggedEdges(start, end, handle, by) {
    if (handle < 0) return [limited(start + by, 0, end - minSize), end];
    return [start, handle > 0 ? limited(end + by, start + minSize, screenSize) : end];
}
