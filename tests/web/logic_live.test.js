import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { recordingAt } from '../../web/js/live/controls.js';
import { EventStream } from '../../web/js/shared/event_stream.js';
import { drawGaze } from '../../web/js/live/gaze_view.js';
import { LiveModel } from '../../web/js/shared/live_model.js';
import { ProgramClock } from '../../web/js/shared/program_clock.js';
import { screenIn } from '../../web/js/shared/screen.js';
import { columnsOf, listOf } from './support/columns.js';
import { fakeSurface } from './support/fake_context.js';

const startMs = 1.7e12;

/** Returns a sample at 100 Hz, from `startMs` on. */
const sample = (i, more = {}) => ({
    number: i, time: startMs + 10 * i, timestamp: 0, valid: true, x: 50 + (i % 7), y: 20, x_px: 0, y_px: 0, l_x: i % 41, l_y: 20,
    r_x: i % 43, r_y: 20, l_pupil_mm: 3, r_pupil_mm: 3, distance_cm: 60, l_valid: true, r_valid: true, ...more,
});

/** Returns the samples `from` to `to` (excluded). */
const series = (from, to, toSample = sample) => listOf(to - from, i => toSample(from + i));

const tracker = { name: 'a', connected: true, reason: null, lastSampleAgeMs: null, newest: null };
const stateAt = (nowMs, change = {}) => ({ run: '1', time: startMs + nowMs, tracker, ...change });

/** Returns a model that has received a state and samples. The page's clock is 0 at `startMs`. */
function modelOf(...samples) {
    const model = new LiveModel();
    model.takeState(stateAt(0), 0);
    model.takeSamples(samples, samples.length > 0 ? samples[samples.length - 1].time - startMs : 0);
    return model;
}

const valuesOf = ({ columns }, name = 'time') => Array.from(columns[name].subarray(0, columns.length));

describe('model', () => {
    test('has the samples of the last ten seconds', () => {
        const model = modelOf(...series(0, 100));
        for (let i = 100; i < 3000; i += 100) model.takeSamples(series(i, i + 100), 10 * (i + 100));
        assert.deepEqual(valuesOf(model), series(2000, 3000).map(({ time }) => time));
        assert.deepEqual(model.recent, series(2800, 3000));
    });

    for (const [name, change, restarted] of [
        ['another tracker is selected', { tracker: { ...tracker, name: 'b' } }, false],
        ['Ocela is restarted', { run: '2' }, true],
    ])
        test(`starts again when ${name}`, () => {
            const model = modelOf(...series(0, 10));
            model.takeState(stateAt(90), 90);
            assert.equal(model.columns.length, 10);
            model.takeState(stateAt(100, change), 100);
            assert.deepEqual([model.columns.length, model.recent.length], [0, 0]);
            assert.equal(model.condition(100), 'noSamples');
            assert.equal(model.missed.restarted, restarted);
        });

    test('corrects a crossed right eye, also in earlier samples', () => {
        const model = modelOf(...series(0, 40, i => sample(i, { x: 70 + (i % 5), r_x: 20, r_y: 70 + (i % 5) })));
        assert.ok(model.crossed);
        assert.deepEqual([valuesOf(model, 'rightX')[0], valuesOf(model, 'rightY')[0]], [70, 20]);
        assert.deepEqual([valuesOf(model, 'rightX')[39], valuesOf(model, 'rightY')[39]], [74, 20]);
    });

    test('an eye that the tracker has not detected is missing', () => {
        const model = modelOf(sample(1, { l_valid: false }));
        assert.deepEqual([valuesOf(model, 'leftX'), valuesOf(model, 'rightX')], [[NaN], [1]]);
    });

    test('adds up the missed samples, and keeps the last markers', () => {
        const model = modelOf();
        for (const missed of [{ count: 3 }, { count: null }, { count: 4, events: 2 }]) model.takeMissed(missed);
        const { samples, markers, restarted } = model.missed;
        assert.deepEqual([samples, markers, restarted], [7, 2, true]);
        for (const i of [...listOf(100, index => index), ...listOf(101, index => 49 + index)])
            model.takeMarker({ time: i, text: '' });
        assert.deepEqual([model.markers.length, model.markers[99].time], [100, 149]);
    });

    const aged = lastSampleAgeMs => stateAt(0, { tracker: { ...tracker, lastSampleAgeMs, newest: 7 } });
    for (const [name, expected, take, nowMs] of [
        ['before the first connection', 'connecting', () => {}, 0],
        ['without a connection', 'offline', model => { model.takeState(stateAt(0), 0); model.lose(''); }, 0],
        ['connected again', 'noSamples', model => { model.lose('no'); model.takeState(stateAt(0), 0); }, 0],
        ['without a tracker', 'noTracker', model => model.takeState(stateAt(0, { tracker: null }), 0), 0],
        ['a disconnected tracker', 'notConnected',
            model => model.takeState(stateAt(0, { tracker: { ...tracker, connected: false } }), 0), 0],
        ['the sample of the state is new', 'live', model => model.takeState(aged(100), 0), 900],
        ['the sample of the state is old', 'stalled', model => model.takeState(aged(100), 0), 901],
        ['a sample a second ago', 'live', model => { model.takeState(aged(5000), 0); model.takeSamples([sample(1)], 10); }, 1010],
        ['a sample longer ago', 'stalled', model => { model.takeState(aged(0), 0); model.takeSamples([sample(1)], 10); }, 1011],
    ])
        test(`condition: ${name}`, () => {
            const model = new LiveModel();
            take(model);
            assert.equal(model.condition(nowMs), expected);
        });
});

test('the clock of Ocela is taken from the fastest answer, and follows drift and jumps', () => {
    for (const [observed, nowMs, expected] of [
        [[[1000, 0], [1950, 1000], [2990, 2000]], 2000, 3000 - 2],
        [[[1000, 0], [2030, 1000]], 1000, 2030],
        [[[1000, 0], [901000, 1000000]], 1000000, 901000],
        [[[1000, 0], [999000, 1000]], 1000, 999000],
    ]) {
        const clock = new ProgramClock();
        for (const times of observed) clock.observe(...times);
        assert.equal(Math.round(clock.now(nowMs)), expected, String(observed));
    }
});

describe('event stream', () => {
    /** Replaces the browser's classes and timers. Returns the log of events, and functions that control the fakes. */
    function fakeBrowser(t, refusal = null) {
        const log = [];
        let [nowMs, timers, visibilityChanged] = [0, [], () => {}];
        t.mock.method(globalThis, 'setTimeout', (run, ms) => timers[timers.push({ run, dueMs: nowMs + ms }) - 1]);
        t.mock.method(globalThis, 'clearTimeout', timer => { timers = timers.filter(other => other !== timer); });
        t.mock.method(globalThis, 'fetch', async () => ({ ok: !refusal, text: async () => JSON.stringify({ detail: refusal }) }));
        globalThis.document = { hidden: false, addEventListener: (_, listener) => { visibilityChanged = listener; } };
        globalThis.EventSource = class {
            static CLOSED = 2;
            listeners = {};
            readyState = 1;

            constructor(url) {
                browser.source = this;
                log.push(`open ${url.replace('/api/v1/stream?interval=100', '')}`);
            }

            addEventListener(name, listener) {
                this.listeners[name] = listener;
            }

            close() {
                log.push('close');
            }
        };
        const browser = {
            log,
            source: null,
            emit: (name, data, lastEventId = '') => browser.source.listeners[name]({ data: JSON.stringify(data), lastEventId }),
            fail: readyState => Object.assign(browser.source, { readyState }).listeners.error(),
            hide: hidden => { globalThis.document.hidden = hidden; visibilityChanged(); },
            wait: ms => {
                nowMs += ms;
                const due = timers.filter(({ dueMs }) => dueMs <= nowMs);
                timers = timers.filter(timer => !due.includes(timer));
                for (const { run } of due) run();
            },
        };
        const handler = name => value => log.push(`${name} ${JSON.stringify(value)}`);
        const names = ['state', 'samples', 'event', 'missed', 'lost'];
        new EventStream(Object.fromEntries(names.map(name => [name, handler(name)])));
        return browser;
    }

    test('passes events on, and continues after the last sample in a tab that was hidden', t => {
        const { log, emit, hide, wait } = fakeBrowser(t);
        emit('state', 1);
        emit('samples', [2], 'run:2');
        emit('event', 3, 'run:2');
        hide(true);
        wait(100000);
        hide(false);
        emit('missed', 4);
        assert.deepEqual(log, ['open ', 'state 1', 'samples [2]', 'event 3', 'close', 'lost ""', 'open &after=run:2', 'missed 4']);
    });

    test('makes a new connection when one fails or is silent, with increasing delays', async t => {
        const { log, emit, fail, wait } = fakeBrowser(t);
        emit('samples', [], 'run:7');
        wait(3999);
        emit('state', 1);
        wait(3999);
        assert.equal(log.length, 3);
        wait(1);
        await null;
        assert.deepEqual(log.splice(0), ['open ', 'samples []', 'state 1', 'close', 'lost ""']);
        for (const delayMs of [250, 500, 1000, 2000, 4000, 4000]) {
            wait(delayMs - 1);
            assert.deepEqual(log, []);
            wait(1);
            fail(0);
            await null;
            assert.deepEqual(log.splice(0), ['open &after=run:7', 'close', 'lost ""']);
        }
        wait(4000);
        emit('state', 1);
        fail(0);
        wait(250);
        assert.equal(log.filter(entry => entry.startsWith('open')).length, 2);
    });

    test('asks why it was refused', async t => {
        const { log, fail } = fakeBrowser(t, 'Too many streams.');
        fail(2);
        await new Promise(setImmediate);
        assert.deepEqual(log, ['open ', 'close', 'lost "Too many streams."']);
    });
});

test('a file without a folder is a name in the records folder', () => {
    for (const [file, expected] of [
        ['', {}],
        ['a b', { name: 'a b' }],
        ['a.CSV', { name: 'a' }],
        ['/r/a.csv', { path: '/r/a.csv' }],
        ['C:\\r\\a', { path: 'C:\\r\\a' }],
    ])
        assert.deepEqual(recordingAt(file), expected);
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
