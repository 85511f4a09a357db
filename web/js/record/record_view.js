// @ts-check
import { SampleColumns } from '../shared/sample_columns.js';
import { statisticsOf } from '../shared/statistics.js';
import { AreaList } from './area_list.js';
import { detectFixations, isComplete } from './detection.js';
import { heatMapOf } from './heat_map.js';
import { intervalsOf } from './intervals.js';
import { placeMarkers } from './markers.js';
import { between } from './time_range.js';
/** @import { TimeRange } from '../shared/chart.js' */
/** @import { FixationParameters } from './detection.js' */
/** @import { Fixation } from './fixations.js' */
/** @import { FolderAreas } from './folder_areas.js' */
/** @import { HeatMap } from './heat_map.js' */
/** @import { Interval } from './intervals.js' */
/** @import { PlacedMarker } from './markers.js' */
/** @import { RecordFile } from './parse_worker.js' */
/** @import { Stimulus } from './stimulus_image.js' */

/** An open record file: the shown time range, and the fixations, the heat map and the figures of that range. */
export class RecordView {
    /** The shown range, in ms from the first sample. */
    range;
    /** The fixations that start in the range. @type {Fixation[]} */
    fixations = [];
    /** The number of fixations before the range, which is the index of the first fixation in it. */
    firstFixation = 0;
    /** The areas of interest. */
    areaList = new AreaList();
    /** Null unless the record file was opened from the records folder. @type {FolderAreas | null} */
    folder = null;
    /** The image behind the gaze. @type {Stimulus | null} */
    stimulus = null;
    #parameters;
    /** @type {Fixation[]} */
    #allFixations = [];
    /** @type {HeatMap | null} */
    #heatMap = null;
    /** @type {PlacedMarker[] | null} */
    #markers = null;
    /** @type {Interval[] | null} */
    #intervals = null;

    /**
     * @param {RecordFile} file
     * @param {string} fileName
     * @param {FixationParameters} parameters
     * @param {number} assumedRateHz the sample rate of a file without timestamps
     */
    constructor(file, fileName, parameters, assumedRateHz) {
        this.file = file;
        this.fileName = fileName;
        this.aspect = file.aspect;
        this.timeless = file.timeless;
        this.columns = SampleColumns.from(file.columns);
        this.#parameters = parameters;
        this.range = this.whole;
        if (this.timeless) this.assumeRate(assumedRateHz);
        else this.detect(parameters);
    }

    get wholeMs() {
        return this.columns.time[this.columns.length - 1];
    }

    get whole() {
        return between(0, this.wholeMs, this.wholeMs);
    }

    /**
     * Sets the sample rate of a file without timestamps, and shows the whole recording.
     *
     * @param {number} rateHz
     */
    assumeRate(rateHz) {
        const { time, length } = this.columns;
        for (let i = 0; i < length; ++i) time[i] = (i * 1000) / rateHz;
        this.range = this.whole;
        this.#markers = null;
        this.detect(this.#parameters);
    }

    /**
     * Finds the fixations with other parameters.
     *
     * @param {FixationParameters} parameters
     */
    detect(parameters) {
        this.#parameters = parameters;
        this.#allFixations = this.areFixationsKnown ? detectFixations(this.columns, parameters, this.aspect) : [];
        this.#intervals = null;
        this.show(this.range);
    }

    /**
     * Shows another time range.
     *
     * @param {TimeRange} range
     */
    show(range) {
        const { fromMs, toMs } = range;
        const next = this.#allFixations.findIndex(({ startMs }) => startMs >= fromMs);
        this.range = range;
        this.firstFixation = next < 0 ? this.#allFixations.length : next;
        this.fixations = this.#allFixations.slice(this.firstFixation).filter(({ startMs }) => startMs <= toMs);
        this.#heatMap = null;
    }

    /** The fixation before the range, or null. */
    get fixationBefore() {
        return this.#allFixations[this.firstFixation - 1] ?? null;
    }

    /** The method and the parameters by which the fixations were found. */
    get parameters() {
        return this.#parameters;
    }

    /** Whether the fixations are known. They are not if a parameter is missing. */
    get areFixationsKnown() {
        return isComplete(this.#parameters);
    }

    /** The fixations of the whole recording. */
    get allFixations() {
        return this.#allFixations;
    }

    /** Whether the times of the samples may differ from their arrival times, so that onsets do not match them. */
    get placesMarkersByRow() {
        return this.timeless || this.file.setBackLine > 0 || this.file.hasGap;
    }

    /** The markers of the events file, sorted by time. */
    get markers() {
        return (this.#markers ??= placeMarkers(this.file.events?.markers ?? [], this.columns, this.placesMarkersByRow));
    }

    /** The intervals between the markers. A new array after each change of the fixations. */
    get intervals() {
        const fixations = this.areFixationsKnown ? this.#allFixations : null;
        return (this.#intervals ??= intervalsOf(this.markers, this.columns, fixations));
    }

    /** Computed on demand, because the computation takes longer than that of the other figures. */
    get heatMap() {
        const [from, to] = this.#sampleRange();
        return (this.#heatMap ??= heatMapOf(this.columns, from, to, this.aspect));
    }

    /** Returns the figures of the range. The figures of the fixations are NaN if these are not known. */
    get summary() {
        const [from, to] = this.#sampleRange();
        const totalMs = this.fixations.reduce((sum, { durationMs }) => sum + durationMs, 0);
        return {
            ...statisticsOf(this.columns, from, to),
            durationMs: this.range.toMs - this.range.fromMs,
            fixationCount: this.areFixationsKnown ? this.fixations.length : NaN,
            meanFixationMs: totalMs / this.fixations.length,
        };
    }

    /** Returns the indexes of the first sample in the range and of the first sample after it. The range includes its ends. */
    #sampleRange() {
        const { columns, range } = this;
        let to = columns.indexAt(range.toMs);
        while (to < columns.length && columns.time[to] <= range.toMs) ++to;
        return [columns.indexAt(range.fromMs), to];
    }
}
