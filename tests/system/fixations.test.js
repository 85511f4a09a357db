// Records a simulated person whose true fixations are known, and compares the methods of the record viewer with them.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { test } from 'node:test';
import { defaultDispersionParameters, findDispersionFixations } from '../../web/js/record/fixations.js';
import { defaultVelocityParameters, findVelocityFixations } from '../../web/js/record/velocity_fixations.js';
import { address, createHome, startProgram, startSimulator } from '../web/support/program.js';
import { pause, waitFor } from '../web/support/wait.js';
import { longestLossOf, readRecord, readTruth, scoreOf, setup } from './true_fixations.js';

const recordingMs = 30000;

/** The longest fixation. The truth contains it after it has ended. */
const maxFixationMs = 500;

/** The person has about 90 fixations during the recording. On a machine that stops often, few of them have all samples. */
const minTrueCount = 20;
const maxRecordingCount = 4;

const meanOf = (left, right) => left.map((value, i) => (value + right[i]) / 2);
const meanOfEyes = columns => ({
    ...columns, x: meanOf(columns.leftX, columns.rightX), y: meanOf(columns.leftY, columns.rightY),
});

/**
 * The methods with their default parameters, and the limits of their scores. GazePoint's combined gaze is the fixation
 * estimate of its server, which starts about 50 ms late. The mean of the eyes is like the combined gaze of other trackers.
 */
const methods = {
    "dispersion, GazePoint's combined gaze": {
        find: ({ columns, aspect }) => findDispersionFixations(columns, defaultDispersionParameters, aspect),
        onsetMs: [20, 80],
    },
    'dispersion, mean of the eyes': {
        find: ({ columns, aspect }) => findDispersionFixations(meanOfEyes(columns), defaultDispersionParameters, aspect),
        onsetMs: [-20, 30],
    },
    velocity: {
        find: ({ columns }) => findVelocityFixations(columns, { method: 'velocity', ...defaultVelocityParameters, ...setup }),
        onsetMs: [0, 40],
    },
};
const limits = { countRatio: [0.8, 1.25], foundShare: [0.8, 1], durationMs: [-75, 10], centreDegrees: [0, 0.25], longestLossMs: [0, 75] };

async function record(path) {
    const state = async () => (await fetch(`${address}/api/v1/state`)).json();
    await waitFor(async () => (await state()).tracker?.sampleRateHz > 0, 'samples');
    const [headers, body] = [{ 'Content-Type': 'application/json' }, JSON.stringify({ path })];
    const started = await fetch(`${address}/api/v1/recording`, { method: 'POST', headers, body });
    assert.equal(started.status, 201, await started.text());
    await pause(recordingMs);
    const stopped = await fetch(`${address}/api/v1/recording`, { method: 'DELETE' });
    assert.equal(stopped.status, 200, await stopped.text());
    await pause(maxFixationMs);
}

for (const rateHz of [60, 150]) {
    test(`the true fixations are found at ${rateHz} Hz`, async t => {
        const home = createHome();
        const children = [];
        t.after(async () => {
            for (const child of children) await child.kill();
            home.remove();
        });
        const truthPath = join(home.folder, 'truth.csv');
        children.push(await startSimulator('--rate', `${rateHz}`, '--offset', '0', '--truth', truthPath));
        children.push(await startProgram(home));
        let recording;
        let truth = [];
        for (let i = 0; i < maxRecordingCount && truth.length < minTrueCount; ++i) {
            const recordPath = join(home.folder, `record${i}.csv`);
            await record(recordPath);
            recording = readRecord(recordPath);
            truth = readTruth(truthPath, recording);
        }
        assert.ok(truth.length >= minTrueCount, `The record has only ${truth.length} fixations with all samples.`);
        for (const [name, { find, onsetMs }] of Object.entries(methods)) {
            const found = find(recording);
            const score = { ...scoreOf(truth, found), longestLossMs: longestLossOf(found, recording.columns) };
            const figures = Object.entries(score).map(([key, value]) => `${key} ${Math.round(100 * value) / 100}`).join(', ');
            console.log(`${rateHz} Hz, ${name}: ${figures}`);
            for (const [key, [min, max]] of Object.entries({ ...limits, onsetMs }))
                assert.ok(score[key] >= min && score[key] <= max, `${name}: ${key} is not in ${min} to ${max}: ${figures}`);
        }
    });
}
