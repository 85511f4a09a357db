/** The narrowest range to zoom to, in ms. */
const narrowestMs = 100;

/** A range of this width that begins at `fromMs`, moved into the whole and no wider. */
function within(fromMs, widthMs, wholeMs) {
    const width = Math.min(Math.max(widthMs, Math.min(narrowestMs, wholeMs)), wholeMs);
    const from = Math.min(Math.max(fromMs, 0), wholeMs - width);
    return { fromMs: from, toMs: from + width };
}

/** The range `factor` times as wide, with what is at `atMs` staying where it is. */
export function zoomed({ fromMs, toMs }, factor, atMs, wholeMs) {
    const width = Math.min(Math.max((toMs - fromMs) * factor, Math.min(narrowestMs, wholeMs)), wholeMs);
    return within(atMs - ((atMs - fromMs) * width) / (toMs - fromMs || 1), width, wholeMs);
}

/** The range moved by so much, as far as the whole allows. */
export function moved({ fromMs, toMs }, byMs, wholeMs) {
    return within(fromMs + byMs, toMs - fromMs, wholeMs);
}

/** The range between two times, whichever comes first. */
export function between(aMs, bMs, wholeMs) {
    return within(Math.min(aMs, bMs), Math.abs(bMs - aMs), wholeMs);
}
