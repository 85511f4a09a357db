// Validates trackers whose simulated person has a known offset and noise, from the device to the saved result. The person
// looks at the mouse pointer, which the test moves to the target that the page shows.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { Chromium } from '../web/support/chromium.js';
import { address, createHome, startProgram, startSimulator } from '../web/support/program.js';
import { pause, waitFor } from '../web/support/wait.js';
import { startRun, step } from './validation_page.js';
import { VirtualDisplay } from './virtual_display.js';

const monitors = [{ x: 0, y: 0, width: 1920, height: 1080 }, { x: 1920, y: 100, width: 1600, height: 900 }];

/** `screen` is the calibrated screen, which shows the page. `scale` is the display scaling. Offset and noise are in degrees. */
const cases = [
    { tracker: 'gazepoint', screen: 1, scale: 1, offset: [1.2, -0.6], noise: 0.3 },
    { tracker: 'eyetech', screen: 1, scale: 1.5, offset: [-0.9, 0.5], noise: 0.2 },
    { tracker: 'aSee Pro', screen: 2, scale: 1, offset: [0.7, 1.1], noise: 0.4 },
    { tracker: 'gazepoint', screen: 2, scale: 1.5, offset: [-0.4, -1.3], noise: 0.25 },
];

const maxOffsetError = 0.1;  // degrees
const maxNoiseError = 0.15;  // relative
const followIntervalMs = 10;
const maxPauseMs = 300;  // shorter than a target travels
const maxAttemptCount = 4;

const { OCELA_EYETECH_LIBRARY_FOLDER: eyetechFolder, OCELA_ASEE_LIBRARY_FOLDER: aseeFolder } = process.env;

const display = new VirtualDisplay();
await display.start(monitors);
after(() => display.close());

const state = async () => (await fetch(`${address}/api/v1/state`)).json();
const stateIs = (condition, name) => waitFor(async () => condition(await state()), name);
/** Settings of the trackers. The aSee Pro tracker only connects if it has been calibrated before. */
function prepareTrackers({ folder }) {
    const data = join(folder, '.local/share/Velmora/Ocela');
    mkdirSync(data);
    const property = '<property name="CalibrationTimeMs">1000</property>';
    writeFileSync(join(data, 'EyeTechSettings.xml'), `<settings version="1">${property}</settings>`);
    execFileSync(process.env.OCELA_ASEE_COEFFICIENTS, [join(data, 'coefficient.dat')]);
}

/** Starts Ocela and the person. */
async function startOcela(t, { tracker, screen, scale, offset, noise }) {
    const home = createHome({ SelectedTracker: tracker, Language: 'en_US' });
    const children = [];
    t.after(async () => {
        for (const child of children) await child.kill();
        home.remove();
    });
    prepareTrackers(home);
    if (tracker === 'gazepoint') {
        const { x, y, width, height } = monitors[screen - 1];
        const person = ['--follow-mouse', '--offset', offset.join(), '--noise', `${noise}`];
        children.push(await startSimulator('--screen', `${width}x${height}+${x}+${y}`, ...person));
    }
    const person = { OCELA_SIM_FOLLOW_MOUSE: screen, OCELA_SIM_OFFSET: offset.join(), OCELA_SIM_NOISE: noise };
    const libraries = { LD_LIBRARY_PATH: `${eyetechFolder}:${aseeFolder}`, OCELA_SIM_ASEE_POINT_MS: 600 };
    const variables = { QT_QPA_PLATFORM: 'xcb', QT_SCALE_FACTOR: scale, ...libraries, ...person };
    children.push(await startProgram(home, undefined, undefined, variables));
    await stateIs(({ tracker: { connected } }) => connected, 'the tracker is connected');
    return home;
}

/** Calibrates a screen as a user does. The server of GazePoint tracks the screen that its options name. */
async function calibrate({ tracker, screen }) {
    if (tracker === 'gazepoint') return;
    const [headers, body] = [{ 'Content-Type': 'application/json' }, JSON.stringify({ screen })];
    const answer = await fetch(`${address}/api/v1/calibration`, { method: 'POST', headers, body });
    assert.equal(answer.status, 202, await answer.text());
    await waitFor(() => display.shows('^Calibration$'), 'the calibration screen is shown');
    if (tracker === 'aSee Pro') {
        await display.focus('^Calibration$');
        display.press('space');
    }
    await stateIs(({ calibration }) => calibration.last?.result === 'done', 'the calibration is done');
    const { x, y, width, height } = monitors[screen - 1];
    if (tracker === 'aSee Pro') display.press('Escape');
    else display.click(x + 0.3 * width, y + 0.5 * height);  // Save
    await waitFor(() => !display.shows('^Calibration$'), 'the calibration screen is closed');
}

async function startBrowser(t, { screen, scale }, downloads) {
    const { x, y } = monitors[screen - 1];
    const position = `--window-position=${x},${y}`;
    const options = [position, '--window-size=600,500', `--force-device-scale-factor=${scale}`];
    const browser = new Chromium({ hasWindow: true, options });
    t.after(() => browser.close());
    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: downloads });
    return browser;
}

/**
 * Moves the pointer to the centre of the target on the screen, until the run ends. Returns the next step, and the longest
 * time without a move.
 */
async function followTarget(page, { x, y }) {
    const expression = `{
        const { left, right, top, bottom } = document.querySelector('#target').getBoundingClientRect();
        const centre = [(left + right) / 2, (top + bottom) / 2].map(position => position * devicePixelRatio);
        ({ step: ${step}, centre });
    }`;
    for (let movedMs = Date.now(), pauseMs = 0; ;) {
        const { step: current, centre } = await page.evaluate(expression);
        if (current !== 'run') return { step: current, pauseMs };
        display.movePointer(x + centre[0], y + centre[1]);
        pauseMs = Math.max(pauseMs, Date.now() - movedMs);
        movedMs = Date.now();
        await pause(followIntervalMs);
    }
}

/** Validates once. Returns the saved result, and the longest time for which the person did not follow the target. */
async function validate(browser, { screen }, downloads) {
    const monitor = monitors[screen - 1];
    const page = await browser.open(`${address}/validate.html`);
    await startRun(page, display, monitor);
    const { step: next, pauseMs } = await followTarget(page, monitor);
    assert.equal(next, 'result', await page.text('#problem'));
    return { result: await savedResult(page, downloads), pauseMs };
}

async function savedResult(page, downloads) {
    await page.click('#save-json');
    const isSaved = () => readdirSync(downloads).find(name => name.endsWith('.json'));
    const file = join(downloads, await waitFor(isSaved, 'the result is saved'));
    assert.deepEqual(page.errors, []);
    const result = JSON.parse(readFileSync(file, 'utf8'));
    rmSync(file);
    return result;
}

const list = values => values.map(value => value.toFixed(2)).join(', ');

/**
 * Compares the true and the measured values, horizontal and vertical. The true horizontal part is smaller by up to 1 % for
 * targets that are not at the height of the eyes.
 */
function check({ quality }, { offset, noise }, name) {
    for (const eye of ['left', 'right']) {
        const { mean: { accuracy, std } } = quality.gazes.find(gaze => gaze.name === eye);
        const measured = { offset: [accuracy.azimuth, accuracy.elevation], noise: [std.azimuth, std.elevation] };
        const truth = `true offset ${list(offset)}, noise ${noise.toFixed(2)}`;
        const result = `measured offset ${list(measured.offset)}, noise ${list(measured.noise)}`;
        console.log(`${name}, ${eye} eye, degrees: ${truth}; ${result}`);
        measured.offset.forEach((value, axis) => assert.ok(Math.abs(value - offset[axis]) <= maxOffsetError, result));
        measured.noise.forEach(value => assert.ok(Math.abs(value / noise - 1) <= maxNoiseError, result));
    }
}

/** Validates and checks. Repeats a validation with a wrong result if the person did not follow the target meanwhile. */
async function measure(browser, person, downloads, name) {
    for (let attempt = 1; ; ++attempt) {
        const { result, pauseMs } = await validate(browser, person, downloads);
        try {
            return check(result, person, name);
        } catch (error) {
            if (pauseMs <= maxPauseMs || attempt === maxAttemptCount) throw error;
            console.log(`${name}: repeated, because the machine stopped for ${pauseMs} ms: ${error.message}`);
        }
    }
}

for (const person of cases) {
    const name = `${person.tracker}, screen ${person.screen}, ${100 * person.scale} %`;
    test(`a validation finds the true offset and noise: ${name}`, async t => {
        const home = await startOcela(t, person);
        await calibrate(person);
        const downloads = join(home.folder, 'downloads');
        mkdirSync(downloads);
        const browser = await startBrowser(t, person, downloads);
        await measure(browser, person, downloads, name);
    });
}
