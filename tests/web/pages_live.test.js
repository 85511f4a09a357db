import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { Chromium } from './support/chromium.js';
import { waitFor } from './support/patience.js';
import { address, createHome, fileAt, startProgram, startSimulator } from './support/program.js';
import { StandIn } from './support/stand_in.js';

const stateIs = state => `document.querySelector('#gaze-title').dataset.state === '${state}'`;
const picture = "document.querySelector('#gaze').toDataURL()";
const lastRequest = "(document.querySelector('#requests li')?.textContent ?? '')";

let browser;
before(() => { browser = new Chromium(); });
after(() => browser.close());

test('with the program, from the first sample to the server that comes back', async () => {
    const home = createHome();
    let simulator = await startSimulator('--rate', '150');
    let program = await startProgram(home);
    try {
        const page = await browser.open(`${address}/`);
        await page.until(stateIs('live'));
        const first = await page.evaluate(picture);
        await page.until(`${picture} !== ${JSON.stringify(first)}`);
        await page.until("parseFloat(document.querySelector('#rate').textContent) > 50");

        const file = join(home.folder, "a & b's ü.csv");
        await page.evaluate(`document.querySelector('#path').value = ${JSON.stringify(file)}`);
        await page.click('#record .primary');
        await page.until(`${lastRequest}.includes('The request was queued.')`);
        await page.click('#stop-record');
        await page.until(`${lastRequest}.includes('Stop record')`);
        await fileAt(file);
        assert.match(readFileSync(file, 'utf8'), /^Timestamp,Time,/);
        await page.evaluate("document.querySelector('#path').value = ''");
        await page.click('#record .primary');
        await page.click('#stop-record');
        await waitFor(() => readdirSync(join(home.folder, 'Documents/Ocela')).length === 1, 'a record in the default folder');

        await simulator.kill();
        await page.until(stateIs('stalled'));
        await program.kill();
        await page.until(stateIs('offline'));
        simulator = await startSimulator('--rate', '1000');
        program = await startProgram(home);
        await page.until(stateIs('live'));
        await page.until("parseFloat(document.querySelector('#rate').textContent) > 200");
        assert.deepEqual(page.complaints, []);
    } finally {
        await program.kill();
        await simulator.kill();
        home.remove();
    }
});

describe('with a service that says', () => {
    let standIn;
    before(async () => { standIn = await new StandIn({}).listen(); });
    after(() => standIn.close());

    const sample = (timestamp, i) => ({
        timestamp, valid: true, x: 40 + (i % 13), y: 50, x_px: 0, y_px: 0, l_x: 40 + (i % 13), l_y: 50, r_x: 41 + (i % 13),
        r_y: 50, l_pupil_mm: 3 + (i % 97) / 100, r_pupil_mm: 3, distance_cm: 61, focus: 0,
    });
    /** A tracker of 100 Hz. */
    const running = timestampOf => () => {
        const last = Math.floor(Date.now() / 10);
        const samples = Array.from({ length: 200 }, (_, i) => sample(timestampOf(last - 199 + i), last - 199 + i));
        return { result: true, sampleCount: 200, samples };
    };

    const outOfProportion = () => ({
        result: true,
        samples: [1, 2, 3].map(i => (
            { ...sample(9e18, i * Math.random()), x: null, l_x: 1e38, l_y: -1e38, l_pupil_mm: 1e30, distance_cm: 1e38 * i })),
    });

    for (const [name, answer, state] of [
        ['that no tracker is selected', { result: false }, 'noTracker'],
        ['nothing yet', { result: true, sampleCount: 0, samples: [] }, 'noSamples'],
        ['nothing that makes sense', [], 'noTracker'],
        ['the same samples for ever', { result: true, samples: [1, 2, 3].map(i => sample(i, i)) }, 'stalled'],
        ['that a tracker runs', running(i => 10 * i), 'live'],
        ['numbers out of all proportion', outOfProportion, 'live'],
    ])
        test(name, async () => {
            standIn.answers = { '/lastsamples': answer };
            const page = await browser.open(standIn.address);
            await page.until(stateIs(state));
            await page.until(stateIs(state));
            assert.deepEqual(page.complaints, []);
        });

    test('zero as time of all samples', async () => {
        standIn.answers = { '/lastsamples': running(() => 0) };
        const page = await browser.open(standIn.address);
        await page.until(stateIs('live'));
        await page.until("!document.querySelector('#by-arrival').hidden");
        await page.until("Math.abs(parseFloat(document.querySelector('#rate').textContent) - 100) < 20");
        assert.equal(await page.text('#jitter'), '–');
        await page.until("document.querySelector('#distance').textContent === '61.0 cm'");
        standIn.answers = { '/lastsamples': running(() => 0)() };
        await page.until(stateIs('stalled'));
    });

    test('no more to a page that is hidden', async () => {
        standIn.answers = { '/lastsamples': running(i => 10 * i) };
        const page = await browser.open(standIn.address);
        await page.until(stateIs('live'));
        const hide = hidden => page.evaluate(`
            Object.defineProperty(document, 'hidden', { value: ${hidden}, configurable: true });
            document.dispatchEvent(new Event('visibilitychange'))`);
        await hide(true);
        await page.evaluate('new Promise(done => setTimeout(done, 500))');
        const before = standIn.asked.length;
        await page.evaluate('new Promise(done => setTimeout(done, 1500))');
        assert.equal(standIn.asked.length, before);
        await hide(false);
        await waitFor(() => standIn.asked.length > before + 2, 'new questions');
    });

    test('errors, which are shown as text', async () => {
        const error = '<img src=x onerror="document.title = 1">';
        const no = { result: false };
        standIn.answers = { '/lastsamples': no, '/startrecord': { ...no, error }, '/calibrate': no };
        const page = await browser.open(standIn.address);
        await page.click('#record .primary');
        await page.until(`${lastRequest}.includes(${JSON.stringify(`Refused: ${error}`)})`);
        assert.equal(await page.evaluate("document.querySelectorAll('#requests img').length"), 0);
        await page.evaluate("document.querySelector('#screen').value = 2");
        await page.click('#calibration .primary');
        await page.until(`${lastRequest}.includes('no tracker is selected')`);
        assert.ok(standIn.asked.includes('/calibrate&screen=2'));
        standIn.answers = {};
        await page.click('#stop-calibration');
        await page.until(`${lastRequest}.includes('Refused: 404')`);
    });
});

test('both pages fit a narrow screen, name their controls and keep the language', async () => {
    const standIn = await new StandIn({ '/lastsamples': { result: false } }).listen();
    try {
        // Russian as the browser is; the second page in the language that was chosen on the first.
        for (const [path, title, other, otherTitle] of [
            ['/', /взгляд/, 'en', /gaze/],
            ['/record.html', /record/, 'ru', /запис/],
        ]) {
            const page = await browser.open(standIn.address + path, { width: 360, language: 'ru' });
            await page.until('document.documentElement.lang && document.querySelector("[aria-pressed=true]")');
            assert.match(await page.evaluate('document.title'), title);
            await checkLayout(page);
            await page.click(`[data-language=${other}]`);
            assert.match(await page.evaluate('document.title'), otherTitle);
            await checkLayout(page);
        }
    } finally {
        standIn.close();
    }
});

/** Nothing is wider than the screen, and a screen reader has a name for each control, also for those not shown yet. */
async function checkLayout(page) {
    await page.evaluate("document.querySelectorAll('[hidden]').forEach(element => { element.hidden = false; })");
    assert.equal(await page.evaluate('document.documentElement.scrollWidth'), 360);
    const { nodes } = await page.send('Accessibility.getFullAXTree');
    const controls = nodes.filter(({ role }) => /^(button|textbox|spinbutton|link|image|img|progressbar)$/.test(role?.value));
    assert.ok(controls.length > 10);
    assert.deepEqual(controls.filter(({ ignored, name }) => !ignored && !name?.value).map(({ role }) => role.value), []);
}
