// @ts-check
import { measureCells, measureNames } from '../shared/quality_columns.js';
import { meanQuality } from '../shared/quality_table.js';
import { qualityOf } from './quality_of.js';
/** @import { DataQuality } from '../shared/data_quality.js' */
/** @import { GazeName } from '../shared/quality_table.js' */
/** @import { Validation } from './validation.js' */

/** The means of an eye, or of the combined gaze, over the targets. @typedef {{ name: GazeName, mean: DataQuality }} GazeMean */

/**
 * A validation without its samples, and with its means over the targets.
 *
 * @typedef {Omit<Validation, 'samples' | 'circumstances'> & { targetCount: number, gazes: GazeMean[] }} Entry
 */

/**
 * The change of the mean offset and of the accuracy of an eye, in degrees. A positive accuracy means that it became worse.
 *
 * @typedef {{ name: GazeName, azimuth: number, elevation: number, length: number, accuracy: number }} Drift
 */

/**
 * The validations of a participant in a session, oldest first. `drift` is empty if it cannot be determined.
 *
 * @typedef {{ participant: string, session: string, entries: Entry[], drift: Drift[] }} SessionGroup
 */

/**
 * @param {Validation} validation
 * @returns {Entry}
 */
export function entryOf(validation) {
    const { id, time, participant, session, tracker, expectedHz, geometry } = validation;
    const { gazes } = qualityOf(validation);
    return {
        id, time, participant, session, tracker, expectedHz, geometry, targetCount: gazes[0].targets.length,
        gazes: gazes.map(({ name, mean }) => ({ name, mean })),
    };
}

/**
 * Returns the sessions. The session with the latest validation is first.
 *
 * @param {Entry[]} entries
 * @returns {SessionGroup[]}
 */
export function sessionsOf(entries) {
    /** @type {Map<string, Entry[]>} */
    const groups = new Map();
    for (const entry of [...entries].sort((a, b) => a.time - b.time)) {
        const key = JSON.stringify([entry.participant, entry.session]);
        // Deleting the key first moves the session to the end of the map.
        const group = groups.get(key) ?? [];
        groups.delete(key);
        groups.set(key, [...group, entry]);
    }
    return [...groups.values()].reverse().map(group =>
        ({ participant: group[0].participant, session: group[0].session, entries: group, drift: driftOf(group) }));
}

/**
 * Returns the drift of each eye from the first to the last validation of a session. Only validations of the last used
 * tracker are compared. Validations without labels may be of different participants, so they have no drift.
 *
 * @param {Entry[]} entries oldest first
 * @returns {Drift[]}
 */
function driftOf(entries) {
    const last = entries[entries.length - 1];
    const first = entries.find(({ tracker }) => tracker === last.tracker);
    if (!first || first === last || (!last.participant && !last.session)) return [];
    return last.gazes.filter(({ name }) => name !== 'combined').flatMap(({ name, mean: { accuracy: end } }) => {
        const start = first.gazes.find(gaze => gaze.name === name)?.mean.accuracy;
        if (!start || !end) return [];
        const [azimuth, elevation] = [end.azimuth - start.azimuth, end.elevation - start.elevation];
        return [{ name, azimuth, elevation, length: Math.hypot(azimuth, elevation), accuracy: end.offset - start.offset }];
    });
}

/** The mean, the sample standard deviation and the range of a figure. @typedef {{ mean: number, sd: number, min: number, max: number }} Spread */

/**
 * Returns the figures of an entry: the accuracy of each eye, and the means over both eyes. An unknown figure is NaN.
 *
 * @param {Entry} entry
 */
export function figuresOf({ gazes }) {
    const meanOf = (/** @type {GazeName} */ name) => gazes.find(gaze => gaze.name === name)?.mean;
    const [left, right] = [meanOf('left'), meanOf('right')];
    const both = meanQuality([left, right].flatMap(mean => mean ?? []));
    return {
        leftAccuracy: left?.accuracy?.offset ?? NaN,
        rightAccuracy: right?.accuracy?.offset ?? NaN,
        rmsS2s: both.rmsS2s.total,
        std: both.std.total,
        dataLossPercent: both.dataLossPercent,
        dataLossFromExpectedPercent: both.dataLossFromExpectedPercent,
    };
}

/** @typedef {keyof ReturnType<typeof figuresOf>} FigureName */

/** All validations of a tracker. @typedef {{ tracker: string, count: number, spreads: Record<FigureName, Spread> }} TrackerSummary */

/**
 * Returns a summary for each tracker with at least two validations.
 *
 * @param {Entry[]} entries
 * @returns {TrackerSummary[]}
 */
export function summariesOf(entries) {
    const trackers = [...new Set(entries.map(({ tracker }) => tracker))].sort();
    return trackers.flatMap(tracker => {
        const figures = entries.filter(entry => entry.tracker === tracker).map(figuresOf);
        if (figures.length < 2) return [];
        const names = /** @type {FigureName[]} */ (Object.keys(figures[0]));
        const spreads = Object.fromEntries(names.map(name => [name, spreadOf(figures.map(figure => figure[name]))]));
        return [{ tracker, count: figures.length, spreads: /** @type {TrackerSummary['spreads']} */ (spreads) }];
    });
}

/**
 * @param {number[]} values NaN is skipped
 * @returns {Spread}
 */
function spreadOf(values) {
    const known = values.filter(value => !Number.isNaN(value));
    if (known.length === 0) return { mean: NaN, sd: NaN, min: NaN, max: NaN };
    const mean = known.reduce((sum, value) => sum + value, 0) / known.length;
    const squares = known.reduce((sum, value) => sum + (value - mean) ** 2, 0);
    return { mean, sd: Math.sqrt(squares / (known.length - 1)), min: Math.min(...known), max: Math.max(...known) };
}

const columnNames = [
    'time', 'participant', 'session', 'tracker', 'nominal_rate_hz', 'screen_width_mm', 'screen_height_mm', 'screen_width_px',
    'screen_height_px', 'distance_mm', 'targets', 'eye', ...measureNames,
];

/**
 * Returns a tab-separated table with a line for each validation and eye, in the order of time. Times are in UTC.
 *
 * @param {Entry[]} entries
 */
export function historyTable(entries) {
    const lines = [...entries].sort((a, b) => a.time - b.time).flatMap(entry => {
        const { time, participant, session, tracker, expectedHz, geometry, targetCount } = entry;
        const { widthMm, heightMm, widthPx, heightPx, distanceMm } = geometry;
        return entry.gazes.map(({ name, mean }) => [
            new Date(time).toISOString(), cell(participant), cell(session), tracker, expectedHz ?? '', widthMm, heightMm,
            widthPx, heightPx, distanceMm, targetCount, name, ...measureCells(mean),
        ]);
    });
    return [columnNames, ...lines].map(cells => `${cells.join('\t')}\n`).join('');
}

/** Tabs and line ends would break the table. @param {string} label */
function cell(label) {
    return label.replace(/\s+/g, ' ');
}
