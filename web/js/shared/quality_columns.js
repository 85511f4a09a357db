// @ts-check
// The measures as columns of a text table.
/** @import { DataQuality } from './data_quality.js' */

/** The names of the columns, their values, and the number of decimals. */
const columns = /** @type {[string, (quality: DataQuality) => number | undefined, number][]} */ ([
    ['accuracy_deg', ({ accuracy }) => accuracy?.offset, 4],
    ['accuracy_x_deg', ({ accuracy }) => accuracy?.azimuth, 4],
    ['accuracy_y_deg', ({ accuracy }) => accuracy?.elevation, 4],
    ['rms_s2s_deg', ({ rmsS2s }) => rmsS2s.total, 4],
    ['rms_s2s_x_deg', ({ rmsS2s }) => rmsS2s.azimuth, 4],
    ['rms_s2s_y_deg', ({ rmsS2s }) => rmsS2s.elevation, 4],
    ['std_deg', ({ std }) => std.total, 4],
    ['std_x_deg', ({ std }) => std.azimuth, 4],
    ['std_y_deg', ({ std }) => std.elevation, 4],
    ['bcea_deg2', ({ bcea }) => bcea.area, 4],
    ['bcea_orientation_deg', ({ bcea }) => bcea.orientation, 1],
    ['bcea_major_deg', ({ bcea }) => bcea.majorAxis, 4],
    ['bcea_minor_deg', ({ bcea }) => bcea.minorAxis, 4],
    ['data_loss_percent', quality => quality.dataLossPercent, 2],
    ['data_loss_from_rate_percent', quality => quality.dataLossFromExpectedPercent, 2],
    ['effective_frequency_hz', quality => quality.effectiveFrequencyHz, 2],
    ['duration_s', quality => quality.durationS, 4],
]);

export const measureNames = columns.map(([name]) => name);

/**
 * Returns the cells of a row. A missing accuracy is "not enough data", another missing value is "nan".
 *
 * @param {DataQuality} quality
 */
export function measureCells(quality) {
    return columns.map(([, valueOf, decimals]) => {
        const value = valueOf(quality);
        if (value === undefined) return 'not enough data';
        // "|| 0" turns -0 into 0.
        return Number.isNaN(value) ? 'nan' : (Number(value.toFixed(decimals)) || 0).toFixed(decimals);
    });
}
