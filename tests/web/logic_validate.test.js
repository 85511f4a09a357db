import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { areaOnScreen, calibratedScreenOf, screenCheckOf, zoomPercentOf } from '../../web/js/validate/calibrated_screen.js';
import { GazeCollector } from '../../web/js/validate/gaze_collector.js';
import { liveChecks, nominalRateOf } from '../../web/js/validate/live_checks.js';
import { inRandomOrder, targets } from '../../web/js/validate/target_order.js';
import { SampleColumns } from '../../web/js/shared/sample_columns.js';

const screenOf = (number, x, y, width, height, scale = 1) => ({ number, x, y, width, height, scale });
const left = screenOf(1, 0, 0, 1920, 1080);
const right = screenOf(2, 1920, 0, 1920, 1080);
const large = screenOf(2, 1920, 200, 2560, 1440);
/** Display scaling halves the size in desktop pixels, but not in device pixels. */
const scaled = screenOf(2, 1920, 0, 3840, 2160, 2);

const browserAt = (centreX, centreY, widthPx = 1920, heightPx = 1080) => ({ widthPx, heightPx, centreX, centreY });

describe('the calibrated screen', () => {
    const cases = [
        ['the same screen', [left, large], { x: 0, y: 0, width: 1920, height: 1080, unit: 'desktop' }, browserAt(900, 500), 1, 'match'],
        ['a screen of another size', [left, large], { x: 1920, y: 200, width: 2560, height: 1440, unit: 'desktop' }, browserAt(900, 500), 2, 'otherScreen'],
        ['the twin of the calibrated screen', [left, right], { x: 1920, y: 0, width: 1920, height: 1080, unit: 'desktop' }, browserAt(900, 500), 2, 'otherScreen'],
        ['the right one of two twins', [left, right], { x: 1920, y: 0, width: 1920, height: 1080, unit: 'device' }, browserAt(2900, 500), 2, 'match'],
        ['scaled, area in desktop pixels', [left, scaled], { x: 1920, y: 0, width: 1920, height: 1080, unit: 'desktop' }, browserAt(2500, 500, 3840, 2160), 2, 'match'],
        ['scaled, area in device pixels', [left, scaled], { x: 1920, y: 0, width: 3840, height: 2160, unit: 'device' }, browserAt(2500, 500, 3840, 2159), 2, 'match'],
        ['no area', [left], null, browserAt(900, 500), undefined, 'unknown'],
        ['an area outside of all screens', [left], { x: 5000, y: 0, width: 100, height: 100, unit: 'desktop' }, browserAt(900, 500), undefined, 'unknown'],
    ];
    for (const [name, screens, area, browserScreen, number, check] of cases) {
        test(name, () => {
            assert.equal(calibratedScreenOf({ area, screens })?.number, number);
            assert.equal(screenCheckOf({ area, screens }, browserScreen), check);
        });
    }

    test('percent of an area are converted to fractions of its screen', () => {
        const area = { x: 2020, y: 100, width: 960, height: 540, unit: 'desktop' };
        const part = areaOnScreen({ area, screens: [left, scaled] });
        assert.deepEqual([part.x(0), part.x(50), part.y(0), part.y(100)], [100 / 1920, 580 / 1920, 100 / 1080, 640 / 1080]);
        const whole = areaOnScreen({ area: null, screens: [left] });
        assert.deepEqual([whole.x(25), whole.y(75)], [0.25, 0.75]);
    });

    test('a zoom is noticed, but not the frame of the window', () => {
        const zooms = [[1920, 1920], [1936, 1905], [1920, 1280], [1920, 2400]].map(([outerWidth, innerWidth]) =>
            zoomPercentOf({ outerWidth, innerWidth }));
        assert.deepEqual(zooms, [null, null, 150, 80]);
    });
});

test('the targets are shown once each, and each order is equally likely', () => {
    assert.deepEqual(targets[5], { id: 5, x: 75, y: 50 });
    const firstIds = new Set();
    for (let i = 0; i < 500; ++i) {
        const order = inRandomOrder();
        assert.deepEqual(order.map(({ id }) => id).sort(), [0, 1, 2, 3, 4, 5, 6, 7, 8]);
        firstIds.add(order[0].id);
    }
    // The probability that one of the nine is never the first is below 10^-24.
    assert.equal(firstIds.size, 9);
    // The swaps of a Fisher-Yates shuffle that always draws 0.
    assert.deepEqual(inRandomOrder(() => 0).map(({ id }) => id), [1, 2, 3, 4, 5, 6, 7, 8, 0]);
});

describe('the collected gaze', () => {
    const area = { x: percent => percent / 100, y: percent => percent / 100 };
    const screen = { widthPx: 1000, heightPx: 500 };
    let number = 0;
    /** Returns a sample. Its pupils differ from sample to sample, as those of a real eye. */
    const sampleAt = (time, x, y, change = {}) => ({
        number: ++number, time, timestamp: time, valid: true, l_valid: true, r_valid: true, x, y, x_px: 0, y_px: 0,
        l_x: x, l_y: y, r_x: x, r_y: y, l_pupil_mm: 3 + number / 1e6, r_pupil_mm: 3 + number / 1e6, distance_cm: 60, ...change,
    });
    /** Adds 1 s of gaze on each target at 100 Hz. `changeOf` returns changes of a target's samples. */
    const collect = changeOf => {
        const collector = new GazeCollector();
        for (const target of targets) {
            const fromMs = 5000 + 2000 * target.id;
            collector.addWindow({ target, fromMs, toMs: fromMs + 1000 });
            for (let i = -20; i < 120; ++i) collector.add([sampleAt(fromMs + 10 * i, target.x, target.y, changeOf(target, i))].filter(sample => !sample.missing));
        }
        return collector;
    };

    test('has pixels from the centre of the screen, and ids only in the windows', () => {
        const samples = collect(() => ({ l_x: 60, l_y: 40 })).samples(area, screen);
        assert.equal(samples.timestampMs.length, 9 * 140);
        assert.equal(samples.timestampMs[0], 0);
        const ids = [...samples.targetId];
        for (let id = 0; id < 9; ++id) assert.equal(ids.filter(other => other === id).length, 100);
        const inLast = ids.lastIndexOf(8);
        assert.deepEqual(
            [samples.left.x, samples.left.y, samples.right.x, samples.right.y, samples.targetX, samples.targetY].map(column => column[inLast]),
            [100, -50, 250, 125, 250, 125]);
        assert.ok(Number.isNaN(samples.targetX[0]));
    });

    test('has the right eye with its axes in order', () => {
        const collector = collect(({ x, y }) => ({ r_x: y, r_y: x }));
        assert.equal(collector.isRightEyeCrossed, true);
        const { right: { x, y }, targetX, targetY, targetId } = collector.samples(area, screen);
        for (let i = 0; i < targetId.length; ++i) {
            if (targetId[i] >= 0) assert.deepEqual([x[i], y[i]], [targetX[i], targetY[i]]);
        }
    });

    const lost = { l_valid: false, r_valid: false, valid: false };
    const cases = [
        ['all samples are valid', () => ({}), []],
        ['both eyes are lost at two targets', ({ id }, i) => (id === 2 || id === 7) && i > 30 && lost, [2, 7]],
        ['a short blink', ({ id }, i) => id === 4 && i > 50 && i < 70 && lost, []],
        ['one eye is lost at one target', ({ id }) => id === 3 && { r_valid: false }, [3]],
        ['one eye is never seen, and the other is lost at one target', ({ id }) => ({ r_valid: false, l_valid: id !== 5 }), [5]],
        ['no eye is ever seen', () => lost, [0, 1, 2, 3, 4, 5, 6, 7, 8]],
        ['samples that did not arrive', ({ id }, i) => id === 6 && i % 3 !== 0 && { missing: true }, [6]],
    ];
    for (const [name, changeOf, ids] of cases) {
        test(`shows targets again: ${name}`, () => {
            assert.deepEqual(collect((target, i) => changeOf(target, i) || {}).targetsWithTooFewSamples(100).map(({ id }) => id), ids);
        });
    }

    test('of a repeated target replaces the first window', () => {
        const collector = collect(() => ({}));
        collector.addWindow({ target: targets[0], fromMs: 30000, toMs: 31000 });
        collector.add([sampleAt(30500, 20, 20, { distance_cm: 70 })]);
        assert.ok(Math.abs(collector.meanDistanceMm() - (800 * 600 + 700) / 801) < 1e-9);
        // Missing samples at both edges keep the duration of the window.
        const { targetId, timestampMs, left: { x } } = collector.samples(area, screen);
        const first = targetId.indexOf(0);
        assert.deepEqual([...targetId.subarray(first)], [0, 0, 0]);
        assert.deepEqual([...timestampMs.subarray(first)].map(ms => ms - timestampMs[first]), [0, 500, 999]);
        assert.deepEqual([...x.subarray(first)], [NaN, -300, NaN]);
    });

    test('has a window for a target at which no sample arrived', () => {
        const { targetId } = collect(({ id }) => id === 4 && { missing: true }).samples(area, screen);
        assert.deepEqual([...targetId].filter(id => id === 4), [4, 4]);
    });
});

test('the checks describe the last samples', () => {
    const columns = new SampleColumns();
    for (let i = 0; i < 600; ++i) {
        const row = { x: 1, y: 1, leftX: i % 10 ? 1 : NaN, leftY: 1, rightX: NaN, rightY: NaN, leftPupil: 3, rightPupil: 3 };
        columns.append(10 * i, { ...row, distance: i % 2 ? 60 : 62 });
    }
    const { leftShare, rightShare, rateHz, distanceMm, distanceSdMm } = liveChecks(columns, 6000);
    assert.deepEqual([leftShare, rightShare, rateHz, distanceMm, distanceSdMm], [0.9, 0, 100, 610, 10]);
    const unknown = liveChecks(columns, 60000);
    assert.ok([unknown.leftShare, unknown.rateHz, unknown.distanceMm].every(Number.isNaN));
});

test('the nominal rate is one that the tracker has', () => {
    for (const [trackerName, rates] of Object.entries({
        eyetech: [[60.9, 60], [149.2, 150], [118, 120], [139, 150], [77.4, NaN], [1040, 1000], [NaN, NaN]],
        gazepoint: [[60.9, 60], [45, 60], [100, 150], [149.2, 150], [205, 200], [NaN, NaN]],
        'aSee Pro': [[60, 120], [118, 120]],
    })) {
        for (const [measured, nominal] of rates) assert.equal(nominalRateOf(measured, trackerName), nominal, `${trackerName} ${measured}`);
    }
});
