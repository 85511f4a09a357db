export const usualAspect = 16 / 9;

/** Small pixel numbers are too coarse to divide by: they are truncated. */
const fewestPixels = 50;
const narrowest = 0.4;
const widest = 5;

function median(numbers) {
    return numbers.sort((a, b) => a - b)[numbers.length >> 1];
}

/** The length of one side of the area, from the pairs of percent and pixels along it; NaN without any. */
function side(samples, percent, pixel) {
    const lengths = samples
        .filter(sample => sample.valid && Math.abs(sample[pixel]) >= fewestPixels && sample[percent] !== 0)
        .map(sample => (sample[pixel] * 100) / sample[percent]);
    return median(lengths);
}

/**
 * Width by height of the calibrated area. Nothing tells its size, but each sample has its gaze in percent of it and in
 * pixels. The usual shape if that does not give a sensible one.
 */
export function aspectOf(samples) {
    const aspect = side(samples, 'x', 'x_px') / side(samples, 'y', 'y_px');
    return aspect >= narrowest && aspect <= widest ? aspect : usualAspect;
}
