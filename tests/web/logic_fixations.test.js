import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { defaultDispersionParameters, findDispersionFixations } from '../../web/js/record/fixations.js';
import { knownGeometry } from '../../web/js/record/known_geometry.js';
import { defaultVelocityParameters, findVelocityFixations } from '../../web/js/record/velocity_fixations.js';
import { columnsOf, gazeOf, listOf } from './support/columns.js';

const lost = [NaN, NaN];

describe('fixations by dispersion', () => {
    for (const [name, parts, expected] of [
        ['two places', [[20, 50, 50], [16, 80, 20]], [[0, 190, 50.5, 50], [200, 150, 80.5, 20]]],
        ['two adjacent ones do not overlap', [[20, 50, 50], [20, 53, 50]],
            [[0, 200, 50 + 13 / 21, 50], [210, 180, 53 + 10 / 19, 50]]],
        ['too short', [[10, 50, 50]], []],
        ['just long enough', [[11, 50, 40]], [[0, 100, 50 + 5 / 11, 40]]],
        ['a slow drift', listOf(50, i => [1, 2 * i, 50]), []],
        ['after a saccade', [[3, 10, 10], [2, 30, 30], [20, 50, 50]], [[50, 190, 50.5, 50]]],
        ['after a sample that does not fit', [[1, 46, 50], [20, 48.5, 50]], [[10, 190, 49, 50]]],
        ['after a drift', [[5, 46, 50], [20, 48.5, 50]], [[50, 190, 49, 50]]],
        ['with a short loss', [[10, 50, 50], [6, ...lost], [10, 50, 50]], [[0, 250, 50.5, 50]]],
        ['separated by a long loss', [[16, 50, 50], [20, ...lost], [16, 50, 50]],
            [[0, 150, 50.5, 50], [360, 150, 50.5, 50]]],
        ['all samples are lost', [[50, ...lost]], []],
        ['the vertical extent is converted to percent of the width', [[20, 50, 50], [20, 50, 53]], [[0, 390, 50.5, 51.5]]],
    ])
        test(name, () => {
            const found = findDispersionFixations(gazeOf(...parts), defaultDispersionParameters, 16 / 9);
            assert.deepEqual(found.map(({ startMs, durationMs, x, y }) => [startMs, durationMs, x, y]), expected);
        });
});

/** Near the centre of this screen, 1 % of the width is 1 degree, and 1 % of the height is half a degree. */
const geometry = { widthMm: 1745.5, heightMm: 872.8, distanceMm: 1000 };

/** Returns samples in parts of [count, x, y, step of x, step of y]. The combined gaze is that of the eyes. */
function movingGaze(parts, timeOf = i => 10 * i, eyesOf = gaze => ({ ...gaze, leftX: gaze.x, leftY: gaze.y })) {
    const gaze = parts.flatMap(([count, x, y, dx = 0, dy = 0]) => listOf(count, i => ({ x: x + i * dx, y: y + i * dy })));
    return columnsOf(gaze.map((_, i) => timeOf(i)), i => eyesOf(gaze[i], i));
}

/** The velocity at 100 Hz is the distance of the next sample from the previous one, in 20 ms. */
describe('fixations by velocity', () => {
    const twoPlaces = [[20, 50, 50], [20, 60, 50]];
    const vergence = ({ x, y }, rightX) => ({ leftX: x - 1, leftY: y, rightX, rightY: y });
    for (const [name, parts, expected, ...more] of [
        ['two places', twoPlaces, [[0, 180, 50, 50], [210, 180, 60, 50]]],
        ['two places, combined gaze only', twoPlaces, [[0, 180, 50, 50], [210, 180, 60, 50]], undefined, gaze => gaze],
        ['a saccade of three samples', [[20, 50, 50], [3, 52, 50, 2], [20, 58, 50]], [[0, 180, 50, 50], [240, 180, 58, 50]]],
        ['a short loss', [[10, 50, 50], [6, ...lost], [10, 50, 50]], [[0, 250, 50, 50]]],
        ['a saccade during a short loss', [[10, 50, 50], [6, ...lost], [10, 60, 50]], [[0, 80, 50, 50], [170, 80, 60, 50]]],
        ['a long loss', [[16, 50, 50], [20, ...lost], [16, 60, 50]], [[0, 150, 50, 50], [360, 150, 60, 50]]],
        ['all samples are lost', [[50, ...lost]], []],
        ['a wrong sample is bridged', [[10, 50, 50], [1, 52, 50], [10, 50, 50]], [[0, 200, 50, 50]]],
        ['merged: 60 ms and 0.4 degrees', [[10, 50, 50], [3, 53, 50], [10, 50.4, 50]], [[0, 220, 50.2, 50]]],
        ['not merged: 0.7 degrees', [[10, 50, 50], [3, 53, 50], [10, 50.7, 50]], [[0, 80, 50, 50], [140, 80, 50.7, 50]]],
        ['not merged: 90 ms', [[10, 50, 50], [6, 53, 50], [10, 50, 50]], [[0, 80, 50, 50], [170, 80, 50, 50]]],
        ['too short', [[5, 50, 50], [8, 60, 50], [5, 50, 50]], []],
        ['just long enough', [[5, 50, 50], [9, 60, 50], [5, 50, 50]], [[60, 60, 60, 50]]],
        ['a drift of 20 degrees per second', [[40, 46, 50, 0.2]], [[0, 390, 49.9, 50]]],
        ['a drift of 40 degrees per second', [[40, 46, 50, 0.4]], []],
        ['the same drift at the edge is 25 degrees per second', [[21, 90, 50, 0.4]], [[0, 200, 94, 50]]],
        ['a drift of 29 degrees per second below the centre', [[20, 47, 100, 0.32]], [[0, 190, 50.04, 100]]],
        ['a vertical drift of 20 degrees per second', [[41, 50, 42, 0, 0.4]], [[0, 400, 50, 50]]],
        ['a vertical drift of 40 degrees per second', [[40, 50, 42, 0, 0.8]], []],
        ['the same in both directions is 28 degrees per second', [[41, 46, 42, 0.2, 0.4]], [[0, 400, 50, 50]]],
        ['unequal intervals', [[41, 46, 50, 0.2]], [[0, 405, 50, 50]], i => 10 * i + (i % 2 || i === 40 ? 5 : 0)],
        ['bursts of three samples', [[21, 50, 50], [21, 60, 50]], [[0, 150, 50, 50], [240, 150, 60, 50]],
            i => 30 * Math.floor(i / 3)],
        ['1000 Hz', [[200, 50, 50], [200, 60, 50]], [[0, 189, 50, 50], [210, 189, 60, 50]], i => i],
        ['an eye is lost', [[20, 50, 50]], [[0, 190, 30, 50]], undefined,
            (gaze, i) => ({ ...vergence(gaze, i < 10 ? gaze.x + 1 : NaN), x: 30, y: 50 })],
        ['the eyes are lost in turn', [[20, 50, 50]], [[10, 170, 50, 50]], undefined,
            ({ x, y }, i) => ({ x, y, [i % 2 ? 'leftX' : 'rightX']: x, [i % 2 ? 'leftY' : 'rightY']: y })],
        ['the combined gaze is lost', [[21, 48, 50, 0.2]], [[0, 200, 50, 50]], undefined, gaze => vergence(gaze, gaze.x + 1)],
    ])
        test(name, () => {
            const parameters = { method: 'velocity', ...defaultVelocityParameters, ...geometry };
            const found = findVelocityFixations(movingGaze(parts, ...more), parameters);
            const rows = found.map(({ startMs, durationMs, x, y }) => [startMs, durationMs, x, y].map(value => +value.toFixed(3)));
            assert.deepEqual(rows, expected);
        });

    test('not merged over a long loss', () => {
        const parameters = { method: 'velocity', ...defaultVelocityParameters, ...geometry, maxLossMs: 50 };
        const found = findVelocityFixations(movingGaze([[10, 50, 50], [5, ...lost], [10, 50, 50]]), parameters);
        assert.deepEqual(found.map(({ startMs }) => startMs), [0, 150]);
    });
});

describe('the geometry of a recording', () => {
    const none = { widthMm: NaN, heightMm: NaN, distanceMm: NaN };
    const entry = { widthMm: 600, heightMm: 340, distanceMm: 700 };
    const wide = { widthMm: 531, heightMm: 299 };
    const memory = (screens, ...distances) => ({ screens: { ...screens }, distancesMm: { ...distances } });
    for (const [name, entered, remembered, distance_cm, expected] of [
        ['is unknown', none, memory([]), NaN, [NaN, NaN, NaN, false, false]],
        ['is that of the only validation', none, memory([wide], 620), NaN, [531, 299, 620, true, false]],
        ['is that of equal validations', none, memory([wide, { ...wide }], 620, 620), NaN, [531, 299, 620, true, false]],
        ['is not taken from different validations', none, memory([wide, entry], 620, 650), NaN, [NaN, NaN, NaN, false, false]],
        ['is not that of a screen of another shape', none, memory([{ widthMm: 400, heightMm: 300 }, wide]), NaN,
            [531, 299, NaN, true, false]],
        ['is the last entry', entry, memory([wide], 620), NaN, [600, 340, 700, true, false]],
        ['has the distance of the record', entry, memory([wide], 620), 65.4, [600, 340, 654, true, true]],
    ])
        test(name, () => {
            const columns = columnsOf([0, 10, 20, 30], i => ({ distance: i === 3 ? NaN : distance_cm + i - 1 }));
            const known = knownGeometry({ columns, aspect: 16 / 9 }, entered, remembered);
            const { widthMm, heightMm, distanceMm, isRemembered, isDistanceMeasured } = known;
            assert.deepEqual([widthMm, heightMm, distanceMm, isRemembered, isDistanceMeasured], expected);
        });
});
