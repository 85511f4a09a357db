// @ts-check
import { forEachPoint } from './polyline.js';
import { decimalsOf, ticks, timeTicks } from './ticks.js';
/** @import { Surface } from './canvas.js' */
/** @import { ColumnName, SampleColumns } from './sample_columns.js' */

/** @typedef {{ fromMs: number, toMs: number }} TimeRange */
/** @typedef {(value: number, decimals: number) => string} Label Returns the text for a tick. */

const padding = { left: 40, right: 8, top: 8, bottom: 22 };
const minTimeTickPx = 70;

/** The lines of a series are computed for columns this wide. That halves the work without a visible difference. */
const columnPx = 2;

/** A chart of values over time. It fills its surface. */
export class Chart {
    #surface;
    #range;
    #low;
    #high;
    #left = padding.left;
    #top = padding.top;
    #right;
    #bottom;

    /**
     * @param {Surface} surface
     * @param {TimeRange} range the times at the left and at the right edge
     * @param {[number, number]} values the values at the bottom and at the top
     */
    constructor(surface, range, [low, high]) {
        this.#surface = surface;
        this.#range = range;
        this.#low = low;
        this.#high = high;
        this.#right = surface.width - padding.right;
        this.#bottom = surface.height - padding.bottom;
    }

    get left() {
        return this.#left;
    }

    get width() {
        return this.#right - this.#left;
    }

    get top() {
        return this.#top;
    }

    get bottom() {
        return this.#bottom;
    }

    /** @param {number} timeMs */
    toX(timeMs) {
        const { fromMs, toMs } = this.#range;
        return this.#left + ((timeMs - fromMs) * this.width) / (toMs - fromMs);
    }

    /** @param {number} value */
    toY(value) {
        return this.#bottom - ((value - this.#low) * (this.#bottom - this.#top)) / (this.#high - this.#low);
    }

    /** @param {number} x */
    toTime(x) {
        const { fromMs, toMs } = this.#range;
        return fromMs + ((x - this.#left) * (toMs - fromMs)) / this.width;
    }

    /**
     * @param {Label} timeLabel for a time in ms; the decimals are for the time in seconds
     * @param {Label} valueLabel
     */
    drawAxes(timeLabel, valueLabel) {
        const { context, palette } = this.#surface;
        context.font = palette.font;
        context.lineWidth = 1;
        context.strokeStyle = palette.line;
        context.fillStyle = palette.muted;
        this.#drawValueAxis(context, valueLabel);
        this.#drawTimeAxis(context, timeLabel);
    }

    /**
     * Draws a series as a line that is interrupted where values are missing. Values beyond the chart are drawn at its
     * edge.
     *
     * @param {SampleColumns} columns
     * @param {ColumnName} name
     * @param {string} colour
     * @param {{ from?: number, to?: number, lineWidth?: number }} options
     */
    drawSeries(columns, name, colour, { from = 0, to = columns.length, lineWidth = 1.5 } = {}) {
        const { context } = this.#surface;
        context.save();
        context.beginPath();
        context.rect(this.#left, 0, this.width, this.#bottom + padding.top);
        context.clip();
        context.strokeStyle = colour;
        context.lineWidth = lineWidth;
        context.lineJoin = 'bevel';
        context.beginPath();
        const toColumn = (/** @type {number} */ timeMs) => this.toX(timeMs) / columnPx;
        forEachPoint(columns.time, columns[name], from, to, toColumn, (column, value, startsLine) => {
            const x = column * columnPx;
            const y = this.toY(Math.min(Math.max(value, this.#low), this.#high));
            // A single value is drawn as a dot.
            if (startsLine) context.moveTo(x - 1, y);
            context.lineTo(x, y);
        });
        context.stroke();
        context.restore();
    }

    /**
     * Fills a time range from the top to the bottom.
     *
     * @param {TimeRange} range
     * @param {string} colour
     */
    drawBand({ fromMs, toMs }, colour) {
        const { context } = this.#surface;
        const left = Math.max(this.toX(fromMs), this.#left);
        const right = Math.min(this.toX(toMs), this.#right);
        context.fillStyle = colour;
        if (right > left) context.fillRect(left, this.#top, right - left, this.#bottom - this.#top);
    }

    /**
     * Draws a vertical line at each time in the chart.
     *
     * @param {number[]} times in ms
     * @param {string} colour
     */
    drawTimes(times, colour) {
        const { context } = this.#surface;
        const { fromMs, toMs } = this.#range;
        context.strokeStyle = colour;
        context.lineWidth = 1;
        context.beginPath();
        for (const timeMs of times) {
            if (timeMs < fromMs || timeMs > toMs) continue;
            const x = Math.round(this.toX(timeMs)) + 0.5;
            context.moveTo(x, this.#top);
            context.lineTo(x, this.#bottom);
        }
        context.stroke();
    }

    /**
     * Draws a frame around a time range.
     *
     * @param {TimeRange} range
     * @param {string} colour
     */
    drawFrame({ fromMs, toMs }, colour) {
        const { context } = this.#surface;
        const left = this.toX(fromMs);
        context.strokeStyle = colour;
        context.lineWidth = 2;
        context.strokeRect(left, this.#top, Math.max(this.toX(toMs) - left, 2), this.#bottom - this.#top);
    }

    /**
     * Writes a text into the middle of an empty chart.
     *
     * @param {string} text
     */
    drawNote(text) {
        const { context, palette } = this.#surface;
        context.fillStyle = palette.muted;
        context.font = palette.font;
        context.textAlign = 'center';
        context.textBaseline = 'middle';
        context.fillText(text, (this.#left + this.#right) / 2, (this.#top + this.#bottom) / 2);
    }

    /**
     * @param {CanvasRenderingContext2D} context
     * @param {Label} label
     */
    #drawValueAxis(context, label) {
        context.textAlign = 'right';
        context.textBaseline = 'middle';
        context.beginPath();
        const values = ticks(this.#low, this.#high, this.#bottom - this.#top > 60 ? 4 : 2);
        const decimals = decimalsOf(values[1] - values[0]);
        for (const value of values) {
            const y = Math.round(this.toY(value)) + 0.5;
            context.moveTo(this.#left, y);
            context.lineTo(this.#right, y);
            context.fillText(label(value, decimals), this.#left - 6, y);
        }
        context.stroke();
    }

    /**
     * @param {CanvasRenderingContext2D} context
     * @param {Label} label
     */
    #drawTimeAxis(context, label) {
        context.textAlign = 'center';
        context.textBaseline = 'top';
        const maxCount = Math.max(2, Math.floor(this.width / minTimeTickPx));
        const times = timeTicks(this.#range.fromMs, this.#range.toMs, maxCount);
        const decimals = decimalsOf((times[1] - times[0]) / 1000);
        for (const timeMs of times) {
            const x = Math.min(Math.max(this.toX(timeMs), this.#left), this.#right - 8);
            context.fillText(label(timeMs, decimals), x, this.#bottom + 7);
        }
    }
}
