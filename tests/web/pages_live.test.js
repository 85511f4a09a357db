import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { Chromium } from './support/chromium.js';
import { listOf } from './support/columns.js';
import { FakeService } from './support/fake_service.js';
import { address, createHome, fileAt, startProgram, startSimulator } from './support/program.js';
import { waitFor } from './support/wait.js';

const stateIs = state => `document.querySelector('#gaze-title').dataset.state === '${state}'`;
const picture = "document.querySelector('#gaze').toDataURL()";
const rate = "parseFloat(document.querySelector('#rate').textContent)";
const lastRequest = "(document.querySelector('#requests li')?.textContent ?? '')";

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
        await page.until(`${rate} > 50`);

        const file = join(home.folder, "a & b's ü.csv");
        await page.fill('#path', file);
        await page.click('#record .primary');
        await page.until(`${lastRequest}.includes('The request was queued.')`);
        await page.click('#stop-record');
        await page.until(`${lastRequest}.includes('Stop recording')`);
        await fileAt(file);
        assert.match(readFileSync(file, 'utf8'), /^Timestamp,Time,/);
        await page.fill('#path', '');
        await page.click('#record .primary');
        await page.click('#stop-record');
        const records = () => readdirSync(join(home.folder, 'Documents/Ocela')).filter(name => name.endsWith('_ocela.csv'));
        await waitFor(() => records().length === 1, 'a file in the default folder');

        await simulator.kill();
        await page.until(stateIs('stalled'));
        await program.kill();
        await page.until(stateIs('offline'));
        simulator = await startSimulator('--rate', '1000');
        program = await startProgram(home);
        await page.until(stateIs('live'));
        await page.until(`${rate} > 200`);
        assert.deepEqual(page.errors, []);
    } finally {
        await program.kill();
        await simulator.kill();
        home.remove();
    }
});

describe('the live page', () => {
    let service;
    before(async () => { service = await new FakeService({}).listen(); });
    after(() => service.close());

    /** Every fifth sample is invalid. */
    const sample = (timestamp, i) => ({
        timestamp, valid: i % 5 > 0, x: 49 + (i % 3), y: 50, x_px: 0, y_px: 0, l_x: 19 + (i % 3), l_y: 30, r_x: 79 + (i % 3),
        r_y: 90, l_pupil_mm: 3.2, r_pupil_mm: 4.4, distance_cm: 50 + (i % 100) / 10, focus: 0,
    });

    /** Returns an answer with the last two seconds of a tracker at 100 Hz. */
    const running = timestampOf => () => {
        const last = Math.floor(Date.now() / 10);
        const samples = listOf(200, i => sample(timestampOf(last - 199 + i), last - 199 + i));
        return { result: true, sampleCount: 200, samples };
    };
    const extreme = () => ({
        result: true,
        samples: [1, 2, 3].map(i => (
            { ...sample(9e18, i * Math.random()), x: null, l_x: 1e38, l_y: -1e38, l_pupil_mm: 1e30, distance_cm: 1e38 * i })),
    });

    for (const [name, answer, state] of [
        ['extreme values', extreme, 'live'],
    ])
        test(`shows the state for ${name}`, async () => {
            service.answers = { '/lastsamples': answer };
            const page = await browser.open(service.address);
            await page.until(stateIs(state));
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
        service.answers = { '/lastsamples': running(i => 10 * i) };
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

        const last = running(i => 10 * i)();
        service.answers = { '/lastsamples': last };
        await page.until(stateIs('stalled'));
        await page.until("document.querySelector('#rate').textContent === '–'");
        await page.until("parseFloat(document.querySelector('#gap').textContent.replace(',', '')) > 1000");
        assert.equal(await page.text('#distance'), `${last.samples[199].distance_cm.toFixed(1)} cm`);
    });

    test('shows samples without timestamps', async () => {
        service.answers = { '/lastsamples': running(() => 0) };
        const page = await browser.open(service.address);
        await page.until(stateIs('live'));
        await page.until("!document.querySelector('#by-arrival').hidden");
        await page.until(`Math.abs(${rate} - 100) < 20`);
        assert.equal(await page.text('#jitter'), '–');
    });

    test('shows errors as plain text', async () => {
        const error = '<img src=x onerror="document.title = 1">';
        const no = { result: false };
        service.answers = { '/lastsamples': no, '/startrecord': { ...no, error }, '/calibrate': no };
        const page = await browser.open(service.address);
        await page.click('#record .primary');
        await page.until(`${lastRequest}.includes(${JSON.stringify(`Refused: ${error}`)})`);
        assert.equal(await page.evaluate("document.querySelectorAll('#requests img').length"), 0);
        await page.fill('#screen', 2);
        await page.click('#calibration .primary');
        await page.until(`${lastRequest}.includes('no tracker is selected')`);
        assert.ok(service.requests.some(({ path }) => path === '/calibrate&screen=2'));
        await page.click('[data-language=ru]');
        assert.match(await page.evaluate(lastRequest), /Калибровать на экране 2.*Отказ: трекер не выбран/);
        await page.until("document.querySelector('#state').textContent === 'Трекер не выбран'");
        assert.equal(await page.evaluate('document.documentElement.lang'), 'ru');
        await page.click('[data-language=en]');
        service.answers = {};
        await page.click('#stop-calibration');
        await page.until(`${lastRequest}.includes('Refused: 404')`);
    });
});

test('both pages fit a narrow screen, name their controls and keep the language', async () => {
    const service = await new FakeService({ '/lastsamples': { result: false } }).listen();
    try {
        // The first page follows the browser. The second page has the language that was chosen on the first one.
        for (const [path, title, other, otherTitle] of [
            ['/', /взгляд/, 'en', /gaze/],
            ['/record.html', /record/, 'ru', /запис/],
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
    const roles = ['button', 'textbox', 'spinbutton', 'link', 'image', 'img', 'progressbar'];
    const controls = nodes.filter(({ ignored, role }) => !ignored && roles.includes(role?.value ?? ''));
    assert.ok(controls.length > 10);
    assert.deepEqual(controls.filter(({ name }) => !name?.value), []);
}
