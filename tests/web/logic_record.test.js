import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { ArrivalTimes } from '../../web/js/record/arrival_times.js';
import { recordingOf } from '../../web/js/record/chosen_files.js';
import { defaultDispersionParameters } from '../../web/js/record/fixations.js';
import { heatMapOf } from '../../web/js/record/heat_map.js';
import { dragToMove, dragToSelect } from '../../web/js/record/range_control.js';
import { RecordBuilder } from '../../web/js/record/record_builder.js';
import { drawOverview, drawPupils } from '../../web/js/record/record_charts.js';
import { RecordParser, headers, samplesFormat } from '../../web/js/record/record_parser.js';
import { RecordView } from '../../web/js/record/record_view.js';
import { drawScanPath } from '../../web/js/record/scan_path_view.js';
import { between, moved, zoomed } from '../../web/js/record/time_range.js';
import { validShares } from '../../web/js/record/validity.js';
import { parseDecimal } from '../../web/js/shared/decimal.js';
import { FileError } from '../../web/js/shared/file_error.js';
import { screenIn } from '../../web/js/shared/screen.js';
import { columnsOf, gazeOf, listOf } from './support/columns.js';
import { fakeSurface } from './support/fake_context.js';

const bytesOf = text => new TextEncoder().encode(text);
const header = `${headers.join()}\r\n`;
const row = (timestamp, x = 50, y = 25) =>
    `${timestamp},0,1,${x},${y},960,270,0,${x},${y},960,270,3.5,0,0,${y},${x},480,540,3.5,0,0,0\r\n`;

/** Reads a record file in pieces. */
function read(content, pieceBytes = 1 << 20) {
    const bytes = typeof content === 'string' ? bytesOf(content) : content;
    const builder = new RecordBuilder();
    const parser = new RecordParser((cells, line) => builder.add(cells, line));
    for (let at = 0; at < bytes.length; at += pieceBytes) parser.push(bytes.slice(at, at + pieceBytes));
    parser.finish();
    return { ...builder.finish(), cutOffLine: parser.cutOffLine };
}

const timesOf = ({ columns: { time, length } }) => Array.from(time.subarray(0, length));

test('decimal numbers', () => {
    const parse = text => parseDecimal(bytesOf(text), 0, text.length);
    for (const text of ['0', '-12', '+7', '12.300000190734863', '-.5', '5.', '1e-05', '-3.5E+4', '1700000000123', '0.00001'])
        assert.ok(Math.abs(Number(parse(text)) / Number(text) - 1 || 0) < 1e-15, text);
    for (const text of ['nan', '-inf', 'Infinity']) assert.ok(Number.isNaN(parse(text)), text);
    for (const text of ['', '-', '.', '1.2.3', '1,5', 'abc', '0x10', ' 1', '1-', '1e'])
        assert.equal(parse(text), undefined, text);
});

describe('record file', () => {
    const complete = header + row(1000) + row(1010);
    for (const [name, text, times, cutOffLine, setBackLine, hasGap = false] of [
        ['as Ocela writes it', complete, [0, 10], 0, 0],
        ['with LF and a byte order mark', `\uFEFF${complete.replaceAll('\r', '')}`, [0, 10], 0, 0],
        ['without the last line end', complete.trimEnd(), [0, 10], 0, 0],
        ['with an empty line at the end', `${complete}\r\n`, [0, 10], 0, 0],
        ['that is truncated', complete + row(1020).slice(0, -40), [0, 10], 4, 0],
        ['whose clock was set back', header + row(5000) + row(5010) + row(200) + row(210), [0, 10, 10, 20], 0, 4],
        ['whose clock may have been set forward', header + row(5000) + row(5100) + row(5110), [0, 100, 110], 0, 0, true],
        ['with an interval that is too short for that', header + row(5000) + row(5099), [0, 99], 0, 0],
    ])
        test(name, () => {
            for (const pieceBytes of [1, 7, 1 << 20]) {
                const record = read(text, pieceBytes);
                const { x, leftPupil, distance } = record.columns;
                const { setBackLine: foundLine, hasGap: foundGap } = record;
                assert.deepEqual([timesOf(record), record.cutOffLine, foundLine, foundGap], [times, cutOffLine, setBackLine, hasGap]);
                assert.deepEqual([x[1], leftPupil[1], distance[1]], [50, 3.5, NaN]);
            }
        });

    test('without timestamps gets times from the assumed rate', () => {
        const record = read(header + row(0).repeat(3));
        assert.deepEqual(timesOf(new RecordView(record, '', defaultDispersionParameters, 50)), [0, 20, 40]);
    });

    test('with a crossed right eye', () => {
        const { columns, crossed } = read(header + listOf(40, i => row(1000 + i, 50, 20 + i / 10)).join(''));
        assert.ok(crossed);
        assert.deepEqual([columns.rightX[0], columns.rightY[0]], [50, 20]);
    });

    test('with a different value in each column', () => {
        const line = '1000,0,1,50,25,800,160,61,52,26,90,91,3.5,92,93,54,28,94,95,4.5,96,97,98\r\n';
        const { columns, aspect } = read(header + line);
        const { x, y, leftX, leftY, rightX, rightY, leftPupil, rightPupil, distance } = columns;
        const values = [x, y, leftX, leftY, rightX, rightY, leftPupil, rightPupil, distance].map(([value]) => value);
        assert.deepEqual(values, [50, 25, 52, 26, 54, 28, 3.5, 4.5, 61]);
        assert.equal(aspect, 1600 / 640);
    });

    for (const [name, content, key, line, more] of [
        ['an empty file', '', 'emptyFile', 1],
        ['only a header', header, 'noRows', 2],
        ['a header that is cut off', header.slice(0, 40), 'notARecord', 1],
        ['an image', Uint8Array.from([137, 80, 78, 71, 13, 10, 26, 10, 0, 0]), 'notARecord', 1, { found: '\uFFFDPNG' }],
        ['bytes without line ends', new Uint8Array(200000).fill(65), 'notARecord', 1],
        ['a file with a line that is too long', header + row(1) + '1'.repeat(200000), 'lineTooLong', 3],
        ['another table', 'a,b\r\n1,2\r\n', 'notARecord', 1, { found: 'a,b' }],
        ['a text in a cell', header + row(1) + row(2, '<b>'), 'noNumber', 3, { column: 4, name: 'X', found: '<b>' }],
        ['an empty cell after an empty line', `${header}\n${row(1, '')}`, 'noNumber', 3, { column: 4 }],
        ['a line with too few cells', `${header}1,2,3\r\n${row(1)}`, 'wrongColumns', 2, { columns: 3, expected: 23 }],
        ['a line with too many cells', header + row(1).replace('\r', ',1,1\r'), 'wrongColumns', 2, { columns: 25 }],
    ])
        test(`is not ${name}`, () => assert.throws(() => read(content, 65536), error => {
            assert.ok(error instanceof FileError);
            assert.equal(error.key, key);
            assert.deepEqual(error.values, { ...error.values, line, ...more });
            return true;
        }));
});

describe('samples file', () => {
    const samplesHeader = `${samplesFormat.headers.join()}\r\n`;
    const sample = arrival => `7,${arrival},1,0\r\n`;

    /** Reads a record file with its samples file. */
    function readBoth(record, samples) {
        const file = read(record);
        const times = new ArrivalTimes();
        const parser = new RecordParser((cells, line) => times.add(cells, line), samplesFormat);
        parser.push(bytesOf(samples));
        parser.finish();
        times.applyTo(file, file.cutOffLine > 0);
        return new RecordView({ ...file, samples: null }, '', defaultDispersionParameters, 50);
    }

    const arrivals = ['1700000000123.456', '1700000000133.956', '1700000000133.956', '1700000000200'].map(sample);
    const timeless = header + row(0).repeat(4);
    for (const [name, record, samples, times] of [
        ['gives times to a record without timestamps', timeless, samplesHeader + arrivals.join(''), [0, 10.5, 10.5, 76.544]],
        ['replaces timestamps of a clock that was set back', header + row(50) + row(60) + row(20) + row(30),
            samplesHeader + arrivals.join(''), [0, 10.5, 10.5, 76.544]],
        ['replaces timestamps of a clock that was set forward', header + row(50) + row(60060) + row(60070) + row(60080),
            samplesHeader + arrivals.join(''), [0, 10.5, 10.5, 76.544]],
        ['has more rows than a record file that is cut off', timeless.slice(0, -40), samplesHeader + arrivals.join(''),
            [0, 10.5, 10.5]],
        ['of many samples', header + row(0).repeat(3000),
            samplesHeader + listOf(3000, i => sample(1700000000000 + i / 8)).join(''), listOf(3000, i => i / 8)],
    ])
        test(name, () => {
            const view = readBoth(record, samples);
            timesOf(view).forEach((time, i) => assert.ok(Math.abs(time - times[i]) < 1e-3, `${time} ${i}`));
            assert.deepEqual([view.columns.length, view.timeless, view.file.setBackLine, view.placesMarkersByRow], [times.length, false, 0, false]);
        });

    for (const [name, samples, key, line] of [
        ['with fewer rows', samplesHeader + arrivals.slice(1).join(''), 'otherRowCount', 0],
        ['with more rows', samplesHeader + arrivals.join('') + sample(1700000000300), 'otherRowCount', 0],
        ['whose time goes back', samplesHeader + arrivals.reverse().join(''), 'arrivalOrder', 3],
        ['without a time', samplesHeader + sample('nan'), 'arrivalOrder', 2],
        ['that is a record file', timeless, 'notSamples', 1],
        ['with a missing column', `${samplesHeader}7,1,1\r\n`, 'wrongColumns', 2],
    ])
        test(`${name} is not used`, () => assert.throws(() => readBoth(timeless, samples), error => {
            assert.deepEqual([error.key, error.values.line], [key, line]);
            return true;
        }));

    for (const [names, record, samples, events] of [
        ['r.csv', 'r.csv'],
        ['r.csv r.json r_samples.csv', 'r.csv', 'r_samples.csv'],
        ['b_samples.csv a_samples.csv a.csv b.csv', 'a.csv', 'a_samples.csv'],
        ['a.csv b.csv b_samples.csv', 'a.csv'],
        ['renamed.csv r_samples.csv', 'renamed.csv', 'r_samples.csv'],
        ['R.CSV r_Samples.csv x_samples.csv', 'R.CSV', 'r_Samples.csv'],
        ['r_samples.csv', 'r_samples.csv'],
        ['r.json', 'r.json'],
        ['a_events.csv a_samples.csv a.json a.csv', 'a.csv', 'a_samples.csv', 'a_events.csv'],
        ['b_events.csv a.csv b.csv', 'a.csv'],
        ['a_areas.csv a_fixations.csv a_intervals.csv b_events.csv b.csv', 'b.csv', undefined, 'b_events.csv'],
        ['renamed.csv r_events.csv', 'renamed.csv', undefined, 'r_events.csv'],
    ])
        test(`chosen among ${names}`, () => {
            const files = recordingOf(names.split(' ').map(name => ({ name })));
            assert.deepEqual([files.record.name, files.samples?.name, files.events?.name], [record, samples, events]);
        });

    test('is not chosen without files', () => assert.equal(recordingOf([]), null));
});

function viewOf(columns, range) {
    const file = { columns, aspect: 16 / 9, crossed: false, timeless: false, setBackLine: 0, cutOffLine: 0, samples: null };
    const view = new RecordView(file, 'record.csv', defaultDispersionParameters, 60);
    view.show(range);
    return view;
}

function shareAt({ width, height, shares }, x, y) {
    return shares[Math.floor((y * height) / 100) * width + Math.floor((x * width) / 100)];
}

describe('a time range', () => {
    const columns = gazeOf([20, 50, 50], [20, 80, 20], [20, 10, 80]);

    test('has figures, and fixations numbered from the start of the recording', () => {
        const view = viewOf(columns, { fromMs: 150, toMs: 590 });
        assert.deepEqual([view.firstFixation, view.fixations.length], [1, 2]);
        const { count, durationMs, fixationCount, meanFixationMs } = view.summary;
        assert.deepEqual([count, durationMs, fixationCount, meanFixationMs], [45, 440, 2, 190]);

        const surface = fakeSurface(550, 350);
        drawScanPath(surface, view);
        const { context } = surface;
        const { toX, toY } = screenIn(surface, view.aspect);
        const places = [[toX(80.5), toY(20)], [toX(10.5), toY(80)]];
        assert.deepEqual(context.circles, places);
        assert.deepEqual(context.texts, places.map(([x, y], i) => ({ text: String(i + 2), x, y })));
        assert.deepEqual(context.lines.accent, [places.flat()]);
    });

    test('has a heat map of its samples', () => {
        const view = viewOf(columns, { fromMs: 0, toMs: 195 });
        assert.ok(shareAt(view.heatMap, 50.5, 50) > 0.9);
        view.show({ fromMs: 400, toMs: 590 });
        assert.ok(shareAt(view.heatMap, 10.5, 80) > 0.9);
    });

    test('changes the chart of the pupils, but not the chart of the whole recording', () => {
        const lostAfter500 = columnsOf(listOf(101, i => 10 * i), i => (
            { x: i < 50 ? 1 : NaN, leftPupil: i < 50 ? 3.5 : 3, rightPupil: 4 }));
        const [pupils, overview] = [fakeSurface(500, 100), fakeSurface(500, 100)];
        const view = viewOf(lostAfter500, { fromMs: 0, toMs: 250 });
        const chart = drawPupils(pupils, view);
        const whole = drawOverview(overview, view);
        assert.ok(pupils.context.lines.left.every(([, y0, , y1]) => y0 === chart.toY(3.5) && y1 === y0));
        assert.ok(pupils.context.lines.right.every(([, y0, , y1]) => y0 === chart.toY(4) && y1 === y0));
        const { band, accent } = overview.context.boxes;
        assert.ok(Math.abs(whole.toTime(band.at(-1)[2]) - 500) < 10);
        assert.deepEqual(accent.map(([left, , right]) => [left, right]), [[whole.toX(0), whole.toX(250)]]);
    });
});

test('the heat map is smooth in both directions and ignores gaze beyond the screen', () => {
    const map = heatMapOf(gazeOf([30, 25, 75], [10, 90, 10], [5, 150, 50]), 0, 45, 1);
    const at = (x, y) => shareAt(map, x, y);
    assert.ok(at(25.5, 75) > 0.9 && at(90.5, 10) > 0.2 && at(90.5, 10) < 0.5 && at(50, 50) === 0);
    for (const share of [at(25.5, 72), at(25.5, 78), at(22.5, 75), at(28.5, 75)]) assert.ok(share > 0.1 && share < 0.9);
    assert.ok(heatMapOf(gazeOf([3, NaN, NaN]), 0, 3, 1).shares.every(share => share === 0));
});

describe('valid shares', () => {
    const every = (stepMs, count, startMs = 0) => listOf(count, i => startMs + i * stepMs);
    const first10 = i => (i < 10 ? 1 : NaN);
    const all = () => 1;
    for (const [name, times, xOf, [fromMs, toMs], expected] of [
        ['of several samples', every(10, 20), first10, [0, 200], [1, 1, 0, 0]],
        ['of mixed samples', every(10, 20), first10, [80, 120], [0.5]],
        ['between two samples', every(10, 20), first10, [80, 120], [1, 1, 1, 1, 0, 0, 0, 0]],
        ['after the last sample', every(10, 20), first10, [190, 390], [0, NaN]],
        ['before the first sample', every(10, 20, 100), first10, [0, 200], [NaN, 1]],
        ['at 5 Hz', every(200, 20), first10, [1600, 2400], [1, 1, 1, 1, 0, 0, 0, 0]],
        ['at 1 Hz, zoomed in', every(1000, 20), first10, [5100, 5200], [1, 1]],
        ['in a long gap', [...every(10, 30), ...every(10, 30, 100000)], all, [90000, 110000], [NaN, NaN, 1, NaN]],
        ['of samples in bursts', every(1, 60).map(i => 100 * Math.floor(i / 4)), all, [100, 200], [1, 1]],
    ])
        test(name, () => {
            const columns = columnsOf(times, i => ({ x: xOf(i) }));
            assert.deepEqual(validShares(columns, { fromMs, toMs }, expected.length), expected);
        });
});

test('time ranges stay within the recording', () => {
    const range = { fromMs: 200, toMs: 600 };
    for (const [{ fromMs, toMs }, expected] of [
        [zoomed(range, 0.5, 400, 1000), [300, 500]],
        [zoomed(range, 0.5, 200, 1000), [200, 400]],
        [zoomed(range, 10, 400, 1000), [0, 1000]],
        [zoomed(range, 0.001, 400, 1000), [350, 450]],
        [moved(range, 900, 1000), [600, 1000]],
        [moved(range, -900, 1000), [0, 400]],
        [between(-50, 5000, 1000), [0, 1000]],
        [dragToMove(range, 400, 450, 1000), [150, 550]],
        [dragToSelect(range, 700, 300, 1000), [300, 700]],
        [zoomed({ fromMs: 0, toMs: 0 }, 2, 0, 0), [0, 0]],
    ])
        assert.deepEqual([fromMs, toMs], expected);
});
