#!/usr/bin/env node
// @ts-check
// Measures the CPU load of all Chromium processes while the live page shows samples, and while an empty page is open.
// Needs the release build and the package chromium.
//
// usage: bench/dashboard_cpu.js [SAMPLE_RATE] [ROUNDS]
import { spawnSync } from 'node:child_process';
import { readFileSync, readdirSync } from 'node:fs';
import { loadavg } from 'node:os';
import { Chromium } from '../tests/web/support/chromium.js';
import { address, createHome, startProgram, startSimulator } from '../tests/web/support/program.js';
import { pause } from '../tests/web/support/wait.js';

const [settleMs, measureMs, tickMs] = [5000, 20000, 10];
const [rate = '150', rounds = '3'] = process.argv.slice(2);
const build = new URL('../build/release/', import.meta.url).pathname;

/** Runs this script in isolation, so that the ports are free and all Chromium processes belong to it. */
function runIsolated() {
    const isolated = new URL('../tools/isolated', import.meta.url).pathname;
    const OCELA_SIMULATOR = `${build}simulators/gazepoint/gazepoint-simulator`;
    const env = { ...process.env, OCELA_PROGRAM: `${build}src/app/Ocela`, OCELA_SIMULATOR, OCELA_BENCH_ISOLATED: '1' };
    return spawnSync(isolated, [process.execPath, ...process.argv.slice(1)], { stdio: 'inherit', env }).status ?? 1;
}

/** Returns the CPU time of all running Chromium processes, in ms. No process may exit while a page is measured. */
function chromiumMs() {
    const stats = readdirSync('/proc').filter(id => /^\d+$/.test(id)).map(id => readFileSync(`/proc/${id}/stat`, 'utf8'));
    const times = stats.filter(stat => stat.includes('(chrom')).map(stat => stat.replace(/.*\) /s, '').split(' '));
    return tickMs * times.reduce((sum, fields) => sum + Number(fields[11]) + Number(fields[12]), 0);
}

/**
 * Opens a page and returns the CPU load of Chromium, in percent of one core.
 *
 * @param {Chromium} browser
 * @param {string} url
 */
async function corePercent(browser, url) {
    await browser.open(url);
    await pause(settleMs);
    const [usedMs, startMs] = [chromiumMs(), performance.now()];
    await pause(measureMs);
    return (100 * (chromiumMs() - usedMs)) / (performance.now() - startMs);
}

async function measure() {
    const pages = { 'empty page': 'about:blank#', 'live page': `${address}/` };
    const home = createHome();
    const children = [await startSimulator('--rate', rate), await startProgram(home)];
    const browser = new Chromium();
    for (let round = 1; round <= Number(rounds); ++round) {
        for (const [name, url] of Object.entries(pages)) {
            const percent = await corePercent(browser, url);
            console.log(`${name}: ${percent.toFixed(1)} % of one core, load average ${loadavg()[0].toFixed(1)}`);
        }
    }
    await browser.close();
    for (const child of children) await child.kill();
    home.remove();
}

if (process.env.OCELA_BENCH_ISOLATED) await measure();
else process.exitCode = runIsolated();
