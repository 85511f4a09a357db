import { writeExchangeFile } from '../../../web/js/shared/exchange_file.js';

/** One pixel is one millimetre. */
export const geometry = { widthMm: 1000, heightMm: 500, widthPx: 1000, heightPx: 500, distanceMm: 1000 };

export const intervalMs = 10;
const samplesPerTarget = 4;

const tan = degrees => Math.tan((degrees * Math.PI) / 180);

/** With fewer digits, reading a number and writing it again gives the same text. */
const rounded = pixels => Math.round(1000 * pixels) / 1000;

/** Returns the pixels of a direction in degrees; NaN if there is none. */
function pixelsOf(direction) {
    const [azimuth, elevation] = direction ?? [NaN, NaN];
    const x = geometry.distanceMm * tan(azimuth);
    return [x, Math.hypot(x, geometry.distanceMm) * tan(elevation)].map(rounded);
}

/**
 * Returns a validation whose targets are all in the centre. Each target has the directions of the left and the right eye,
 * or null for a lost eye.
 */
export function validationOf(targets, change = {}) {
    const rows = targets.flatMap((eyes, id) => Array(samplesPerTarget).fill([id, ...eyes.map(pixelsOf)]));
    const column = valueOf => Float64Array.from(rows, valueOf);
    return {
        id: 'a', time: Date.UTC(2026, 0, 2, 3, 4, 5), participant: 'P1', session: 'A', tracker: 'gazepoint', expectedHz: null,
        geometry,
        samples: {
            timestampMs: column((_, i) => intervalMs * i),
            left: { x: column(([, left]) => left[0]), y: column(([, left]) => left[1]) },
            right: { x: column(([, , right]) => right[0]), y: column(([, , right]) => right[1]) },
            targetId: column(([id]) => id), targetX: column(() => 0), targetY: column(() => 0),
        },
        circumstances: { fileName: '', screenCheck: 'match', repeatedTargets: [], missedCount: 0, isRightEyeCrossed: false },
        ...change,
    };
}

/** Returns an expression for a promise of a validation in a page. */
export const inPage = (targets, change) => `import('/js/shared/exchange_file.js').then(({ readExchangeFile }) => ({
    ...${JSON.stringify(validationOf([], change))},
    samples: readExchangeFile(new TextEncoder().encode(${JSON.stringify(writeExchangeFile(validationOf(targets).samples))})),
}))`;
