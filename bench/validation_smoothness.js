#!/usr/bin/env node
// @ts-check
// Measures the intervals between animation frames while the target of a validation moves, and while an empty page moves the
// same target in the same browser window. Needs the release build and the packages of tools/packages/test.txt.
//
// usage: bench/validation_smoothness.js [ROUNDS]
import { spawnSync } from 'node:child_process';
import { loadavg } from 'node:os';
import { focusPage, startRun, step, untilFullScreen } from '../tests/system/validation_page.js';
import { VirtualDisplay } from '../tests/system/virtual_display.js';
import { Chromium } from '../tests/web/support/chromium.js';
import { address, createHome, startProgram, startSimulator } from '../tests/web/support/program.js';

/** @typedef {Awaited<ReturnType<Chromium['open']>>} Page */

const monitor = { x: 0, y: 0, width: 1920, height: 1080 };
const [rounds = '5'] = process.argv.slice(2);
const build = new URL('../build/release/', import.meta.url).pathname;

/** Collects the intervals in ms between frames of the phases in which the target moves. */
const record = `
    window.intervals = [];
    let lastMs = NaN;
    requestAnimationFrame(function frame(nowMs) {
        const isMoving = ['travel', 'shrink'].includes(document.querySelector('#stage').dataset.phase);
        if (isMoving && lastMs > 0) intervals.push(nowMs - lastMs);
        lastMs = isMoving ? nowMs : NaN;
        requestAnimationFrame(frame);
    });`;

/** A page with the same target and animations as /validate.html, and nothing else. A key fills the screen. */
const emptyPage = `
    document.body.innerHTML = \`<div id="stage" data-phase="instruction" style="position: fixed; inset: 0; background: gray">
        <svg id="target" viewBox="-50 -50 100 100" width="24" height="24" style="position: absolute; left: 0; top: 0">
            <circle r="50"/><path d="M-52 0H52M0 -52V52" stroke="gray" stroke-width="17"/><circle r="16.7"/>
        </svg></div>\`;
    document.addEventListener('keydown', () => document.querySelector('#stage').requestFullscreen());
    async function move() {
        const [stage, target] = ['#stage', '#target'].map(selector => document.querySelector(selector));
        const place = ([x, y], scale) => \`translate(\${x}vw, \${y}vh) translate(-50%, -50%) scale(\${scale})\`;
        const animate = (from, to, duration, easing) =>
            target.animate({ transform: [from, to] }, { duration, easing, fill: 'forwards' }).finished;
        let last = [50, 50];
        for (const next of [25, 50, 75].flatMap(x => [75, 25, 50].map(y => [x, y]))) {
            stage.dataset.phase = 'travel';
            await animate(place(last, 3), place(next, 3), 800, 'ease-in-out');
            stage.dataset.phase = 'shrink';
            await animate(place(next, 3), place(next, 1), 500, 'ease-out');
            stage.dataset.phase = 'stand';
            await new Promise(done => setTimeout(done, 1000));
            last = next;
        }
        stage.dataset.phase = 'end';
    }`;

/** Runs this script in isolation, because the ports are fixed and the X server has no lock file. */
function runIsolated() {
    const isolated = new URL('../tools/isolated', import.meta.url).pathname;
    const OCELA_SIMULATOR = `${build}simulators/gazepoint/gazepoint-simulator`;
    const env = { ...process.env, OCELA_PROGRAM: `${build}src/app/Ocela`, OCELA_SIMULATOR, OCELA_BENCH_ISOLATED: '1' };
    return spawnSync(isolated, [process.execPath, ...process.argv.slice(1)], { stdio: 'inherit', env }).status ?? 1;
}

/**
 * @param {Page} page
 * @param {VirtualDisplay} display
 */
async function runValidation(page, display) {
    await page.evaluate(record);
    await startRun(page, display, monitor);
    await page.until(`${step} !== 'run'`);
}

/**
 * @param {Page} page
 * @param {VirtualDisplay} display
 */
async function runEmptyPage(page, display) {
    await focusPage(page);
    await page.evaluate(emptyPage);
    await page.evaluate(record);
    display.press('space');
    await untilFullScreen(page, monitor);
    await page.evaluate('move()');
}

/**
 * Returns the value below which a share of the values lies.
 *
 * @param {number[]} values
 * @param {number} share
 */
function quantile(values, share) {
    return [...values].sort((a, b) => a - b)[Math.floor(share * (values.length - 1))];
}

/** @param {number[]} intervals */
function summaryOf(intervals) {
    const mean = intervals.reduce((sum, interval) => sum + interval, 0) / intervals.length;
    return { mean, median: quantile(intervals, 0.5), 'within 99 %': quantile(intervals, 0.99), longest: Math.max(...intervals) };
}

/** @typedef {ReturnType<typeof summaryOf>} Summary */

/**
 * Opens both pages in turn. Returns the summaries of each round.
 *
 * @param {Chromium} browser
 * @param {VirtualDisplay} display
 */
async function measureRounds(browser, display) {
    const empty = [];
    const validation = [];
    for (let round = 1; round <= Number(rounds); ++round) {
        empty.push(await measurePage('empty page', await browser.open('about:blank#'), display, runEmptyPage));
        const page = await browser.open(`${address}/validate.html`);
        validation.push(await measurePage('validation', page, display, runValidation));
    }
    return { empty, validation };
}

/**
 * @param {string} name
 * @param {Page} page
 * @param {VirtualDisplay} display
 * @param {(page: Page, display: VirtualDisplay) => Promise<void>} run
 */
async function measurePage(name, page, display, run) {
    await run(page, display);
    const intervals = await page.evaluate('intervals');
    const summary = summaryOf(intervals);
    const figures = Object.entries(summary).map(([figure, ms]) => `${figure} ${ms.toFixed(2)} ms`).join(', ');
    console.log(`${name}: ${intervals.length} intervals, ${figures}, load average ${loadavg()[0].toFixed(1)}`);
    return summary;
}

/** @param {{ empty: Summary[], validation: Summary[] }} summaries */
function printRatios({ empty, validation }) {
    for (const figure of /** @type {(keyof Summary)[]} */ (Object.keys(empty[0]))) {
        const ratios = validation.map((summary, round) => summary[figure] / empty[round][figure]);
        const [min, median, max] = [0, 0.5, 1].map(share => quantile(ratios, share).toFixed(2));
        console.log(`${figure}: validation / empty page ${median} (${min} to ${max})`);
    }
}

async function measure() {
    const display = new VirtualDisplay();
    await display.start([monitor]);
    const home = createHome();
    const children = [await startSimulator('--rate', '150')];
    children.push(await startProgram(home, undefined, undefined, { QT_QPA_PLATFORM: 'xcb' }));
    const browser = new Chromium({ hasWindow: true });
    printRatios(await measureRounds(browser, display));
    await browser.close();
    for (const child of children) await child.kill();
    await display.close();
    home.remove();
}

if (process.env.OCELA_BENCH_ISOLATED) await measure();
else process.exitCode = runIsolated();
