import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { encodeParameter, startRecordPath } from '../../web/js/live/api.js';
import { overlap } from '../../web/js/live/overlap.js';
import { pauseMs } from '../../web/js/live/poll_pace.js';
import { SampleStream } from '../../web/js/live/sample_stream.js';
import { streamState } from '../../web/js/live/stream_state.js';

const sample = (timestamp, x, more = {}) => ({
    timestamp, valid: true, x, y: 20, l_x: x, l_y: 20, r_x: x, r_y: 20, l_pupil_mm: 3, r_pupil_mm: 3 + x / 100,
    distance_cm: 60, ...more,
});
const series = (from, to, toSample) => Array.from({ length: to - from }, (_, i) => toSample(from + i));
const clocked = i => sample(1000000 + 10 * i, 50 + (i % 7));
const unclocked = i => sample(0, 50 + ((i * 37) % 41));
const resting = i => sample(1000000 + 10 * i, 50);
const lost = () => sample(0, 0, { valid: false, y: 0, l_x: 0, l_y: 0, r_x: 0, r_y: 0 });
const times = ({ columns }) => Array.from(columns.time.subarray(0, columns.length));

describe('overlap', () => {
    for (const [name, previous, next, expected] of [
        ['nothing before', '', 'abc', 0],
        ['nothing now', 'abc', '', 0],
        ['the same answer', 'abc', 'abc', 3],
        ['some fell out and some are new', 'abcdef', 'defgh', 3],
        ['nothing in common', 'abc', 'xyz', 0],
        ['alike samples: as few new ones as the rest allows', 'abb', 'bbbb', 2],
        ['a false start within', 'ababac', 'abacx', 4],
        ['fewer than before', 'abcde', 'cde', 3],
        ['all of the new ones are in the middle', 'xaby', 'ab', 0],
    ])
        test(name, () => assert.equal(overlap([...previous], [...next], (a, b) => a === b), expected));

    test('takes no longer than it needs for thousands that are all but alike', () => {
        const many = character => [...'a'.repeat(20000), character];
        let compared = 0;
        overlap(many('b'), many('c'), (a, b) => ++compared && a === b);
        assert.ok(compared < 200000, `${compared} comparisons`);
    });
});

describe('a stream', () => {
    for (const [name, toSample] of [
        ['with timestamps', clocked], ['without timestamps', unclocked], ['of a resting gaze', resting],
    ]) {
        test(`${name} has every sample once, in order`, () => {
            const stream = new SampleStream();
            for (let at = 0; at < 60; at += 3) stream.add(series(Math.max(0, at - 20), at, toSample), 30 * at);
            const expected = series(0, 57, toSample).map(({ x }) => x);
            assert.deepEqual(Array.from(stream.columns.x.subarray(0, stream.columns.length)), expected);
            assert.deepEqual(times(stream), [...times(stream)].sort((a, b) => a - b));
            assert.equal(stream.timeline.byArrival, toSample === unclocked);
        });
    }

    test('without timestamps spreads what is new over the time since the last answer', () => {
        const stream = new SampleStream();
        stream.add(series(0, 10, unclocked), 5000);
        stream.add(series(4, 14, unclocked), 5100);
        assert.deepEqual(times(stream).slice(10), [5025, 5050, 5075, 5100]);
    });

    test('keeps the gap of a tracker that stalls, and forgets one of its own making', () => {
        const later = i => sample(1009000 + 10 * i, 50 + i);
        for (const [pollMs, firstMs] of [[100, 1000000], [5000, 1009000]]) {
            const stream = new SampleStream();
            stream.add(series(0, 10, clocked), 0);
            for (let nowMs = pollMs; nowMs < 5000; nowMs += pollMs) stream.add(series(0, 10, clocked), nowMs);
            stream.add(series(0, 10, later), 5000);
            assert.equal(times(stream)[0], firstMs);
        }
    });

    test('loses nothing while answers come late but still overlap', () => {
        const stream = new SampleStream();
        stream.add(series(0, 150, clocked), 0);
        stream.add(series(140, 290, clocked), 1900);
        assert.equal(stream.columns.length, 290);
    });

    test('begins anew when the clock is set back', () => {
        const stream = new SampleStream();
        stream.add(series(0, 10, clocked), 1000);
        stream.add([...series(5, 10, clocked), sample(7000, 1), sample(7010, 2)], 1100);
        assert.deepEqual(times(stream), [7000, 7010]);
    });

    test('puts a right eye right whose axes are exchanged, also in what it already has', () => {
        const stream = new SampleStream();
        const crossed = i => sample(1000000 + 10 * i, 70 + (i % 5), { r_x: 20, r_y: 70 + (i % 5) });
        stream.add(series(0, 40, crossed), 1000);
        assert.ok(stream.crossed);
        assert.deepEqual([stream.columns.rightX[0], stream.columns.rightY[0]], [70, 20]);
        assert.deepEqual([stream.columns.rightX[39], stream.columns.rightY[39]], [74, 20]);
    });

    test('holds ten seconds at most', () => {
        const stream = new SampleStream();
        for (let at = 0; at < 3000; at += 100) stream.add(series(at, at + 150, clocked), 10 * at);
        assert.ok(times(stream).at(-1) - times(stream)[0] <= 10000);
        assert.ok(stream.columns.length > 900);
    });

    test('of lost eyes without timestamps still shows that samples come', () => {
        const stream = new SampleStream();
        for (const [count, nowMs, changedMs] of [
            [200, 0, NaN], [200, 100, NaN], [199, 200, 200], [201, 300, 300], [201, 400, 300],
        ]) {
            stream.add(series(0, count, lost), nowMs);
            assert.equal(stream.changedMs, changedMs, `${nowMs} ms`);
        }
    });
});

describe('the state', () => {
    const answer = { result: true, samples: [1] };
    for (const [expected, ...args] of [
        ['connecting', undefined, NaN, NaN, NaN, 0],
        ['offline', null, 100, 100, 200, 200],
        ['noTracker', { result: false, samples: [] }, NaN, NaN, 0, 0],
        ['noSamples', { result: true, samples: [] }, NaN, NaN, 0, 0],
        ['connecting', answer, 100, NaN, 1100, 1100],
        ['stalled', answer, 100, NaN, 1101, 1101],
        ['live', answer, 0, 100, 1100, 2600],
        ['stalled', answer, 0, 100, 1101, 2601],
        ['connecting', answer, 0, 100, 1101, 2602],
    ])
        test(`${expected} of ${JSON.stringify(args)}`, () => assert.equal(streamState(...args), expected));
});

test('the pace of the questions', () => {
    for (const [args, expected] of [
        [[0, 10, true], 150],
        [[0, 10, false], 390],
        [[0, 90, true], 210],
        [[0, 3000, true], 0],
        [[1, 5, false], 250],
        [[3, 5, false], 1000],
        [[1000, 5, false], 4000],
    ])
        assert.equal(pauseMs(...args), expected, args.join());
});

test('file names are encoded for the path', () => {
    assert.equal(encodeParameter("C:\\a b\\ü&'(1)!*.csv"), 'C%3A%5Ca%20b%5C%C3%BC%26%27%281%29%21%2A.csv');
    assert.equal(startRecordPath(''), '/startrecord');
});
