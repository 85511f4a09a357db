import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { drawGaze } from '../../web/js/live/gaze_view.js';
import { overlap } from '../../web/js/live/overlap.js';
import { Poller, pauseMs } from '../../web/js/live/poller.js';
import { SampleStream } from '../../web/js/live/sample_stream.js';
import { screenIn } from '../../web/js/shared/screen.js';
import { columnsOf, listOf } from './support/columns.js';
import { fakeSurface } from './support/fake_context.js';

const sample = (timestamp, x, more = {}) => ({
    timestamp, valid: true, x, y: 20, x_px: 0, y_px: 0, l_x: x, l_y: 20, r_x: x, r_y: 20, l_pupil_mm: 3,
    r_pupil_mm: 3 + x / 100, distance_cm: 60, ...more,
});
const clocked = i => sample(1000000 + 10 * i, 50 + (i % 7));
const unclocked = i => sample(0, 50 + ((i * 37) % 41));
const steady = i => sample(1000000 + 10 * i, 50);
const lost = () => sample(0, 0, { valid: false, y: 0, l_x: 0, l_y: 0, r_x: 0, r_y: 0 });

/** Returns the samples `from` to `to` (excluded). */
const series = (from, to, toSample) => listOf(to - from, i => toSample(from + i));

/** Returns a stream that has processed answers. Each answer is its samples and its arrival time. */
function streamOf(...answers) {
    const stream = new SampleStream();
    for (const [samples, nowMs] of answers) stream.take({ result: true, samples }, nowMs);
    return stream;
}

const valuesOf = ({ columns }, name = 'time') => Array.from(columns[name].subarray(0, columns.length));

describe('overlap', () => {
    for (const [name, previous, next, expected] of [
        ['nothing before', '', 'abc', 0],
        ['nothing now', 'abc', '', 0],
        ['the same answer', 'abc', 'abc', 3],
        ['the oldest are dropped and new ones added', 'abcdef', 'defgh', 3],
        ['equal elements have the longest overlap', 'abb', 'bbbb', 2],
        ['a partial match starts earlier', 'ababac', 'abacx', 4],
        ['a match in the middle is no overlap', 'xaby', 'ab', 0],
    ])
        test(name, () => assert.equal(overlap([...previous], [...next], (a, b) => a === b), expected));

    test('takes linear time for almost equal elements', () => {
        const many = last => [...'a'.repeat(20000), last];
        let comparisonCount = 0;
        overlap(many('b'), many('c'), (a, b) => ++comparisonCount > 0 && a === b);
        assert.ok(comparisonCount < 200000, `${comparisonCount} comparisons`);
    });
});

describe('stream', () => {
    for (const [name, toSample] of [
        ['with timestamps', clocked], ['without timestamps', unclocked], ['of a steady gaze', steady],
    ]) {
        test(`${name} has each sample once, in order`, () => {
            const stream = streamOf(...listOf(20, i => [series(Math.max(0, 3 * i - 20), 3 * i, toSample), 90 * i]));
            assert.deepEqual(valuesOf(stream, 'x'), series(0, 57, toSample).map(({ x }) => x));
            assert.deepEqual(valuesOf(stream), valuesOf(stream).sort((a, b) => a - b));
            assert.equal(stream.timeline.byArrival, toSample === unclocked);
        });
    }

    test('without timestamps spreads new samples over the time since the last answer', () => {
        const stream = streamOf([series(0, 10, unclocked), 5000], [series(4, 14, unclocked), 5100]);
        assert.deepEqual(valuesOf(stream).slice(10), [5025, 5050, 5075, 5100]);
    });

    test('keeps earlier samples after a gap of the tracker, but not after missed requests', () => {
        const later = i => sample(1009000 + 10 * i, 50 + i);
        for (const [pollMs, firstMs] of [[100, 1000000], [5000, 1009000]]) {
            const stream = streamOf([series(0, 10, clocked), 0]);
            for (let nowMs = pollMs; nowMs < 5000; nowMs += pollMs)
                stream.take({ result: true, samples: series(0, 10, clocked) }, nowMs);
            stream.take({ result: true, samples: series(0, 10, later) }, 5000);
            assert.equal(valuesOf(stream)[0], firstMs);
        }
    });

    test('has all samples if a late answer overlaps the previous one', () => {
        const stream = streamOf([series(0, 150, clocked), 0], [series(140, 290, clocked), 1900]);
        assert.equal(stream.columns.length, 290);
    });

    test('starts again when the clock is set back', () => {
        const setBack = [...series(5, 10, clocked), sample(7000, 1), sample(7010, 2)];
        const stream = streamOf([series(0, 10, clocked), 1000], [setBack, 1100]);
        assert.deepEqual(valuesOf(stream), [7000, 7010]);
        assert.equal(stream.timeline.now(1100), 7010);
    });

    test('starts again when the tracker starts or stops sending timestamps', () => {
        const stamped = [sample(1200, 1), sample(1210, 2)];
        const stream = streamOf([series(0, 4, unclocked), 1000], [stamped, 1100]);
        assert.deepEqual(valuesOf(stream), [1200, 1210]);
        stream.take({ result: true, samples: series(0, 4, unclocked) }, 1250);
        assert.deepEqual(valuesOf(stream), [1137.5, 1175, 1212.5, 1250]);
    });

    test('corrects a crossed right eye, also in earlier samples', () => {
        const crossed = i => sample(1000000 + 10 * i, 70 + (i % 5), { r_x: 20, r_y: 70 + (i % 5) });
        const stream = streamOf([series(0, 40, crossed), 1000]);
        assert.ok(stream.crossed);
        assert.deepEqual([valuesOf(stream, 'rightX')[0], valuesOf(stream, 'rightY')[0]], [70, 20]);
        assert.deepEqual([valuesOf(stream, 'rightX')[39], valuesOf(stream, 'rightY')[39]], [74, 20]);
    });

    test('has at most ten seconds', () => {
        const stream = streamOf(...listOf(30, i => [series(100 * i, 100 * i + 150, clocked), 1000 * i]));
        const times = valuesOf(stream);
        assert.ok(times[times.length - 1] - times[0] <= 10000);
        assert.ok(times.length > 900);
    });
});

describe('state', () => {
    const running = { result: true, samples: [clocked(0)] };
    const changed = { result: true, samples: [clocked(0), clocked(1)] };
    for (const [name, expected, answers, nowMs] of [
        ['before the first answer', 'connecting', [], 0],
        ['without an answer', 'offline', [[running, 100], [null, 200]], 200],
        ['without a tracker', 'noTracker', [[{ result: false, samples: [] }, 0]], 0],
        ['without samples', 'noSamples', [[{ result: true, samples: [] }, 0]], 0],
        ['the first samples may be old', 'connecting', [[running, 100], [running, 1100]], 1100],
        ['the first samples do not change', 'stalled', [[running, 100], [running, 1101]], 1101],
        ['the last change was a second ago', 'live', [[running, 0], [changed, 100], [changed, 1100]], 2600],
        ['the last change was longer ago', 'stalled', [[running, 0], [changed, 100], [changed, 1101]], 2601],
        ['an answer is late', 'connecting', [[running, 0], [changed, 100], [changed, 1101]], 2602],
    ])
        test(name, () => {
            const stream = new SampleStream();
            for (const [answer, answerMs] of answers) stream.take(answer, answerMs);
            assert.equal(stream.state(nowMs), expected);
        });

    test('is live if only the number of samples changes, as for lost eyes without timestamps', () => {
        const stream = streamOf([series(0, 200, lost), 0], [series(0, 200, lost), 900]);
        assert.equal(stream.state(900), 'connecting');
        stream.take({ result: true, samples: series(0, 199, lost) }, 1800);
        assert.equal(stream.state(1800), 'live');
    });
});

describe('gaze view', () => {
    const [width, height, aspect] = [550, 350, 16 / 9];
    const { toX, toY } = screenIn({ width, height }, aspect);

    function draw(times, rowOf, nowMs) {
        const surface = fakeSurface(width, height);
        drawGaze(surface, columnsOf(times, rowOf), nowMs, aspect);
        return surface.context;
    }

    for (const [name, samples, nowMs, expected] of [
        ['joins samples', [[0, 10, 20], [10, 11, 22], [20, 12, 24]], 100, [[10, 20, 11, 22], [11, 22, 12, 24]]],
        ['joins its pieces', [[0, 10, 20], [190, 11, 20], [210, 12, 20]], 2000, [[10, 20, 11, 20], [11, 20, 12, 20]]],
        ['does not cross a loss', [[0, 10, 20], [10, 11, 20], [20, NaN, NaN], [30, 80, 90], [40, 81, 90]], 100,
            [[10, 20, 11, 20], [80, 90, 81, 90]]],
        ['does not cross a gap', [[0, 10, 20], [10, 11, 20], [20, 12, 20], [500, 80, 90], [510, 81, 90], [520, 82, 90]],
            600, [[10, 20, 11, 20], [11, 20, 12, 20], [80, 90, 81, 90], [81, 90, 82, 90]]],
        ['is two seconds long', [[0, 10, 20], [10, 11, 20], [20, 12, 20]], 2010, [[11, 20, 12, 20]]],
        ['ends at the shown time', [[0, 10, 20], [10, 11, 20], [20, 12, 20]], 15, [[10, 20, 11, 20]]],
    ])
        test(`the trail ${name}`, () => {
            const context = draw(samples.map(([timeMs]) => timeMs), i => ({ x: samples[i][1], y: samples[i][2] }), nowMs);
            const lines = expected.map(([x0, y0, x1, y1]) => [toX(x0), toY(y0), toX(x1), toY(y1)]);
            assert.deepEqual(context.lines.gaze, lines);
        });

    test('shows the newest position of each eye and of the gaze', () => {
        const rowOf = i => ({ x: 20 + i, y: 25, leftX: 30 + i, leftY: 35, rightX: 40 + i, rightY: 45 });
        const context = draw([0, 10, 20], rowOf, 20.5);
        assert.deepEqual(context.circles, [[toX(32), toY(35)], [toX(42), toY(45)], [toX(22), toY(25)]]);
        assert.deepEqual(context.lines.right[0], [toX(40), toY(45), toX(41), toY(45)]);
    });
});

describe('poller', () => {
    /**
     * Polls with the answers of a fake service, which refuses further requests. Returns the reports of the poller.
     * `beforeTick` is called five times, with a function that hides or shows the page.
     */
    async function poll(t, answers, beforeTick = () => {}) {
        const reports = [];
        let [nowMs, timers, changed] = [0, [], undefined];
        t.mock.method(globalThis, 'setTimeout', (run, ms) => timers[timers.push({ run, dueMs: nowMs + ms }) - 1]);
        t.mock.method(globalThis, 'clearTimeout', timer => { timers = timers.filter(other => other !== timer); });
        globalThis.document = { hidden: false, addEventListener: (_, listener) => { changed = listener; } };
        t.mock.method(globalThis, 'fetch', async () => ({ ok: answers.length > 0, json: async () => answers.shift() }));
        new Poller(answer => reports.push(answer) > 0);
        for (let i = 0; i < 5; ++i) {
            beforeTick(i, hidden => { globalThis.document.hidden = hidden; changed(); });
            nowMs += 200;
            const due = timers.filter(({ dueMs }) => dueMs <= nowMs);
            timers = timers.filter(timer => !due.includes(timer));
            for (const { run } of due) run();
            await new Promise(setImmediate);
        }
        return reports;
    }

    const samples = [clocked(0)];
    for (const [name, answers, expected] of [
        ['the samples', [{ result: true, samples, sampleCount: 1 }], { result: true, samples }],
        ['no samples without a tracker', [{ result: false }], { result: false, samples: [] }],
        ['no samples without an array', [{ result: 'true', samples: { length: 1 } }], { result: false, samples: [] }],
        ['an invalid answer', [null], null],
    ])
        test(`reports ${name}`, async t => assert.deepEqual((await poll(t, answers))[0], expected));

    test('waits longer after each failure', async t => assert.equal((await poll(t, [])).length, 2));

    test('sends one request at a time, and none while the page is hidden', async t => {
        const answers = listOf(20, i => ({ result: true, samples: [clocked(i)] }));
        const reports = await poll(t, answers, (i, hide) => {
            for (const hidden of i === 2 ? [true] : [true, false, true, false]) hide(hidden);
        });
        assert.deepEqual(reports.map(report => report.samples[0]), listOf(4, clocked));
    });
});

test('pause between requests', () => {
    for (const [args, expected] of [
        [[0, 10, true], 150],
        [[0, 10, false], 390],
        [[0, 90, true], 210],
        [[0, 3000, true], 0],
        [[3, 5, false], 1000],
        [[1000, 5, false], 4000],
    ])
        assert.equal(pauseMs(...args), expected, args.join());
});
