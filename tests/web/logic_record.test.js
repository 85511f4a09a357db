import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { parseDecimal } from '../../web/js/record/decimal.js';
import { findFixations, usualParameters } from '../../web/js/record/fixations.js';
import { heatMapOf } from '../../web/js/record/heat_map.js';
import { RecordBuilder, spreadTimes } from '../../web/js/record/record_builder.js';
import { RecordParser, headers } from '../../web/js/record/record_parser.js';
import { fixationsIn, summaryOf } from '../../web/js/record/summary.js';
import { between, moved, zoomed } from '../../web/js/record/time_range.js';
import { validShares } from '../../web/js/record/validity.js';
import { SampleColumns, columnNames } from '../../web/js/shared/sample_columns.js';

const bytesOf = text => new TextEncoder().encode(text);
const header = `${headers.join()}\r\n`;
const row = (timestamp, x = 50, y = 25) =>
    `${timestamp},0,1,${x},${y},960,270,0,${x},${y},960,270,3.5,0,0,${y},${x},480,540,3.5,0,0,0\r\n`;

/** What a file's text gives when it is read in pieces of `size` bytes: { record, cutOffLine } or { error }. */
function read(text, size = 1 << 20) {
    const bytes = typeof text === 'string' ? bytesOf(text) : text;
    const builder = new RecordBuilder();
    const parser = new RecordParser((cells, line) => builder.add(cells, line));
    try {
        for (let at = 0; at < bytes.length; at += size) parser.push(bytes.slice(at, at + size));
        parser.finish();
        return { record: builder.finish(), cutOffLine: parser.cutOffLine };
    } catch (error) {
        return { error };
    }
}

test('numbers', () => {
    for (const text of ['0', '-12', '+7', '12.300000190734863', '-.5', '5.', '1e-05', '-3.5E+4', '1700000000123', '0.00001'])
        assert.ok(Math.abs(parseDecimal(bytesOf(text), 0, text.length) / Number(text) - 1 || 0) < 1e-15, text);
    for (const text of ['nan', '-inf', 'Infinity']) assert.ok(Number.isNaN(parseDecimal(bytesOf(text), 0, text.length)), text);
    for (const text of ['', '-', '.', '1.2.3', '1,5', 'abc', '0x10', ' 1', '1-', '1e'])
        assert.equal(parseDecimal(bytesOf(text), 0, text.length), undefined, text);
});

describe('a record', () => {
    for (const [name, text, size] of [
        ['as the program writes it', header + row(1000) + row(1010)],
        ['that arrives byte by byte', header + row(1000) + row(1010), 1],
        ['with bare line feeds and a byte order mark', `\uFEFF${(header + row(1000) + row(1010)).replaceAll('\r', '')}`, 7],
        ['without its last line end', (header + row(1000) + row(1010)).trimEnd()],
        ['with an empty line at its end', `${header + row(1000) + row(1010)}\r\n`],
    ])
        test(name, () => {
            const { record, cutOffLine } = read(text, size);
            assert.deepEqual(Array.from(record.columns.time.subarray(0, record.columns.length)), [0, 10]);
            assert.deepEqual([record.columns.x[1], record.columns.leftPupil[1], record.columns.distance[1]], [50, 3.5, NaN]);
            assert.equal(cutOffLine, 0);
        });

    test('that is cut off is read up to there', () => {
        const { record, cutOffLine } = read((header + row(1000) + row(1010) + row(1020)).slice(0, -40));
        assert.deepEqual([record.columns.length, cutOffLine], [2, 4]);
    });

    test('whose clock was set back goes on after what was before', () => {
        const { record } = read(header + [5000, 5010, 200, 210].map(time => row(time)).join(''));
        assert.deepEqual([...record.columns.time.subarray(0, 4), record.setBackLine], [0, 10, 10, 20, 4]);
    });

    test('without times is told, and gets those of an even rate', () => {
        const { record } = read(header + row(0).repeat(3));
        assert.ok(record.timeless);
        spreadTimes(record.columns, 50);
        assert.deepEqual([...record.columns.time.subarray(0, 3)], [0, 20, 40]);
    });

    test('with a crossed right eye and a screen of another shape', () => {
        const { record } = read(header + Array.from({ length: 40 }, (_, i) => row(1000 + i, 50, 20 + i / 10)).join(''));
        assert.ok(record.crossed);
        assert.deepEqual([record.columns.rightX[0], record.columns.rightY[0]], [50, 20]);
        assert.ok(record.aspect > 1.4 && record.aspect < 1.8);
    });

    for (const [name, content, key, line, more = {}] of [
        ['an empty file', '', 'emptyFile', 1],
        ['a header alone', header, 'noRows', 2],
        ['a header that is cut off', header.slice(0, 40), 'notARecord', 1],
        ['a picture', Uint8Array.from([137, 80, 78, 71, 13, 10, 26, 10, 0, 0]), 'notARecord', 1, { found: '\uFFFDPNG' }],
        ['bytes without line ends', new Uint8Array(200000).fill(65), 'notARecord', 1],
        ['a record and then an endless line', header + row(1) + '1'.repeat(200000), 'lineTooLong', 3],
        ['another table', 'a,b\r\n1,2\r\n', 'notARecord', 1, { found: 'a,b' }],
        ['a text in a cell', header + row(1) + row(2, '<b>'), 'noNumber', 3, { column: 4, name: 'X', found: '<b>' }],
        ['an empty cell', header + row(1, ''), 'noNumber', 2, { column: 4 }],
        ['a line with too few cells', `${header}1,2,3\r\n${row(1)}`, 'wrongColumns', 2, { columns: 3, expected: 23 }],
        ['a line with too many cells', header + row(1).replace('\r', ',1,1\r'), 'wrongColumns', 2, { columns: 25 }],
    ])
        test(`is not ${name}`, () => {
            const { error } = read(content, 65536);
            assert.equal(error?.key, key);
            for (const [value, expected] of Object.entries({ line, ...more })) assert.equal(error.values[value], expected);
        });
});

/** Samples at 100 Hz; each part is [count, x, y]. */
function gazeOf(...parts) {
    const columns = new SampleColumns();
    const nothing = Object.fromEntries(columnNames.map(name => [name, NaN]));
    for (const [count, x, y] of parts)
        for (let i = 0; i < count; ++i) columns.append(10 * columns.length, { ...nothing, x: x + (i % 2), y });
    return columns;
}

describe('fixations', () => {
    const lost = [NaN, NaN];
    for (const [name, parts, expected] of [
        ['one', [[20, 50, 50]], [[0, 190]]],
        ['two places', [[20, 50, 50], [15, 80, 20]], [[0, 190], [200, 140]]],
        ['the next begins behind the one before', [[20, 50, 50], [20, 53, 50]], [[0, 200], [210, 180]]],
        ['too short to count', [[10, 50, 50]], []],
        ['just long enough', [[11, 50, 50]], [[0, 100]]],
        ['a slow drift is none', Array.from({ length: 50 }, (_, i) => [1, 2 * i, 50]), []],
        ['found behind a saccade', [[3, 10, 10], [2, 30, 30], [20, 50, 50]], [[50, 190]]],
        ['a short loss within', [[10, 50, 50], [6, ...lost], [10, 50, 50]], [[0, 250]]],
        ['a long loss parts them', [[15, 50, 50], [20, ...lost], [15, 50, 50]], [[0, 140], [350, 140]]],
        ['nothing but loss', [[50, ...lost]], []],
        ['percent of the height count less', [[20, 50, 50], [20, 50, 53]], [[0, 390]]],
    ])
        test(name, () => {
            const found = findFixations(gazeOf(...parts), usualParameters, 16 / 9);
            assert.deepEqual(found.map(({ startMs, durationMs }) => [startMs, durationMs]), expected);
        });

    test('of a range, with their numbers and figures', () => {
        const columns = gazeOf([20, 50, 50], [20, 80, 20], [20, 10, 80]);
        const range = { fromMs: 150, toMs: 590 };
        const { first, list } = fixationsIn(findFixations(columns, usualParameters, 16 / 9), range);
        assert.deepEqual([first, list.length], [1, 2]);
        const { count, durationMs, fixationCount, meanFixationMs } = summaryOf(columns, list, range);
        assert.deepEqual([count, durationMs, fixationCount, meanFixationMs], [45, 440, 2, 190]);
    });
});

test('the heat map is warmest where the gaze was most, and keeps the order of its cells', () => {
    const { width, height, shares } = heatMapOf(gazeOf([30, 25, 75], [10, 90, 10], [5, 500, 500]), 0, 45, 16 / 9);
    const at = (x, y) => shares[Math.floor((y * height) / 100) * width + Math.floor((x * width) / 100)];
    assert.ok(at(25.5, 75) > 0.9 && at(90.5, 10) > 0.2 && at(90.5, 10) < 0.5 && at(50, 50) === 0);
    assert.ok(heatMapOf(gazeOf([3, NaN, NaN]), 0, 3, 1).shares.every(share => share === 0));
});

test('validity in parts of the time', () => {
    const columns = gazeOf([10, 1, 1], [10, NaN, NaN]);
    assert.deepEqual(validShares(columns, 0, 200, 4), [1, 1, 0, 0]);
    assert.deepEqual(validShares(columns, 80, 120, 8), [1, 1, 1, 1, 0, 0, 0, 0]);
    assert.deepEqual(validShares(columns, 190, 390, 2), [0, NaN]);
});

test('ranges stay within the whole', () => {
    const range = { fromMs: 200, toMs: 600 };
    for (const [actual, expected] of [
        [zoomed(range, 0.5, 400, 1000), [300, 500]],
        [zoomed(range, 0.5, 200, 1000), [200, 400]],
        [zoomed(range, 10, 400, 1000), [0, 1000]],
        [zoomed(range, 0.001, 400, 1000), [350, 450]],
        [moved(range, 900, 1000), [600, 1000]],
        [moved(range, -900, 1000), [0, 400]],
        [between(700, 300, 1000), [300, 700]],
        [between(-50, 5000, 1000), [0, 1000]],
        [zoomed({ fromMs: 0, toMs: 0 }, 2, 0, 0), [0, 0]],
    ])
        assert.deepEqual([actual.fromMs, actual.toMs], expected);
});
