// @ts-check
/** @import { Sample } from './sample_reader.js' */

export const defaultAspect = 16 / 9;
const minAspect = 0.4;
const maxAspect = 5;

/** Pixels are truncated to integers, so a quotient of smaller numbers is too inaccurate. */
const minPixels = 50;

/** The percentages in files are rounded, which moves a position by less than this. */
const maxErrorPx = 0.01;

/** The margin around the screen, for gaze beyond the edges, as a share of the screen's width. */
const margin = 0.05;

/** @param {number[]} numbers */
function median(numbers) {
    return numbers.sort((a, b) => a - b)[numbers.length >> 1];
}

/**
 * Returns the length of one side of the calibrated area in pixels.
 *
 * @param {Sample[]} samples
 * @param {'x' | 'y'} percentKey
 * @param {'x_px' | 'y_px'} pixelKey
 */
function sideLength(samples, percentKey, pixelKey) {
    const lengths = [];
    for (const sample of samples) {
        const [percent, pixels] = [Number(sample[percentKey]), Number(sample[pixelKey])];
        if (sample.valid && percent !== 0 && Math.abs(pixels) >= minPixels) lengths.push((pixels * 100) / percent);
    }
    return median(lengths);
}

/**
 * Returns the aspect ratio (width divided by height) of the calibrated area, computed from samples that have their gaze in
 * percent and in pixels. Returns the default if there are none, or if the result is out of range.
 *
 * @param {Sample[]} samples
 */
export function aspectOf(samples) {
    const aspect = sideLength(samples, 'x', 'x_px') / sideLength(samples, 'y', 'y_px');
    return aspect >= minAspect && aspect <= maxAspect ? aspect : defaultAspect;
}

/**
 * Returns the length of one side in whole pixels. Each truncated position allows a range of lengths. Returns the smallest length
 * that all positions allow, or the median if there is none.
 *
 * @param {Sample[]} samples
 * @param {'x' | 'y'} percentKey
 * @param {'x_px' | 'y_px'} pixelKey
 */
function wholeSideLength(samples, percentKey, pixelKey) {
    let [min, max] = [0, Infinity];
    for (const sample of samples) {
        const [percent, pixels] = [Number(sample[percentKey]), Number(sample[pixelKey])];
        if (!sample.valid || percent <= 0 || pixels < minPixels) continue;
        min = Math.max(min, ((pixels - maxErrorPx) * 100) / percent);
        max = Math.min(max, ((pixels + 1 + maxErrorPx) * 100) / percent);
    }
    const length = Math.ceil(min);
    return length > 0 && length <= max ? length : Math.round(sideLength(samples, percentKey, pixelKey));
}

/**
 * Returns the size of the calibrated area in pixels, computed from samples that have their gaze in percent and in pixels.
 * The sides are NaN if there are no such samples.
 *
 * @param {Sample[]} samples
 */
export function areaPxOf(samples) {
    return {
        width: wholeSideLength(samples, 'x', 'x_px'),
        height: wholeSideLength(samples, 'y', 'y_px'),
    };
}

/**
 * Returns the aspect ratio of a canvas that exactly holds a screen and its margin.
 *
 * @param {number} aspect
 */
export function canvasAspect(aspect) {
    return (1 + 2 * margin) / (1 / aspect + 2 * margin);
}

/**
 * Returns the largest screen that fits with its margin, and functions that convert percent of it to coordinates.
 *
 * @param {{ width: number, height: number }} available
 * @param {number} aspect
 */
export function screenIn(available, aspect) {
    const width = Math.min(available.width / (1 + 2 * margin), available.height / (1 / aspect + 2 * margin));
    const height = width / aspect;
    const [left, top] = [(available.width - width) / 2, (available.height - height) / 2];
    return {
        left, top, width, height,
        toX: (/** @type {number} */ percent) => left + (percent * width) / 100,
        toY: (/** @type {number} */ percent) => top + (percent * height) / 100,
    };
}

/** @typedef {ReturnType<typeof screenIn>} Screen */
