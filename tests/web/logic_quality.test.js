import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { describe, test } from 'node:test';
import {
    accuracy, bcea, dataLossFromExpected, dataLossFromInvalid, dataQuality, durationOf, effectiveFrequency,
    fickToVector, percentToDegrees, pixelsToDegrees, rmsS2s, std, vectorToFick,
} from '../../web/js/shared/data_quality.js';
import { readExchangeFile, windowsOf, writeExchangeFile } from '../../web/js/shared/exchange_file.js';
import { FileError } from '../../web/js/shared/file_error.js';
import { listOf } from './support/columns.js';

const geometry = { widthMm: 528, heightMm: 297, widthPx: 1920, heightPx: 1080, distanceMm: 650 };

/** Compares all numbers in `expected`, which may be nested, with those of the same names in `actual`. */
function assertNear(actual, expected, maxError = 1e-9) {
    if (expected === null || typeof expected !== 'object')
        assert.ok(Math.abs(actual - expected) <= maxError || Object.is(actual, expected), `${actual} is not ${expected}`);
    else for (const key of Object.keys(expected)) assertNear(actual[key], expected[key], maxError);
}

describe('reference values', () => {
    const ramp = [1, 2, 3];
    const [a, e] = [[0.1, -0.2, 0.35, 0.05, -0.15], [0.2, 0.1, -0.1, 0.15, -0.05]];
    const cornerDegrees = { azimuth: [11.479345875965551], elevation: [6.387425798162902] };
    for (const [name, actual, expected] of [
        ['accuracy', accuracy([1, 2], [1, 2], 0, 0),
            { offset: 2.121158751899327, azimuth: 1.4998857365616753, elevation: 1.5000570914791966 }],
        ['accuracy at the target', accuracy([20], [-10], 20, -10), { offset: 0, azimuth: 0, elevation: 0 }],
        ['RMS-S2S', rmsS2s(a, e),
            { total: 0.4107919181288746, azimuth: 0.361420807370024, elevation: 0.19525624189766638 }],
        ['RMS-S2S of a ramp', rmsS2s(ramp, ramp), { total: 1.4142135623730951, azimuth: 1, elevation: 1 }],
        ['RMS-S2S skips pairs with a missing sample', rmsS2s([0, 1, NaN, 9, 9, 5], [0, 0, 0, 0, NaN, 0]), { total: 1 }],
        ['STD', std(a, e),
            { total: 0.22803508501982758, azimuth: 0.19646882704388496, elevation: 0.11575836902790228 }],
        ['STD of a ramp', std(ramp, ramp), { total: 1.1547005383792517, azimuth: 0.816496580927726 }],
        ['BCEA', bcea(a, e), { area: 0.19679873829871522, orientation: -12.3587204555417 }],
        ['BCEA of a line', bcea([1, 2, 3], [2, 4, 6]), { area: 0, orientation: 63.43494882292201, minorAxis: 0 }],
        ['Fick angles to a vector', fickToVector(30, 10),
            { x: 0.49240387650610395, y: 0.17364817766693033, z: 0.8528685319524433 }],
        ['vector to Fick angles', vectorToFick(0.5, 0.2, 0.8),
            { azimuth: 32.005383208083494, elevation: 11.969463124607309 }],
        ['position in pixels', pixelsToDegrees([480], [270], geometry), cornerDegrees],
        ['position in percent', percentToDegrees([75], [75], geometry), cornerDegrees],
        ['data loss', dataLossFromInvalid([1, NaN, 3, 4], [1, 2, NaN, 4]), 50],
        ['data loss of a slow tracker', dataLossFromExpected([1, NaN, 3], [1, 2, 3], 0.1, 50), 60],
        ['effective frequency', effectiveFrequency([1, NaN, 3], [1, 2, 3], 0.1), 20],
    ])
        test(name, () => assertNear(actual, expected));
});

/** Returns a function for random numbers of a normal distribution, which are the same in each run. */
function normalNumbers(seed = 1) {
    let state = seed;
    const uniform = () => (state = (state * 48271) % 2147483647) / 2147483647;
    return () => Math.sqrt(-2 * Math.log(uniform())) * Math.cos(2 * Math.PI * uniform());
}

describe('samples of a target', () => {
    const count = 400;
    const normal = normalNumbers();
    const [noiseA, noiseE] = [listOf(count, normal), listOf(count, normal)];
    const target = { targetAzimuth: 8, targetElevation: -5 };
    const durationS = durationOf(Float64Array.from(listOf(count, i => 10 * i)));

    /** Returns a segment whose gaze is beside the target. */
    const segment = (noise = 0.2, change = {}) => ({
        durationS, ...target, azimuth: Float64Array.from(noiseA, value => 8.5 + noise * value),
        elevation: Float64Array.from(noiseE, value => -4.75 + 0.5 * noise * value), ...change,
    });

    test('turning the screen and the gaze about the vertical axis changes nothing', () => {
        const { azimuth } = segment();
        for (const turn of [-25, 3, 12])
            assertNear(dataQuality(segment(0.2, { targetAzimuth: 8 + turn, azimuth: azimuth.map(a => a + turn) })),
                dataQuality(segment()));
    });

    test('turning the screen and the gaze about any axis does not change the offset', () => {
        const { azimuth, elevation } = segment();
        const rolled = (a, e, angle) => {
            const { x, y, z } = fickToVector(a, e);
            const [cos, sin] = [Math.cos(angle), Math.sin(angle)];
            const [x1, y1] = [cos * x - sin * y, sin * x + cos * y];
            return vectorToFick(x1, cos * y1 - sin * z, sin * y1 + cos * z);
        };
        const { offset } = accuracy(azimuth, elevation, 8, -5);
        for (const angle of [-0.3, 0.1, 0.4]) {
            const gaze = Array.from(azimuth, (a, i) => rolled(a, elevation[i], angle));
            const turned = rolled(8, -5, angle);
            assertNear(accuracy(gaze.map(g => g.azimuth), gaze.map(g => g.elevation), turned.azimuth, turned.elevation),
                { offset });
        }
    });

    test('more noise never improves precision', () => {
        const measures = [0, 0.01, 0.1, 0.5, 2].map(noise => dataQuality(segment(noise)));
        for (const valueOf of [q => q.rmsS2s.total, q => q.std.total, q => q.bcea.area, q => q.bcea.majorAxis])
            measures.slice(1).forEach((measure, i) => assert.ok(valueOf(measure) > valueOf(measures[i])));
    });

    test('the ellipse contains its share of the samples and has its area', () => {
        const { azimuth, elevation } = segment();
        for (const probability of [0.5, 0.68, 0.95]) {
            const { area, orientation, majorAxis, minorAxis } = bcea(azimuth, elevation, probability);
            assertNear(Math.PI * majorAxis * minorAxis, area);
            const [cos, sin] = [Math.cos((orientation * Math.PI) / 180), Math.sin((orientation * Math.PI) / 180)];
            const isInside = (a, i) => {
                const [da, de] = [a - 8.5, elevation[i] + 4.75];
                return Math.hypot((cos * da + sin * de) / majorAxis, (cos * de - sin * da) / minorAxis) <= 1;
            };
            assertNear(Array.from(azimuth).filter(isInside).length / count, probability, 0.05);
        }
    });

    test('missing samples change data loss, but not accuracy', () => {
        const twice = values => Float64Array.from(listOf(count, i => values[i >> 1]));
        const [azimuth, elevation] = [twice(segment().azimuth), twice(segment().elevation)];
        const complete = dataQuality(segment(0.2, { azimuth, elevation, expectedHz: 100 }));
        // One angle is enough to make a sample missing.
        const halved = { azimuth: azimuth.map((a, i) => (i % 4 === 0 ? NaN : a)),
            elevation: elevation.map((e, i) => (i % 4 === 3 ? NaN : e)) };
        const lossy = dataQuality(segment(0.2, { ...halved, expectedHz: 100 }));
        const loss = (percent, effectiveFrequencyHz) =>
            ({ dataLossPercent: percent, dataLossFromExpectedPercent: percent, effectiveFrequencyHz, durationS: 4 });
        assertNear(complete, loss(0, 100));
        assertNear(lossy, loss(50, 50));
        assertNear(lossy, { accuracy: complete.accuracy, std: complete.std, validCount: 200 });
    });

    for (const [name, validCount, change, hasAccuracy] of [
        ['half of the samples are enough', count / 2, {}, true],
        ['fewer are not', count / 2 - 1, {}, false],
        ['samples that were not delivered count, too', count / 2, { expectedHz: 101 }, false],
        ['no valid sample', 0, {}, false],
    ])
        test(`accuracy needs data: ${name}`, () => {
            const azimuth = segment().azimuth.map((a, i) => (i < validCount ? a : NaN));
            assert.equal(dataQuality(segment(0.2, { azimuth, ...change })).accuracy !== null, hasAccuracy);
        });

    test('the duration includes the interval after the last sample', () => {
        const durations = [[0, 10, 20, 90], [0, 10, 40], [5]].map(times => durationOf(Float64Array.from(times)));
        assertNear(durations, [0.1, 0.06, NaN]);
    });

    test('measures without data are NaN', () => {
        assertNear([rmsS2s([1], [1]), std([NaN], [1]), accuracy([], [], 0, 0)],
            [{ total: NaN, azimuth: NaN }, { total: NaN }, { offset: NaN, elevation: NaN }]);
        assertNear([bcea([1, NaN], [1, 1]), dataLossFromInvalid([], []), dataLossFromExpected([1], [1], NaN, 100)],
            [{ area: NaN, majorAxis: NaN }, NaN, NaN]);
        assertNear([effectiveFrequency([1], [1], 0), bcea([1, 1], [2, 2])], [NaN, { area: 0, majorAxis: 0, minorAxis: 0 }]);
    });
});

describe('exchange file', () => {
    const header = 'timestamp\tleft_x\tleft_y\tright_x\tright_y\ttarget_id\ttar_x\ttar_y\n';
    const row = (time, id = 0, target = '0\t0') => `${time}\t1.5\t-2\t3\t4e1\t${id}\t${target}\n`;
    const complete = `${header + row(0, -1, '\t')}5\t\t\tnan\tNaN\t2\t480\t-270\n${row(10, 2, '480\t-270')}`;
    const samples = {
        timestampMs: Float64Array.of(0, 5, 10),
        left: { x: Float64Array.of(1.5, NaN, 1.5), y: Float64Array.of(-2, NaN, -2) },
        right: { x: Float64Array.of(3, NaN, 3), y: Float64Array.of(40, NaN, 40) },
        targetId: Float64Array.of(-1, 2, 2),
        targetX: Float64Array.of(NaN, 480, 480),
        targetY: Float64Array.of(NaN, -270, -270),
    };
    const read = text => readExchangeFile(new TextEncoder().encode(text));
    const reversed = line => line && `7\t${line.split('\t').reverse().join('\t')}\ttext`;
    const columnsWithout = (text, ...dropped) => text.trimEnd().split('\n')
        .map(line => line.split('\t').filter((_, i) => !dropped.includes(i)).join('\t')).join('\n');

    for (const [name, text, expected] of [
        ['as another tool writes it', complete, samples],
        ['as this module writes it', writeExchangeFile(samples), samples],
        ['with CR LF, a byte order mark and empty lines at the end',
            `\uFEFF${complete.replaceAll('\n', '\r\n')}\r\n`, samples],
        ['without the last line end', complete.trimEnd(), samples],
        ['with other columns, in another order', complete.split('\n').map(reversed).join('\n'), samples],
        ['with the left eye only', columnsWithout(complete, 3, 4), { ...samples, right: null }],
        ['with the right eye only', writeExchangeFile({ ...samples, left: null }), { ...samples, left: null }],
    ])
        test(name, () => assert.deepEqual(read(text), expected));

    test('a target that is shown again has another window', () => {
        const rows = [1, 1, -1, 1, 3].map((id, i) => row(10 * i, id, `${100 * id}\t0`));
        const windows = windowsOf(read(header + rows.join('')));
        assert.deepEqual(windows.map(({ targetId, x, from, to }) => [targetId, x, from, to]),
            [[1, 100, 0, 2], [1, 100, 3, 4], [3, 300, 4, 5]]);
    });

    for (const [name, text, key, line, more] of [
        ['an empty file', '\n', 'emptyFile', 1],
        ['without a column', columnsWithout(complete, 7), 'noColumn', 1, { name: 'tar_y' }],
        ['with half of an eye', columnsWithout(complete, 2), 'noColumn', 1, { name: 'left_y' }],
        ['separated by commas', complete.replaceAll('\t', ','), 'noColumn', 1, { name: 'timestamp' }],
        ['without an eye', columnsWithout(complete, 1, 2, 3, 4), 'noEye', 1],
        ['with a column twice', complete.replace('right_x', 'left_x\tright_x'), 'columnTwice', 1, { name: 'left_x' }],
        ['with a text in a number', complete.replace('4e1', 'lost'), 'noNumber', 2,
            { column: 5, name: 'right_y', found: 'lost' }],
        ['without a timestamp', complete.replace('\n10\t', '\n\t'), 'noNumber', 4, { name: 'timestamp', found: '' }],
        ['without a target id', header + row(0, ''), 'noNumber', 2, { name: 'target_id' }],
        ['with a cut off line', complete.slice(0, -6), 'wrongColumns', 4, { columns: 7, expected: 8 }],
        ['with an empty line', complete.replace('\n5', '\n\n5'), 'noNumber', 3, { column: 1 }],
        ['whose time goes back', header + row(10) + row(5), 'timeOrder', 3],
        ['with a fractional target id', header + row(0, 1.5), 'noTargetId', 2, { found: 1.5 }],
        ['with another negative target id', header + row(0, -2), 'noTargetId', 2],
        ['with constant timestamps', header + row(0, -1) + row(5).repeat(3), 'constantTime', 3, { target: 0 }],
        ['without targets', header + row(0, -1), 'noTargets', 2],
        ['without samples', header, 'noTargets', 2],
        ['with a target without position', header + row(0) + row(1, 0, '0\t'), 'noPosition', 3, { target: 0 }],
        ['with a moving target', header + row(0) + row(1, 0, '0\t1'), 'targetMoves', 3, { target: 0 }],
    ])
        test(`refused: ${name}`, () => assert.throws(() => read(text), error => {
            assert.ok(error instanceof FileError, error.stack);
            assert.deepEqual([error.key, error.values], [key, { ...error.values, line, ...more }]);
            return true;
        }));
});

describe('tools/data-quality', () => {
    const tool = new URL('../../tools/data-quality', import.meta.url).pathname;
    const options = ['--screen', '528x297', '--resolution', '1920x1080', '--distance', '650'];
    const run = (input, ...args) => spawnSync(tool, args, { input, encoding: 'utf8' });
    /** The left eye looks 1 degree below the first target and is lost at the second; the right eye looks at them. */
    const offsetPx = (Math.tan(Math.PI / 180) * 650 * 1080) / 297;
    const file = writeExchangeFile({
        timestampMs: Float64Array.from(listOf(8, i => 10 * i)),
        left: { x: new Float64Array(8), y: Float64Array.from(listOf(8, i => (i < 4 ? offsetPx : NaN))) },
        right: { x: new Float64Array(8), y: new Float64Array(8) },
        targetId: Float64Array.from(listOf(8, i => i >> 2)), targetX: new Float64Array(8), targetY: new Float64Array(8),
    });

    test('prints each eye and target, and the means', () => {
        const { stdout, status } = run(file, '-', ...options, '--rate', '100');
        const [header, ...rows] = stdout.trimEnd().split('\n').map(line => line.split('\t'));
        const columns = ['eye', 'target_id', 'accuracy_deg', 'std_deg', 'data_loss_percent', 'effective_frequency_hz'];
        assert.equal(status, 0);
        assert.deepEqual(rows.map(row => columns.map(name => row[header.indexOf(name)]).join(' ')), [
            'left 0 1.0000 0.0000 0.00 100.00', 'left 1 not enough data nan 100.00 0.00',
            'left mean 1.0000 0.0000 50.00 50.00', 'right 0 0.0000 0.0000 0.00 100.00',
            'right 1 0.0000 0.0000 0.00 100.00', 'right mean 0.0000 0.0000 0.00 100.00',
            'combined 0 0.5000 0.0000 0.00 100.00', 'combined 1 not enough data nan 100.00 0.00',
            'combined mean 0.5000 0.0000 50.00 50.00', 'mean mean 0.5000 0.0000 25.00 75.00',
        ]);
    });

    for (const [name, args, status, message] of [
        ['a broken file', ['-', ...options], 1, /-: Line 1: the column “timestamp” is missing/],
        ['a file that does not exist', ['/nowhere.tsv', ...options], 1, /nowhere\.tsv: ENOENT/],
        ['no file', options, 2, /one file is needed/],
        ['a missing option', ['-', ...options.slice(2)], 2, /--screen is missing/],
        ['a wrong size', ['-', '--screen', '528', ...options.slice(2)], 2, /--screen must be WIDTHxHEIGHT/],
        ['a distance of 0', ['-', ...options.slice(0, 5), '0'], 2, /--distance must be a number greater than 0/],
        ['an unknown option', ['-', ...options, '--size', '1'], 2, /--size/],
    ])
        test(`refuses ${name}`, () => {
            const result = run('a,b\n', ...args);
            assert.deepEqual([result.status, result.stdout], [status, '']);
            assert.match(result.stderr, message);
        });
});
