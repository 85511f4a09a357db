// @ts-check

/** The places of the targets, in percent of the screen's width or height. */
const places = [25, 50, 75];

/** A place in percent of the screen. @typedef {{ id: number, x: number, y: number }} Target */

/** The nine targets, from left to right and from top to bottom. Their ids are 0 to 8. */
export const targets = Object.freeze(places.flatMap((y, row) =>
    places.map((x, column) => ({ id: row * places.length + column, x, y }))));

/**
 * Returns the targets in random order.
 *
 * @param {() => number} random returns numbers from 0 to 1 (excluded)
 * @returns {Target[]}
 */
export function inRandomOrder(random = Math.random) {
    const order = [...targets];
    for (let last = order.length - 1; last > 0; --last) {
        const chosen = Math.floor(random() * (last + 1));
        [order[last], order[chosen]] = [order[chosen], order[last]];
    }
    return order;
}
