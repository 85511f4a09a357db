import assert from 'node:assert/strict';
import { after, afterEach, beforeEach, describe, test } from 'node:test';
import { Chromium } from './support/chromium.js';
import { listOf } from './support/columns.js';
import { FakeService, problem } from './support/fake_service.js';
import { inPage } from './support/validations.js';

const browser = new Chromium();
after(() => browser.close());

const stepIs = step => `document.documentElement.dataset.step === '${step}'`;
const phaseIs = phase => `document.querySelector('#stage').dataset.phase === '${phase}'`;
const levelIs = (id, level) => `document.querySelector('#${id}').dataset.level === '${level}'`;
const valueOf = selector => `document.querySelector('${selector}').value`;

const press = async (page, key, code) => {
    for (const type of ['rawKeyDown', 'keyUp'])
        await page.send('Input.dispatchKeyEvent', { type, key, windowsVirtualKeyCode: code });
};

describe('the validation page', () => {
    let service;
    let stopFeed = () => {};
    /** What the fake tracker sends at 100 Hz; null if it sends nothing. */
    let sampleOf = null;

    const typical = i => ({
        number: i, time: 10 * i, timestamp: 0, valid: true, x: 50, y: 50, x_px: 0, y_px: 0, l_x: 50 + (i % 5) / 10, l_y: 50,
        r_x: 50, r_y: 50 + (i % 7) / 10, l_pupil_mm: 3, r_pupil_mm: 3, distance_cm: 61.5, l_valid: true, r_valid: true,
    });
    const area = { x: 0, y: 0, width: 1280, height: 800, unit: 'device' };
    const tracker = { ...new FakeService().state.tracker, name: 'eyetech' };
    const screen = { number: 1, x: 0, y: 0, width: 1280, height: 800, widthMm: 300, heightMm: 188, scale: 1, primary: true };

    beforeEach(async () => {
        service = await new FakeService().listen();
        Object.assign(service.state, { area, screens: [screen], tracker });
        sampleOf = typical;
        stopFeed = service.feed((fromMs, toMs) => {
            const first = Math.ceil(fromMs / 10);
            return sampleOf ? listOf(Math.ceil(toMs / 10) - first, i => sampleOf(first + i)) : [];
        });
    });
    afterEach(() => {
        stopFeed();
        service.close();
    });

    const openPage = async () => {
        const page = await browser.open(`${service.address}/validate.html`);
        await page.evaluate('localStorage.clear()');
        await page.send('Page.reload');
        await page.until(`document.readyState === 'complete' && ${levelIs('tracker-check', 'good')}`);
        return page;
    };

    /** Starts with the keyboard, and waits for the instruction. */
    const openStage = async (page, button) => {
        await page.evaluate(`document.querySelector('${button}').focus()`);
        await press(page, ' ', 32);
        await page.until(`${stepIs('run')} && document.fullscreenElement !== null`);
        await page.until("getComputedStyle(document.querySelector('#instruction')).visibility === 'visible'");
    };

    /** Starts with the keyboard, and waits until the first target moves. */
    const start = async page => {
        await openStage(page, '#start');
        await press(page, ' ', 32);
        await page.until(phaseIs('travel'));
    };

    test('fills in what the tracker and the system report, and remembers what the user sets', async () => {
        const page = await openPage();
        await page.until(`${valueOf('#width-mm')} === '300' && ${valueOf('#height-mm')} === '188'`);
        await page.until(`${valueOf('#distance')} === '615' && ${valueOf('#expected-rate')} === '100'`);
        await page.until(`${levelIs('left-check', 'good')} && ${levelIs('distance-check', 'good')} && ${levelIs('rate-check', 'good')}`);
        for (const [selector, value] of [['#width-mm', '310'], ['#distance', '640'], ['#participant', ' P 7 '], ['#session', 'before'], ['#expected-rate', '120']])
            await page.fill(selector, value);
        await page.until(levelIs('rate-check', 'warning'));
        await page.send('Page.reload');
        await page.until(`document.readyState === 'complete' && ${valueOf('#width-mm')} === '310' && ${valueOf('#expected-rate')} === '120'`);
        const values = await page.evaluate("['#height-mm', '#distance', '#participant', '#session'].map(id => document.querySelector(id).value)");
        assert.deepEqual(values, ['188', '640', 'P 7', 'before']);
        // The size does not depend on whether the calibrated area is known, and the distance belongs to the tracker.
        service.setState({ area: null, tracker: { ...tracker, name: 'gazepoint' } });
        await page.until(`${valueOf('#distance')} === '615' && ${valueOf('#width-mm')} === '310' && ${valueOf('#expected-rate')} === '150'`);
        await page.until(levelIs('rate-check', 'warning'));
        sampleOf = i => ({ ...typical(i), r_valid: false });
        await page.until(levelIs('right-check', 'warning'));
        assert.deepEqual(page.errors, []);
    });

    test('measures the screen with a bank card, unless the page is zoomed', async () => {
        const page = await openPage();
        // The width of the emulated screen differs from that of the window, as in a zoomed page.
        await page.until("document.querySelector('#use-card').disabled");
        await page.send('Emulation.clearDeviceMetricsOverride');
        await page.until("!document.querySelector('#use-card').disabled");
        await page.evaluate(`{
            const slider = document.querySelector('#card-width');
            slider.value = 428;
            slider.dispatchEvent(new Event('input'));
        }`);
        await page.click('#use-card');
        const [width, boxWidth, screenWidth] = await page.evaluate(`[
            Number(${valueOf('#width-mm')}), parseFloat(getComputedStyle(document.querySelector('#card-box')).width), screen.width]`);
        assert.equal(boxWidth, 428);
        assert.equal(width, Math.round((screenWidth * 85.6) / 428));
    });

    test('does not start without a distance or samples', async () => {
        sampleOf = i => ({ ...typical(i), distance_cm: null });
        const page = await openPage();
        await page.until(levelIs('distance-check', 'unknown'));
        await page.evaluate("document.querySelector('#start').focus()");
        await press(page, ' ', 32);
        await page.until("document.activeElement.id === 'distance'");
        assert.ok(await page.evaluate(stepIs('setup')));
        sampleOf = null;
        await page.until("document.querySelector('#start').disabled");
        service.setState({ tracker: { ...service.state.tracker, connected: false, reason: 'The port is closed.' } });
        await page.until("document.querySelector('#tracker-check').textContent.includes('The port is closed.')");
    });

    for (const [name, interrupt, message] of [
        ['Escape', page => press(page, 'Escape', 27), /before all targets were shown/],
        ['the full screen is left', page => page.evaluate('document.exitFullscreen()'), /before all targets were shown/],
        ['the page is hidden', page => page.hide().then(show => show()), /page was hidden|before all targets/],
        ['the tracker is unplugged', () => {
            sampleOf = null;
            service.setState({ tracker: { ...tracker, connected: false, reason: 'It was unplugged.' } });
        }, /sent no more samples[.] Nothing was saved[.] It was unplugged[.]/],
        ['another tracker is selected', () => service.setState({ tracker: { ...tracker, name: 'gazepoint' } }), /another tracker/],
        ['a calibration starts', () => service.setState({ calibration: { running: true, last: null } }), /a calibration was started/],
        ['Ocela is closed', () => {
            service.answers['GET stream'] = problem(503, 'Ocela is closing.');
            service.streams.forEach(stream => stream.destroy());
        }, /connection to Ocela was lost/],
    ]) {
        test(`stops with a reason: ${name}`, async () => {
            const page = await openPage();
            await page.until(`${valueOf('#distance')} !== ''`);
            await start(page);
            await interrupt(page);
            await page.until(`${stepIs('setup')} && !document.querySelector('#problem').hidden`);
            assert.match(await page.text('#problem'), message);
            assert.ok(await page.evaluate("document.fullscreenElement === null && document.querySelector('#stage').hidden"));
            assert.deepEqual(page.errors, []);
        });
    }

    test('does not show targets on a part of the screen', async () => {
        const page = await openPage();
        await page.until(`${valueOf('#distance')} !== ''`);
        await openStage(page, '#start');
        const size = { width: 1280, height: 600, screenWidth: 1280, screenHeight: 800 };
        await page.send('Emulation.setDeviceMetricsOverride', { ...size, deviceScaleFactor: 1, mobile: false });
        await page.until('innerHeight === 600 && screen.height === 800');
        await press(page, ' ', 32);
        await page.until(`${stepIs('setup')} && !document.querySelector('#problem').hidden`);
        assert.match(await page.text('#problem'), /whole screen/);
    });

    test('keeps the result when a repetition ends early', async () => {
        const page = await openPage();
        await page.until(`${valueOf('#distance')} !== ''`);
        await page.evaluate(`Promise.all([import('/js/validate/result_view.js'), ${inPage([[[0.5, 0], [0, 0.7]]], {})}])
            .then(([{ showResult }, validation]) => showResult(validation, true))
            .then(() => { document.documentElement.dataset.step = 'result'; })`);
        await openStage(page, '#repeat');
        await press(page, 'Escape', 27);
        await page.until(`${stepIs('result')} && !document.querySelector('#problem').hidden`);
        assert.match(await page.text('#result-title'), /P1/);
        assert.equal(await page.evaluate('document.activeElement.id'), 'repeat');
        assert.deepEqual(page.errors, []);
    });
});
