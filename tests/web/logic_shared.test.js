import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { describe, test } from 'node:test';
import { Chart } from '../../web/js/shared/chart.js';
import { CrossedEye } from '../../web/js/shared/crossed_eye.js';
import { forEachPoint } from '../../web/js/shared/polyline.js';
import { columnNames } from '../../web/js/shared/sample_columns.js';
import { SampleReader } from '../../web/js/shared/sample_reader.js';
import { aspectOf, defaultAspect } from '../../web/js/shared/screen.js';
import { statisticsOf } from '../../web/js/shared/statistics.js';
import { rangeOf, ticks, timeTicks } from '../../web/js/shared/ticks.js';
import en from '../../web/js/texts/en.js';
import ru from '../../web/js/texts/ru.js';
import { columnsOf, listOf } from './support/columns.js';
import { fakeSurface } from './support/fake_context.js';

test('columns keep all values when they grow and when old samples are dropped', () => {
    const row = i => Object.fromEntries(columnNames.map((name, column) => [name, i + column / 16]));
    const columns = columnsOf(listOf(5000, i => 10 * i), row);
    columns.dropBefore(25);
    assert.deepEqual([columns.length, columns.time[0], columns.time[4996]], [4997, 30, 49990]);
    for (const [at, i] of [[0, 3], [4996, 4999]])
        assert.deepEqual(Object.fromEntries(columnNames.map(name => [name, columns[name][at]])), row(i));
});

test('statistics', () => {
    for (const [times, xs, expected] of [
        [[5], [1], [1, NaN, NaN, NaN, NaN, NaN]],
        [[0, 10, 20, 30], [1, 1, 1, 1], [4, 100, 1, 10, 0, 0]],
        [[0, 10, 20, 60], [1, NaN, NaN, 1], [4, 50, 0.5, 40, 60, Math.sqrt(200)]],
        [[0, 10, 20], [NaN, NaN, NaN], [3, 100, 0, 10, 20, 0]],
        [[0, 0, 0], [1, 1, 1], [3, NaN, 1, 0, 0, 0]],
    ]) {
        const figures = statisticsOf(columnsOf(times, i => ({ x: xs[i] })));
        const { count, rateHz, validShare, longestGapMs, longestLossMs, jitterMs } = figures;
        assert.deepEqual([count, rateHz, validShare, longestGapMs, longestLossMs, jitterMs], expected);
    }
});

describe('row of a sample', () => {
    const seen = {
        timestamp: 0, valid: true, x: 1, y: 2, x_px: 0, y_px: 0, l_x: 3, l_y: 4, r_x: 5, r_y: 6, l_pupil_mm: 7, r_pupil_mm: 8,
        distance_cm: 9,
    };
    const row = { x: 1, y: 2, leftX: 3, leftY: 4, rightX: 5, rightY: 6, leftPupil: 7, rightPupil: 8, distance: 9 };
    for (const [name, change, expected] of [
        ['complete', {}, {}],
        ['invalid gaze', { valid: false }, { x: NaN, y: NaN }],
        ['null', { x: null, l_x: null, distance_cm: null }, { x: NaN, leftX: NaN, leftY: NaN, distance: NaN }],
        ['an eye that is all zero', { r_x: 0, r_y: 0, r_pupil_mm: 0 }, { rightX: NaN, rightY: NaN, rightPupil: NaN }],
        ['an eye at the left edge', { l_x: 0 }, { leftX: 0 }],
        ['no pupil and no distance', { l_pupil_mm: 0, distance_cm: 0 }, { leftPupil: NaN, distance: NaN }],
    ])
        test(name, () => assert.deepEqual(new SampleReader().read({ ...seen, ...change }), { ...row, ...expected }));

    test('an eye that keeps its last values is lost until they change', () => {
        const reader = new SampleReader();
        const lefts = [3, 3, 3, 3, 3, 3.5].map(l_x => reader.read({ ...seen, l_x }).leftX);
        assert.deepEqual(lefts, [3, 3, 3, NaN, NaN, 3.5]);
    });
});

test('aspect ratio', () => {
    const px = (percent, length) => Math.trunc((percent * length) / 100);
    const gaze = (width, height, valid = true) =>
        [[20, 30], [80.3, 60.7], [99, 12]].map(([x, y]) => ({ valid, x, y, x_px: px(x, width), y_px: px(y, height) }));
    for (const [samples, expected] of [
        [[], defaultAspect],
        [gaze(1920, 1200), 1.6],
        [gaze(1080, 1920), 0.5625],
        [gaze(0, 0), defaultAspect],
        [gaze(1920, 1200, false), defaultAspect],
    ])
        assert.ok(Math.abs(aspectOf(samples) - expected) < 0.02, `${aspectOf(samples)} is not ${expected}`);
});

describe('crossed right eye', () => {
    // The C++ tests read the same table. A row of samples is a count of equal samples and their x, y, rightX and rightY.
    const table = readFileSync(new URL('../data/crossed_eye.json', import.meta.url), 'utf8');
    for (const { name, samples, crossed } of JSON.parse(table))
        test(name, () => {
            const rightEye = new CrossedEye();
            for (const [count, ...values] of samples) {
                const [x, y, rightX, rightY] = values.map(value => value ?? NaN);
                for (let i = 0; i < count; ++i) rightEye.add(x, y, rightX, rightY);
            }
            assert.equal(rightEye.crossed, crossed);
        });
});

describe('lines', () => {
    const tens = count => listOf(count, i => 10 * i);
    for (const [name, times, values, columnMs, expected] of [
        ['join the values of neighbouring columns', tens(3), [1, 2, 1], 10, [[[0, 1], [1, 2], [2, 1]]]],
        ['have the lowest and the highest value of a column', tens(8), [5, 9, 1, 6, 7, 8, 2, 3], 40,
            [[[0, 1], [0, 9], [1, 8], [1, 2]]]],
        ['are interrupted by missing values', tens(4), [1, NaN, 2, 3], 10, [[[0, 1]], [[2, 2], [3, 3]]]],
        ['are interrupted by gaps', [...tens(20), 2000], listOf(21, () => 1), 1000, [[[0, 1]], [[2, 1]]]],
    ])
        test(name, () => {
            const lines = [];
            const take = (x, y, startsLine) => {
                if (startsLine) lines.push([]);
                lines.at(-1).push([x, y]);
            };
            const [time, series] = [Float64Array.from(times), Float32Array.from(values)];
            forEachPoint(time, series, 0, times.length, timeMs => timeMs / columnMs, take);
            assert.deepEqual(lines, expected);
        });
});

test('chart', () => {
    const surface = fakeSurface(300, 100);
    const chart = new Chart(surface, { fromMs: 1000, toMs: 2000 }, [0, 10]);
    for (const timeMs of [1000, 1300, 2000]) assert.ok(Math.abs(chart.toTime(chart.toX(timeMs)) - timeMs) < 1e-9);
    assert.equal(chart.toX(2000) - chart.toX(1000), chart.width);
    assert.ok(chart.toY(10) < chart.toY(0));

    chart.drawAxes(timeMs => `${timeMs} ms`, String);
    const placeOf = label => surface.context.texts.find(({ text }) => text === label);
    assert.ok(Math.abs(placeOf('1500 ms').x - chart.toX(1500)) < 1);
    assert.ok(Math.abs(placeOf('5').y - chart.toY(5)) < 1);

    const values = [5, -20, 500];
    chart.drawSeries(columnsOf([1000, 1500, 2000], i => ({ x: values[i] })), 'x', 'line of x');
    assert.deepEqual(surface.context.lines['line of x'].map(([, , , y]) => y), [5, 0, 10].map(value => chart.toY(value)));
});

test('ticks', () => {
    assert.deepEqual(ticks(0, 100, 4), [0, 50, 100]);
    assert.deepEqual(ticks(2.5, 4.1, 4), [2.5, 3, 3.5, 4]);
    assert.deepEqual(timeTicks(0, 3600000, 4), [0, 1200000, 2400000, 3600000]);
    for (const [low, high] of [[1, 1], [NaN, 1], [1e30, 1e30 + 1]]) assert.deepEqual(ticks(low, high, 4), []);
    assert.ok(ticks(1e17, 1e17 + 100, 5).length <= 6);
    assert.deepEqual(rangeOf([Float32Array.of(2.5, NaN, 1.5), Float32Array.of(NaN, 2, 7.25)], 0, 3, 1), [1, 8]);
    assert.deepEqual(rangeOf([Float32Array.of(3)], 0, 1, 1), [3, 4]);
    assert.equal(rangeOf([Float32Array.of(NaN)], 0, 1, 1), null);
});

test('texts have the same values in both languages', () => {
    const valuesOf = dictionary =>
        Object.entries(dictionary).sort().map(([key, text]) => [key, (text.match(/\{\w+\}/g) ?? []).sort().join()]);
    assert.deepEqual(valuesOf(ru), valuesOf(en));
});

test('the pages use all texts and no unknown ones', () => {
    const folder = new URL('../../web/', import.meta.url);
    const files = readdirSync(folder, { recursive: true, encoding: 'utf8' })
        .filter(name => /\.(html|js)$/.test(name) && !name.startsWith('js/texts'));
    const sources = files.map(name => readFileSync(new URL(name, folder), 'utf8')).join('\n');
    const used = [...sources.matchAll(/data-i18n(?:-label)?="(\w+)"/g)].map(match => match[1]);
    assert.deepEqual(used.filter(key => !(key in en)), []);
    // The key of a state's hint follows from the key of the state.
    const isUsed = key =>
        [key, key.replace(/Hint$/, '')].some(name => new RegExp(`["']${name}["']`).test(sources));
    assert.deepEqual(Object.keys(en).filter(key => !isUsed(key)), []);
});
