import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { describe, test } from 'node:test';
import { aspectOf, usualAspect } from '../../web/js/shared/aspect.js';
import { forEachPoint } from '../../web/js/shared/polyline.js';
import { SampleColumns, columnNames } from '../../web/js/shared/sample_columns.js';
import { SampleReader } from '../../web/js/shared/sample_reader.js';
import { statisticsOf } from '../../web/js/shared/statistics.js';
import { ticks, timeTicks } from '../../web/js/shared/ticks.js';
import en from '../../web/js/texts/en.js';
import ru from '../../web/js/texts/ru.js';

const nothing = Object.fromEntries(columnNames.map(name => [name, NaN]));

function columnsOf(times, xs) {
    const columns = new SampleColumns();
    times.forEach((time, i) => columns.append(time, { ...nothing, x: xs[i], y: xs[i] }));
    return columns;
}

test('statistics', () => {
    const names = ['count', 'rateHz', 'validShare', 'longestGapMs', 'longestLossMs', 'jitterMs'];
    for (const [times, xs, expected] of [
        [[5], [1], [1, NaN, NaN, NaN, NaN, NaN]],
        [[0, 10, 20, 30], [1, 1, 1, 1], [4, 100, 1, 10, 0, 0]],
        [[0, 10, 20, 60], [1, NaN, NaN, 1], [4, 50, 0.5, 40, 60, Math.sqrt(200)]],
        [[0, 10, 20], [NaN, NaN, NaN], [3, 100, 0, 10, 20, 0]],
        [[0, 0, 0], [1, 1, 1], [3, NaN, 1, 0, 0, 0]],
    ]) {
        const statistics = statisticsOf(columnsOf(times, xs));
        assert.deepEqual(names.map(name => statistics[name]), expected);
    }
});

describe('what a sample measures', () => {
    const seen = { valid: true, x: 1, y: 2, l_x: 3, l_y: 4, r_x: 5, r_y: 6, l_pupil_mm: 7, r_pupil_mm: 8, distance_cm: 9 };
    const row = { x: 1, y: 2, leftX: 3, leftY: 4, rightX: 5, rightY: 6, leftPupil: 7, rightPupil: 8, distance: 9 };
    for (const [name, change, expected] of [
        ['all of it', {}, {}],
        ['no valid gaze', { valid: false }, { x: NaN, y: NaN }],
        ['numbers that are none', { x: null, l_x: null, distance_cm: null }, { x: NaN, leftX: NaN, leftY: NaN, distance: NaN }],
        ['an eye that is all zero', { r_x: 0, r_y: 0, r_pupil_mm: 0 }, { rightX: NaN, rightY: NaN, rightPupil: NaN }],
        ['an eye at the left edge', { l_x: 0 }, { leftX: 0 }],
        ['neither pupil nor distance', { l_pupil_mm: 0, distance_cm: 0 }, { leftPupil: NaN, distance: NaN }],
    ])
        test(name, () => assert.deepEqual(new SampleReader().read({ ...seen, ...change }), { ...row, ...expected }));

    test('an eye that stays at its last values is lost until they change', () => {
        const reader = new SampleReader();
        const lefts = [3, 3, 3, 3, 3, 3.5].map(l_x => reader.read({ ...seen, l_x }).leftX);
        assert.deepEqual(lefts, [3, 3, 3, NaN, NaN, 3.5]);
    });
});

test('the shape of the screen', () => {
    const px = (percent, length) => Math.trunc((percent * length) / 100);
    const gaze = (width, height) => [[20, 30], [80.3, 60.7], [99, 12]].map(
        ([x, y]) => ({ valid: true, x, y, x_px: px(x, width), y_px: px(y, height) }));
    for (const [samples, expected] of [
        [[], usualAspect],
        [gaze(1920, 1200), 1.6],
        [gaze(1080, 1920), 0.5625],
        [gaze(0, 0), usualAspect],
        [gaze(1920, 1200).map(sample => ({ ...sample, valid: false })), usualAspect],
    ])
        assert.ok(Math.abs(aspectOf(samples) - expected) < 0.02, `${aspectOf(samples)} is not ${expected}`);
});

describe('lines', () => {
    const drawn = (times, values, toColumn) => {
        const lines = [];
        forEachPoint(times, values, 0, times.length, toColumn,
            (x, y, starts) => (starts ? lines.push([[x, y]]) : lines.at(-1).push([x, y])));
        return lines;
    };
    const tens = count => Array.from({ length: count }, (_, i) => 10 * i);

    test('a value in each column is joined to the next', () =>
        assert.deepEqual(drawn(tens(3), [1, 2, 1], t => t / 10), [[[0, 1], [1, 2], [2, 1]]]));
    test('many values in a column leave its lowest and highest', () =>
        assert.deepEqual(drawn(tens(8), [5, 9, 1, 6, 7, 8, 2, 3], t => t / 40), [[[0, 1], [0, 9], [1, 8], [1, 2]]]));
    test('missing values interrupt the line', () =>
        assert.deepEqual(drawn(tens(4), [1, NaN, 2, 3], t => t / 10), [[[0, 1]], [[2, 2], [3, 3]]]));
    test('so do missing samples', () =>
        assert.deepEqual(drawn([...tens(20), 2000], Array(21).fill(1), t => t / 1000).map(line => line.length), [1, 1]));
});

test('ticks are round, few and end', () => {
    assert.deepEqual(ticks(0, 100, 4), [0, 50, 100]);
    assert.deepEqual(ticks(2.5, 4.1, 4), [2.5, 3, 3.5, 4]);
    assert.deepEqual(timeTicks(0, 3600000, 4), [0, 1200000, 2400000, 3600000]);
    for (const [low, high] of [[1, 1], [NaN, 1], [1e30, 1e30 + 1]]) assert.deepEqual(ticks(low, high, 4), []);
    assert.ok(ticks(1e17, 1e17 + 100, 5).length <= 6);
});

test('both languages have the same texts with the same values in them', () => {
    const values = dictionary => Object.fromEntries(
        Object.entries(dictionary).sort().map(([key, text]) => [key, (text.match(/\{\w+\}/g) ?? []).sort().join()]));
    assert.deepEqual(values(ru), values(en));
});

test('every text that the pages name exists, and none is left over', () => {
    const folder = new URL('../../web/', import.meta.url);
    const files = readdirSync(folder, { recursive: true })
        .filter(name => /\.(html|js)$/.test(name) && !name.startsWith('js/texts'));
    const sources = files.map(name => readFileSync(new URL(name, folder), 'utf8')).join('\n');
    const named = [...sources.matchAll(/data-i18n(?:-label)?="(\w+)"/g)].map(match => match[1]);
    assert.deepEqual(named.filter(key => !(key in en)), []);
    // States name their hints, too.
    const isUsed = key => [key, key.replace(/Hint$/, '')].some(name => new RegExp(`["']${name}["']`).test(sources));
    assert.deepEqual(Object.keys(en).filter(key => !isUsed(key)), []);
});
