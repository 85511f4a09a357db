import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, afterEach, beforeEach, describe, test } from 'node:test';
import { Chromium } from './support/chromium.js';
import { listOf } from './support/columns.js';
import { FakeService, problem } from './support/fake_service.js';
import { address, createHome, fileAt, startProgram, startSimulator } from './support/program.js';
import { waitFor } from './support/wait.js';

const stateIs = state => `document.querySelector('#gaze-title').dataset.state === '${state}'`;
const lightIs = light => `document.querySelector('#light').dataset.light === '${light}'`;
const isEnabled = selector => `!document.querySelector('${selector}').disabled`;
const picture = "document.querySelector('#gaze').toDataURL()";
const rate = "parseFloat(document.querySelector('#rate').textContent)";
const lastRequest = "(document.querySelector('#requests li')?.textContent ?? '')";
const textOf = selector => `document.querySelector('${selector}').textContent`;

const browser = new Chromium();
after(() => browser.close());

test('shows and controls Ocela, also after a restart of Ocela and the tracker', async () => {
    const home = createHome();
    let simulator = await startSimulator('--rate', '150');
    let program = await startProgram(home);
    try {
        const page = await browser.open(`${address}/`);
        await page.until(stateIs('live'));
        const first = await page.evaluate(picture);
        await page.until(`${picture} !== ${JSON.stringify(first)}`);
        await page.until(`${rate} > 80`);

        const file = join(home.folder, "a & b's ü.csv");
        await page.fill('#path', file);
        await page.click('#start-record');
        await page.until(lightIs('on'));
        await page.until(`${textOf('#recordings')}.includes(${JSON.stringify(file)})`);
        await page.fill('#marker-text', 'stimulus 1');
        await page.click('#marker button');
        await page.until(`${lastRequest}.includes('Set and recorded.')`);
        await page.until(`${textOf('#markers')}.includes('stimulus 1')`);
        await page.until(`/markers: 1$/.test(${textOf('#recordings p')})`);
        await postEvent('of another program');
        await page.until(`${textOf('#markers li')}.includes('of another program')`);
        await page.until(isEnabled('#stop-record'));
        await page.click('#stop-record');
        await page.until(`${lastRequest}.includes(${JSON.stringify(`Saved: ${file}`)})`);
        await page.until(lightIs('off'));
        assert.match(readFileSync(file, 'utf8'), /^Timestamp,Time,/);
        assert.match(readFileSync(file.replace('.csv', '_events.csv'), 'utf8'), /,stimulus 1,[^]*,of another program,/);

        await page.fill('#path', 'by name');
        await page.until(isEnabled('#start-record'));
        await page.click('#start-record');
        await page.until(isEnabled('#stop-record'));
        await page.click('#stop-record');
        await fileAt(join(home.folder, 'Documents/Ocela/by name.csv'));

        await simulator.kill();
        await page.until(`${stateIs('stalled')} || ${stateIs('notConnected')}`);
        await program.kill();
        await page.until(stateIs('offline'));
        await page.until(lightIs('unknown'));
        simulator = await startSimulator('--rate', '60');
        program = await startProgram(home);
        await page.until(stateIs('live'));
        await page.until(`${rate} > 30 && ${rate} < 80`);
        await page.until(`${textOf('#missed')}.endsWith(' + ?')`);
        assert.deepEqual(page.errors, []);
    } finally {
        await program.kill();
        await simulator.kill();
        home.remove();
    }
});

/** Sets a marker as another program does. */
const postEvent = text => fetch(`${address}/api/v1/events`, {
    method: 'POST', headers: { 'Content-Type': 'application/json' }, body: JSON.stringify({ text }),
});

describe('the live page', () => {
    let service;
    let stopFeed = () => {};
    beforeEach(async () => { service = await new FakeService().listen(); });
    afterEach(() => {
        stopFeed();
        service.close();
    });

    /** Every fifth sample is invalid. */
    const sample = i => ({
        number: i, time: 10 * i, timestamp: 0, valid: i % 5 > 0, x: 49 + (i % 3), y: 50, x_px: 0, y_px: 0, l_x: 19 + (i % 3),
        l_y: 30, r_x: 79 + (i % 3), r_y: 90, l_pupil_mm: 3.2, r_pupil_mm: 4.4, distance_cm: 50 + (i % 100) / 10, focus: 0,
        l_valid: true, r_valid: true,
    });

    /** Returns the samples of a tracker at 100 Hz. */
    const running = (fromMs, toMs) => {
        const first = Math.ceil(fromMs / 10);
        return listOf(Math.ceil(toMs / 10) - first, i => sample(first + i));
    };
    const extreme = (fromMs, toMs) => running(fromMs, toMs).map((usual, i) => (
        { ...usual, timestamp: 9e18, x: null, l_x: 1e38, l_y: -1e38, l_pupil_mm: 1e30, distance_cm: 1e38 * i }));

    const tracker = { name: 'gazepoint', connected: true, reason: null, lastSampleAgeMs: null, newest: null };
    for (const [name, state, change, hint] of [
        ['no tracker', 'noTracker', { tracker: null }, 'Select one'],
        ['a reason', 'notConnected', { tracker: { ...tracker, connected: false, reason: '<b>Port 4242</b>' } }, '<b>Port 4242</b>'],
        ['no reason', 'notConnected', { tracker: { ...tracker, connected: false } }, 'Ocela window'],
        ['no samples', 'noSamples', {}, 'has not sent'],
        ['old samples', 'stalled', { tracker: { ...tracker, lastSampleAgeMs: 5000, newest: 9 } }, 'has stopped'],
    ])
        test(`shows the condition: ${name}`, async () => {
            Object.assign(service.state, change);
            const page = await browser.open(service.address);
            await page.until(stateIs(state));
            assert.ok((await page.text('#veil-hint')).includes(hint));
        });

    test('tells why Ocela refuses the stream, and tries again', async () => {
        service.answers['GET stream'] = problem(429, 'Too many streams.');
        const page = await browser.open(service.address);
        await page.until(`${textOf('#veil-hint')}.startsWith('Too many streams.')`);
        await page.until(`${stateIs('offline')} && ${lightIs('unknown')}`);
        service.answers = {};
        await page.until(`${stateIs('noSamples')} && ${lightIs('off')}`);
    });

    test('shows extreme values', async () => {
        stopFeed = service.feed(extreme);
        const page = await browser.open(service.address);
        await page.until(stateIs('live'));
        await page.until(`${rate} > 50`);
        assert.deepEqual(page.errors, []);
    });

    /** Returns the mean position of all pixels of a colour, in percent of the canvas. */
    const centreOf = (page, selector, colour) => page.evaluate(`(() => {
        const canvas = document.querySelector('${selector}');
        const { data, width, height } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
        const isMatch = i => [${colour}].every((part, channel) => Math.abs(data[4 * i + channel] - part) < 20);
        const matches = Array.from({ length: width * height }, (_, i) => i).filter(isMatch);
        const mean = values => values.reduce((a, b) => a + b, 0) / values.length;
        return { x: 100 * mean(matches.map(i => i % width)) / width, y: 100 * mean(matches.map(i => i / width)) / height };
    })()`);

    test('shows samples as picture, charts and figures', async () => {
        stopFeed = service.feed(running);
        const page = await browser.open(service.address);
        await page.until(stateIs('live'));
        await page.until(`Math.abs(${rate} - 100) < 20`);
        await page.until("document.querySelector('#valid').textContent.startsWith('80')");
        const [blue, orange] = [[31, 98, 201], [194, 82, 10]];
        for (const [colour, x, y] of [[blue, 25, 33], [orange, 75, 82]]) {
            await waitFor(async () => {
                const centre = await centreOf(page, '#gaze', colour);
                return Math.abs(centre.x - x) < 10 && Math.abs(centre.y - y) < 8;
            }, `an eye at ${x}, ${y}`);
        }
        for (const chart of ['#chart-x canvas', '#chart-y canvas', '#chart-pupil canvas'])
            assert.ok((await centreOf(page, chart, orange)).y < (await centreOf(page, chart, blue)).y - 10, chart);

        stopFeed();
        const last = sample(Math.floor(Date.now() / 10));
        service.send('samples', [last], `run:${last.number}`);
        const heartbeat = setInterval(() => service.setState({}), 500);
        stopFeed = () => clearInterval(heartbeat);
        await page.until(stateIs('stalled'));
        await page.until("document.querySelector('#rate').textContent === '–'");
        await page.until("parseFloat(document.querySelector('#gap').textContent.replace(',', '')) > 1000");
        assert.equal(await page.text('#distance'), `${last.distance_cm.toFixed(1)} cm`);
    });

    test('closes the stream while it is hidden, continues after the last sample, and shows what it missed', async () => {
        const page = await browser.open(service.address);
        await page.until(stateIs('noSamples'));
        service.send('samples', [sample(Math.floor(Date.now() / 10))], 'run:42');
        await page.until(stateIs('live'));
        const show = await page.hide();
        await waitFor(() => service.streams.size === 0, 'the stream is closed');
        await show();
        await waitFor(() => service.streams.size === 1, 'the stream is open');
        assert.deepEqual(service.requests.map(([, resource]) => resource),
            ['stream?interval=100', 'stream?interval=100&after=run:42']);
        service.send('missed', { count: 1200 });
        service.send('missed', { count: 34 });
        await page.until("document.querySelector('#missed').textContent === '1,234'");
    });

    test('shows the recordings, the last file, the calibration and the screens', async () => {
        const page = await browser.open(service.address);
        await page.until(lightIs('off'));
        assert.deepEqual(await page.evaluate("Array.from(document.querySelectorAll('#screen option'), ({ label }) => label)"),
            ['1: 1920 × 1080', '2: 2560 × 1440, primary']);
        assert.equal(await page.evaluate("document.querySelector('#screen').value"), '2');
        assert.ok(await page.evaluate(`${isEnabled('#start-record')} && !${isEnabled('#stop-record')}`));

        const recording = { tracker: 'eyetech', path: '/r/a.csv', durationMs: 61000, samples: 1234, events: 5 };
        service.setState({ recordings: [recording], calibration: { running: true, last: null } });
        await page.until(lightIs('on'));
        assert.equal(await page.text('#recordings'), 'eyetech: 1:01 · samples: 1,234 · markers: 5/r/a.csv');
        // The buttons are for the selected tracker, which is another one.
        assert.ok(await page.evaluate(`${isEnabled('#start-record')} && !${isEnabled('#stop-record')}`));
        assert.ok(await page.evaluate(`!${isEnabled('#calibrate')} && ${isEnabled('#stop-calibration')}`));

        service.setState({
            recordings: [], lastRecording: { path: '/r/a.csv', samples: 1234, saved: false, error: 'The disk is full.' },
            calibration: { running: false, last: { result: 'failed', time: Date.now() } },
        });
        await page.until(`${textOf('#last-recording')} === 'The last recording is not saved. The disk is full.'`);
        assert.match(await page.text('#calibration-state'), /^Last calibration: failed/);
    });

    test('sends requests and shows their outcomes as plain text', async () => {
        const detail = '<img src=x onerror="document.title = 1">';
        service.answers = { 'POST recording': problem(422, detail), 'POST calibration': problem(409, 'It is running.'),
            'POST events': { status: 201, body: { time: 1, number: 2, recorded: false } }, 'PUT tracker': problem(422, 'No.') };
        const page = await browser.open(service.address);
        await page.until(isEnabled('#start-record'));
        await page.click('#start-record');
        await page.until(`${lastRequest}.includes(${JSON.stringify(`Refused: ${detail}`)})`);
        assert.equal(await page.evaluate("document.querySelectorAll('#requests img').length"), 0);
        await page.fill('#screen', '1');
        await page.click('#calibrate');
        await page.until(`${lastRequest}.includes('Refused: It is running.')`);
        await page.evaluate("document.querySelector('#marker-text').focus()");
        await page.send('Input.insertText', { text: 'a <b>' });
        for (const type of ['keyDown', 'keyUp'])
            await page.send('Input.dispatchKeyEvent', { type, key: 'Enter', windowsVirtualKeyCode: 13, text: '\r' });
        await page.until(`${lastRequest}.includes('Set. No recording is running')`);
        await page.fill('#tracker', 'eyetech');
        await page.until(`${lastRequest}.includes('Refused: No.')`);
        await page.until("document.querySelector('#tracker').value === 'gazepoint'");
        assert.deepEqual(service.requests.filter(([, resource]) => !resource.startsWith('stream')), [
            ['POST', 'recording', {}], ['POST', 'calibration', { screen: 1 }], ['POST', 'events', { text: 'a <b>' }],
            ['PUT', 'tracker', { name: 'eyetech' }],
        ]);
        await page.click('[data-language=ru]');
        assert.match(await page.evaluate(lastRequest), /Выбрать трекер: eyetech.*Отказ: No\./);
        await page.until("document.querySelector('#light').textContent === 'Записи нет'");
        assert.equal(await page.evaluate('document.documentElement.lang'), 'ru');
        await page.click('[data-language=en]');
        assert.deepEqual(page.errors, []);
    });
});

test('all pages fit a narrow screen, name their controls and keep the language', async () => {
    const service = await new FakeService().listen();
    service.answers['GET recordings'] = { body: { recordings: [{ name: `${'long'.repeat(30)}.csv`, bytes: 1, modified: 0 }] } };
    try {
        // The first page follows the browser. The others have the language that was chosen on the page before.
        for (const [path, title, other, otherTitle] of [
            ['/', /взгляд/, 'en', /gaze/],
            ['/record.html', /record/, 'ru', /запис/],
            ['/validate.html', /валидация/, 'en', /validation/],
        ]) {
            const page = await browser.open(service.address + path, { width: 360, language: 'ru' });
            await page.until('document.documentElement.lang && document.querySelector("[aria-pressed=true]")');
            assert.match(await page.evaluate('document.title'), title);
            await checkLayout(page);
            await page.click(`[data-language=${other}]`);
            assert.match(await page.evaluate('document.title'), otherTitle);
            await checkLayout(page);
        }
    } finally {
        service.close();
    }
});

/** Checks that nothing is wider than the screen, and that each control has a name for screen readers. */
async function checkLayout(page) {
    await page.evaluate("document.querySelectorAll('[hidden]').forEach(element => { element.hidden = false; })");
    assert.equal(await page.evaluate('document.documentElement.scrollWidth'), 360);
    const { nodes } = await page.send('Accessibility.getFullAXTree');
    const roles = ['button', 'textbox', 'combobox', 'spinbutton', 'link', 'image', 'img', 'progressbar'];
    const controls = nodes.filter(({ ignored, role }) => !ignored && roles.includes(role?.value ?? ''));
    assert.ok(controls.length > 10);
    assert.deepEqual(controls.filter(({ name }) => !name?.value), []);
}
