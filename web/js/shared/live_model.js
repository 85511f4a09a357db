// @ts-check
import { CrossedEye } from './crossed_eye.js';
import { SampleColumns } from './sample_columns.js';
import { SampleReader } from './sample_reader.js';
import { ProgramClock } from './program_clock.js';
/** @import { Sample } from './sample_reader.js' */

/** @typedef {Sample & { number: number, time: number }} LiveSample `time` is the arrival, in ms since 1970. */

/**
 * @typedef {{ name: string, connected: boolean, reason: string | null, lastSampleAgeMs: number | null, newest: number | null }} Tracker
 * @typedef {{ tracker: string, path: string, durationMs: number, samples: number, events: number }} Recording
 * @typedef {{ path: string, samples: number, saved: boolean, error: string | null }} LastRecording
 * @typedef {{
 *     number: number, x: number, y: number, width: number, height: number, widthMm: number, heightMm: number,
 *     scale: number, primary: boolean,
 * }} ScreenSize The position is in desktop pixels, the size in device pixels. A size in mm is 0 if it is not known.
 * @typedef {{ x: number, y: number, width: number, height: number, unit: 'desktop' | 'device' }} Area
 * @typedef {{ result: 'done' | 'failed' | 'cancelled' | 'unknown', time: number }} CalibrationResult
 * @typedef {{ time: number, text: string }} Marker `time` is in ms since 1970.
 * @typedef {{ count: number | null, events?: number }} Missed The counts of samples and markers; `count` is null after a restart of Ocela.
 * @typedef {{ samples: number, markers: number, restarted: boolean, date: Date | null }} MissedSum
 */

/**
 * The part of the service's state that the page uses.
 *
 * @typedef {object} State
 * @property {string} run
 * @property {number} time in ms since 1970
 * @property {string[]} trackers
 * @property {Tracker | null} tracker the selected tracker
 * @property {{ running: boolean, last: CalibrationResult | null }} calibration
 * @property {Recording[]} recordings
 * @property {LastRecording | null} lastRecording
 * @property {ScreenSize[]} screens
 * @property {Area | null} area the area to which percent are relative; null if it is not known
 */

/** @typedef {'connecting' | 'offline' | 'noTracker' | 'notConnected' | 'noSamples' | 'stalled' | 'live'} Condition */

/** The duration of the series, in ms. */
export const spanMs = 10000;

/**
 * The weight of a sample decreases by about two thirds within 1000 samples, which are ten seconds at 100 Hz. That is long
 * enough to detect a crossed eye, and short enough to notice another tracker.
 */
const crossedDecay = 0.999;

/** The condition is `stalled` after this time without samples. Even a slow tracker sends several samples in it. */
const stalledAfterMs = 1000;

/** The aspect ratio of the screen is computed from this many samples. */
const recentCount = 200;

const maxMarkerCount = 100;

/**
 * The data of the service that the page has received: its state, the samples of the last ten seconds, the markers, and how many
 * samples were missed. Receives the events of the stream. Times are in ms of Ocela's clock.
 */
export class LiveModel {
    columns = new SampleColumns();
    clock = new ProgramClock();
    /** The last samples of the selected tracker. @type {LiveSample[]} */
    recent = [];
    /** The last markers, oldest first. @type {Marker[]} */
    markers = [];
    /** null before the first connection. @type {State | null} */
    state = null;
    /** The counts until `date`, and whether an unknown number was missed. @type {MissedSum} */
    missed = { samples: 0, markers: 0, restarted: false, date: null };
    /** null while there is a connection, otherwise why there is none. The reason may be empty. @type {string | null} */
    lostReason = null;
    #newestMs = NaN;
    #reader = new SampleReader();
    #rightEye = new CrossedEye(crossedDecay);

    /** Whether the tracker exchanges the axes of the right eye. The columns have the corrected axes. */
    get crossed() {
        return this.#rightEye.crossed;
    }

    /**
     * @param {State} state
     * @param {number} nowMs
     */
    takeState(state, nowMs) {
        const restarted = state.run !== this.state?.run;
        if (restarted || state.tracker?.name !== this.state?.tracker?.name) this.#clear();
        if (restarted && this.state) this.#restart();
        this.state = state;
        this.lostReason = null;
        this.clock.observe(state.time, nowMs);
        const ageMs = state.tracker?.lastSampleAgeMs ?? null;
        if (ageMs !== null) this.#newestMs = Math.max(state.time - ageMs, this.#newestMs || 0);
    }

    /**
     * @param {LiveSample[]} samples
     * @param {number} nowMs
     */
    takeSamples(samples, nowMs) {
        for (const sample of samples) this.#append(sample);
        this.recent = [...this.recent, ...samples].slice(-recentCount);
        if (samples.length > 0) this.#newestMs = samples[samples.length - 1].time;
        this.lostReason = null;
        this.columns.dropBefore(this.clock.now(nowMs) - spanMs);
    }

    /**
     * A new connection can repeat markers.
     *
     * @param {Marker} marker
     */
    takeMarker(marker) {
        if (this.markers.some(({ time, text }) => time === marker.time && text === marker.text)) return;
        this.markers = [...this.markers, marker].slice(-maxMarkerCount);
    }

    /** @param {Missed} missed */
    takeMissed({ count, events = 0 }) {
        const { samples, markers, restarted } = this.missed;
        this.missed = {
            samples: samples + (count ?? 0), markers: markers + events, restarted: restarted || count === null, date: new Date(),
        };
    }

    /** @param {string} reason */
    lose(reason) {
        this.lostReason = reason;
    }

    /**
     * Returns the condition of the service and the tracker.
     *
     * @param {number} nowMs
     * @returns {Condition}
     */
    condition(nowMs) {
        if (this.lostReason !== null) return 'offline';
        if (!this.state) return 'connecting';
        const { tracker } = this.state;
        if (!tracker) return 'noTracker';
        if (this.clock.now(nowMs) - this.#newestMs <= stalledAfterMs) return 'live';
        if (!tracker.connected) return 'notConnected';
        return Number.isNaN(this.#newestMs) ? 'noSamples' : 'stalled';
    }

    /** After a restart, the earlier samples are lost. */
    #restart() {
        this.markers = [];
        this.takeMissed({ count: null });
    }

    /** The samples of another tracker are not comparable. */
    #clear() {
        this.columns.clear();
        this.recent = [];
        this.#newestMs = NaN;
        this.#reader = new SampleReader();
        this.#rightEye = new CrossedEye(crossedDecay);
    }

    /** @param {LiveSample} sample */
    #append(sample) {
        const { columns } = this;
        const row = this.#reader.read(sample);
        const wasCrossed = this.crossed;
        if (this.#rightEye.add(row.x, row.y, row.rightX, row.rightY))
            [row.rightX, row.rightY] = [row.rightY, row.rightX];
        if (this.crossed !== wasCrossed) [columns.rightX, columns.rightY] = [columns.rightY, columns.rightX];
        columns.append(sample.time, row);
    }
}
