// @ts-nocheck
import { readFileSync } from 'node:fs';
import { RecordBuilder } from '../../web/js/record/record_builder.js';
import { RecordParser } from '../../web/js/record/record_parser.js';
import { angleBetween } from '../../web/js/record/velocity_fixations.js';

/** The screen and the distance of the simulated person, see docs/simulators.md. */
export const setup = { widthMm: 531, heightMm: 299, distanceMm: 620 };

/** A busy computer loses samples. A true fixation with a longer interval between samples is not compared. */
const maxIntervalMs = 40;

/** A true fixation is found if a detected one overlaps it by at least this share of the time that they cover together. */
const minOverlap = 0.5;

/** Returns the columns of a record file and the time of its first sample, in ms since 1970. */
export function readRecord(path) {
    const bytes = readFileSync(path);
    const builder = new RecordBuilder();
    const parser = new RecordParser((cells, line) => builder.add(cells, line));
    parser.push(bytes);
    parser.finish();
    return { ...builder.finish(), startMs: parseFloat(bytes.toString().split('\n')[1]) };
}

/** Returns the true fixations that a recording has with all samples. Times are relative to its first sample. */
export function readTruth(path, { columns, startMs }) {
    const rows = readFileSync(path, 'utf8').trim().split('\r\n').slice(1).map(line => line.split(',').map(Number));
    return rows.map(([from, to, x, y]) => ({ startMs: from - startMs, durationMs: to - from, x, y }))
        .filter(fixation => isRecorded(fixation, columns));
}

function isRecorded(fixation, { time, length }) {
    const isInside = ms => ms > fixation.startMs - maxIntervalMs && ms < endOf(fixation) + maxIntervalMs;
    const times = [...time.subarray(0, length)].filter(isInside);
    const covers = times[0] <= fixation.startMs && times.at(-1) >= endOf(fixation);
    return covers && times.every((ms, i) => i === 0 || ms - times[i - 1] <= maxIntervalMs);
}

const endOf = ({ startMs, durationMs }) => startMs + durationMs;
const mean = values => values.reduce((sum, value) => sum + value, 0) / values.length;

function overlapOf(a, b) {
    const common = Math.min(endOf(a), endOf(b)) - Math.max(a.startMs, b.startMs);
    return common / (a.durationMs + b.durationMs - common);
}

/** Returns the longest time without gaze within a fixation. */
export function longestLossOf(fixations, { time, length, x, leftX, rightX }) {
    const hasGaze = (_, i) => [x, leftX, rightX].some(values => !Number.isNaN(values[i]));
    const times = [...time.subarray(0, length)].filter(hasGaze);
    const losses = times.slice(1).map((ms, i) => ({ startMs: times[i], durationMs: ms - times[i] }));
    const isWithin = loss => fixations.some(fixation => loss.startMs >= fixation.startMs && endOf(loss) <= endOf(fixation));
    return Math.max(...losses.filter(isWithin).map(({ durationMs }) => durationMs));
}

/** Compares detected fixations with the true ones. The errors are means over the true fixations that are found. */
export function scoreOf(truth, detected) {
    const pairs = truth.flatMap(fixation => {
        const match = detected.find(other => overlapOf(fixation, other) >= minOverlap);
        return match ? [[fixation, match]] : [];
    });
    const meanOf = errorOf => mean(pairs.map(([fixation, match]) => errorOf(fixation, match)));
    const isCentreInTruth = ({ startMs, durationMs }) =>
        truth.some(fixation => overlapOf(fixation, { startMs: startMs + durationMs / 2, durationMs: 0 }) >= 0);
    return {
        trueCount: truth.length,
        countRatio: detected.filter(isCentreInTruth).length / truth.length,
        foundShare: pairs.length / truth.length,
        onsetMs: meanOf((fixation, match) => match.startMs - fixation.startMs),
        durationMs: meanOf((fixation, match) => match.durationMs - fixation.durationMs),
        centreDegrees: meanOf((fixation, match) => angleBetween(fixation, match, setup)),
    };
}
