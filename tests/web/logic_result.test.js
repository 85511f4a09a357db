import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { FileError } from '../../web/js/shared/file_error.js';
import { screenIn } from '../../web/js/shared/screen.js';
import { fileNameOf } from '../../web/js/validate/file_names.js';
import { entryOf, figuresOf, historyTable, sessionsOf, summariesOf } from '../../web/js/validate/history.js';
import { methodsText } from '../../web/js/validate/methods_text.js';
import { qualityOf } from '../../web/js/validate/quality_of.js';
import { drawPicture } from '../../web/js/validate/quality_picture.js';
import { isValidationFile, readValidationFile, writeValidationFile } from '../../web/js/validate/validation_file.js';
import { defaultLimits, verdictOf } from '../../web/js/validate/verdict.js';
import { fakeSurface } from './support/fake_context.js';
import { geometry, validationOf } from './support/validations.js';

const same = degrees => [[degrees, 0], [degrees, 0]];
const near = (actual, expected, tolerance = 1e-3) =>
    assert.ok(Math.abs(actual - expected) <= tolerance, `${actual} is not ${expected}`);

describe('verdict', () => {
    const limits = { accuracy: 1, dataLoss: 10 };
    const lost = [null, null];
    for (const [name, targets, level, accuracy, loss, unmeasured = [], expectedHz = null] of [
        ['both eyes within the limits', [[[0.5, 0], [0, 0.7]]], 'good', [0.6, []], [0, []]],
        ['the mean exceeds the limit', [[[0.5, 0], [0, 0.7]], [[2, 0], [0, -1.6]]], 'bad', [1.2, [1]], [0, []]],
        ['a target exceeds the limit', [same(0.2), same(0.2), same(-1.2)], 'partly', [1.6 / 3, [2]], [0, []]],
        ['one eye is outside of the limit', [[[1.8, 0], [0.1, 0]]], 'partly', [0.95, []], [0, []]],
        ['an eye is lost at a target', [same(0.1), [[0.1, 0], null]], 'bad', [0.1, []], [25, [1]], [1]],
        ['no data', [lost, lost], 'unknown', [NaN, []], [100, [0, 1]], [0, 1]],
        ['samples that were not delivered', [same(0.1)], 'bad', [0.1, []], [50, [0]], [], 200],
    ])
        test(name, () => {
            const verdict = verdictOf(qualityOf(validationOf(targets, { expectedHz })), limits);
            assert.deepEqual([verdict.level, verdict.unmeasured], [level, unmeasured]);
            assert.equal(verdict.figures[1].isAtNominalRate, expectedHz === 200);
            verdict.figures.forEach(({ value, targets: exceeding, isExceeded, limit }, i) => {
                const [expected, ids] = [accuracy, loss][i];
                if (!Number.isNaN(expected)) near(value, expected);
                assert.deepEqual([exceeding, isExceeded], [ids, expected > limit]);
            });
        });
});

describe('history', () => {
    const entry = (time, left, right, change = {}) =>
        entryOf(validationOf([[left, right], [left, right]], { id: String(time), time, ...change }));
    const entries = [
        entry(40, [0.6, 0.8], [0, -0.1]), entry(20, [0.3, 0.4], [0, 0]), entry(30, [9, 9], [9, 9]),
        entry(10, [5, 5], [5, 5], { tracker: 'eyetech' }), entry(35, [0, 0], null, { session: 'B' }),
        entry(50, [0, 0], [0, 0], { participant: 'P2\t"x"' }), entry(36, [1, 0], [1, 0], { session: 'B' }),
        ...[1, 2].map(time => entry(time, [time, 0], [0, 0], { participant: '', session: '' })),
    ];

    test('the data loss is that of the table', () => {
        const { dataLossPercent, dataLossFromExpectedPercent } = figuresOf(entry(1, [0, 0], [0, 0], { expectedHz: 200 }));
        assert.deepEqual([dataLossPercent, dataLossFromExpectedPercent], [0, 50]);
    });

    test('the figures of a tracker are summarised over all validations', () => {
        const summaries = summariesOf(entries);
        // The only validation with the other tracker is not summarised.
        assert.deepEqual(summaries.map(({ tracker, count }) => [tracker, count]), [['gazepoint', 8]]);
        const { leftAccuracy, rightAccuracy } = summariesOf(entries.filter(({ session }) => session === 'B'))[0].spreads;
        const spread = ({ mean, sd, min, max }) => [mean, sd, min, max];
        // Offsets of 0 and 1 degree, and of 1 degree only.
        [0.5, Math.SQRT1_2, 0, 1].forEach((expected, i) => near(spread(leftAccuracy)[i], expected));
        assert.deepEqual(spread(rightAccuracy).map(value => Math.round(1000 * value) / 1000), [1, NaN, 1, 1]);
    });

    test('sessions are sorted, and the drift is that of the last used tracker', () => {
        const sessions = sessionsOf(entries);
        assert.deepEqual(sessions.map(({ participant, session, entries: group }) =>
            [participant, session, group.map(({ time }) => time)]),
        [['P2\t"x"', 'A', [50]], ['P1', 'A', [10, 20, 30, 40]], ['P1', 'B', [35, 36]], ['', '', [1, 2]]]);
        const drifts = sessions.flatMap(({ drift }) => drift);
        const expected = [
            ['left', 0.3, 0.4, 0.5, 0.5], ['right', 0, -0.1, 0.1, 0.1],
            // The right eye has no accuracy in the first validation of this session.
            ['left', 1, 0, 1, 1],
        ];
        assert.deepEqual(drifts.map(({ name }) => name), expected.map(([name]) => name));
        drifts.forEach(({ azimuth, elevation, length, accuracy }, i) =>
            [azimuth, elevation, length, accuracy].forEach((value, j) => near(value, expected[i][j + 1])));
    });

    test('the table has a line for each validation and eye', () => {
        const [header, ...rows] = historyTable(entries).trimEnd().split('\n').map(line => line.split('\t'));
        const cells = (row, ...names) => names.map(name => row[header.indexOf(name)]).join(' ');
        assert.equal(rows.length, 3 * entries.length);
        assert.ok(rows.every(row => row.length === header.length));
        assert.equal(cells(rows[9], 'time', 'tracker', 'eye', 'accuracy_x_deg', 'accuracy_y_deg', 'distance_mm', 'targets'),
            '1970-01-01T00:00:00.020Z gazepoint left 0.3000 0.4000 1000 2');
        assert.equal(cells(rows[16], 'session', 'eye', 'accuracy_deg', 'data_loss_percent'), 'B right not enough data 100.00');
        assert.equal(cells(rows[26], 'participant', 'eye'), 'P2 "x" combined');
    });
});

test('the text for the methods section names all figures', () => {
    const known = validationOf([[[0.5, 0], [0.7, 0]], [[0.5, 0], null]], { expectedHz: 100 });
    assert.equal(methodsText(known, qualityOf(known)),
        'The calibration of the GazePoint eye tracker was validated with 2 targets on a screen of 1,000 × 500 mm (1000 × 500 '
        + 'pixels) at a viewing distance of 1,000 mm; the nominal sample rate was 100 Hz, the effective rate 75.0 Hz '
        + '(valid samples per second). Determined according to Niehorster, Nyström, Hessels, Benjamins, Andersson & Hooge (2026, '
        + 'doi:10.3758/s13428-026-03039-4) and averaged over the targets, the accuracy was 0.50° (left eye), 0.70° (right eye), '
        + '0.60° (mean position of both eyes), the RMS-S2S precision 0.00° (left eye), 0.00° (right eye), 0.00° (mean position '
        + 'of both eyes), the STD precision 0.00° (left eye), 0.00° (right eye), 0.00° (mean position of both eyes), and the '
        + 'data loss 0.0 % (left eye), 50.0 % (right eye), 50.0 % (mean position of both eyes). Relative to the nominal sample '
        + 'rate, the data loss was 0.0 % (left eye), 50.0 % (right eye), 50.0 % (mean position of both eyes).');
    const unknown = { ...validationOf([same(0)], { tracker: '' }) };
    assert.match(methodsText(unknown, qualityOf(unknown)), /^The calibration of the \[eye tracker\] .* mm; the effective rate /);
});

describe('JSON file', () => {
    const bytesOf = value => new TextEncoder().encode(typeof value === 'string' ? value : JSON.stringify(value));
    const both = validationOf([[[0.5, 0], null], same(1)], { expectedHz: 60 });
    const leftOnly = { ...both, samples: { ...both.samples, right: null } };

    for (const [name, validation] of [['both eyes', both], ['one eye', leftOnly]])
        test(`a saved validation is read unchanged: ${name}`, () => {
            const bytes = bytesOf(`\uFEFF ${writeValidationFile(validation, defaultLimits)}`);
            assert.ok(isValidationFile(bytes));
            assert.deepEqual(readValidationFile(bytes, 'a.json'),
                { ...validation, circumstances: { ...validation.circumstances, fileName: 'a.json' } });
        });

    test('other programs find everything in it', () => {
        const content = JSON.parse(writeValidationFile(both, defaultLimits));
        assert.equal(content.time, '2026-01-02T03:04:05.000Z');
        assert.deepEqual(content.targets, [{ targetId: 0, x: 0, y: 0 }, { targetId: 1, x: 0, y: 0 }]);
        assert.deepEqual(content.samples.right_x.slice(0, 4), [null, null, null, null]);
        const [left, right] = content.quality.gazes;
        near(left.mean.accuracy.offset, 0.75);
        assert.deepEqual([right.name, right.targets[0].targetId, right.targets[0].quality.accuracy], ['right', 0, null]);
        assert.deepEqual([content.limits, content.verdict.level], [defaultLimits, 'bad']);
    });

    for (const [name, change, key, part] of [
        ['cut off', text => text.slice(0, -10), 'brokenJson'],
        ['something else', () => '{"a": 1}', 'notAValidation'],
        ['null', () => 'null', 'notAValidation'],
        ['of a later version', content => ({ ...content, version: 2 }), 'laterVersion'],
        ['without distance', content => ({ ...content, geometry: { ...geometry, distanceMm: 0 } }), 'damagedValidation',
            'geometry.distanceMm'],
        ['with a length as text', content => ({ ...content, geometry: { ...geometry, widthMm: '1000' } }), 'damagedValidation',
            'geometry.widthMm'],
        ['with a wrong time', content => ({ ...content, time: 'yesterday' }), 'damagedValidation', 'time'],
        ['without samples', content => ({ ...content, samples: undefined }), 'damagedValidation', 'samples.timestamp'],
        ['with a shorter column', ({ samples, ...content }) => ({ ...content, samples: { ...samples, left_y: [1] } }),
            'damagedValidation', 'samples.left_y'],
        ['with a text', ({ samples, ...content }) => ({ ...content, samples: { ...samples, tar_x: Array(8).fill('1') } }),
            'damagedValidation', 'samples.tar_x'],
        ['without targets', ({ samples, ...content }) => ({ ...content, samples: { ...samples, target_id: Array(8).fill(-1) } }),
            'damagedValidation', 'samples.target_id'],
    ])
        test(`refused: ${name}`, () => {
            const text = writeValidationFile(both, defaultLimits);
            const bytes = bytesOf(change(name === 'cut off' ? text : JSON.parse(text)));
            assert.throws(() => readValidationFile(bytes, 'a.json'), error => {
                assert.ok(error instanceof FileError, error.stack);
                assert.deepEqual([error.key, error.values.part], [key, part]);
                return true;
            });
        });
});

for (const [name, change, expected] of [
    ['labels', { participant: 'a/b', session: ' Ü 1 ' }, /^validation_a-b_Ü-1_2026-01-0\d_\d\d-\d\d-05$/],
    ['no labels', { participant: '', session: '' }, /^validation_2026-01-0\d_\d\d-\d\d-05$/],
    ['an opened file', { circumstances: { fileName: 'my.data.tsv' } }, /^my\.data$/],
])
    test(`file name: ${name}`, () => assert.match(fileNameOf(validationOf([same(0)], change)), expected));

test('the picture has an arrow from the target to the mean gaze of each eye', () => {
    const validation = validationOf([[[1, 0], [0, -2]]]);
    const screen = screenIn({ width: 800, height: 400 }, geometry.widthPx / geometry.heightPx);
    for (const enlargement of [1, 3]) {
        const surface = fakeSurface(800, 400);
        drawPicture(surface, validation, qualityOf(validation), { enlargement, ringDeg: 1 });
        const pixels = degrees => (enlargement * Math.tan((degrees * Math.PI) / 180) * 1000 * screen.width) / geometry.widthPx;
        for (const [colour, dx, dy] of [['left', pixels(1), 0], ['right', 0, pixels(-2)]]) {
            const arrow = surface.context.lines[colour].find(([x1, y1, x2, y2]) => Math.hypot(x2 - x1, y2 - y1) > 9);
            [400, 200, 400 + dx, 200 + dy].forEach((value, i) => near(arrow[i], value));
        }
    }
});
