#!/usr/bin/env node
// What the live page takes of one core: all of Chromium's processes while it shows the started program's samples,
// in turns with an empty page. Needs the release build and the package chromium.
//
// usage: bench/dashboard_cpu.js [SAMPLES A SECOND] [ROUNDS]
import { spawnSync } from 'node:child_process';
import { readFileSync, readdirSync } from 'node:fs';
import { loadavg } from 'node:os';
import { Chromium } from '../tests/web/support/chromium.js';
import { pause } from '../tests/web/support/patience.js';
import { address, createHome, startProgram, startSimulator } from '../tests/web/support/program.js';

const [settleMs, measureMs, msPerTick] = [5000, 20000, 10];
const [rate = '150', rounds = '3'] = process.argv.slice(2);
const build = new URL('../build/release/', import.meta.url).pathname;

/** In namespaces of its own: a second Ocela is refused, and all of Chromium there is ours. */
function runIsolated() {
    const options = ['--map-root-user', '--net', '--pid', '--fork', '--kill-child', '--mount', '--mount-proc'];
    const command = ['sh', '-c', 'ip link set lo up && exec "$@"', 'sh', process.execPath, ...process.argv.slice(1)];
    const OCELA_SIMULATOR = `${build}simulators/gazepoint/gazepoint-simulator`;
    const env = { ...process.env, OCELA_PROGRAM: `${build}src/app/Ocela`, OCELA_SIMULATOR, OCELA_BENCH_ISOLATED: '1' };
    return spawnSync('unshare', [...options, ...command], { stdio: 'inherit', env }).status;
}

/** Processor time of all of Chromium until now. Its processes live as long as the page. */
function chromiumMs() {
    const stats = readdirSync('/proc').filter(id => /^\d+$/.test(id)).map(id => readFileSync(`/proc/${id}/stat`, 'utf8'));
    const times = stats.filter(stat => stat.includes('(chrom')).map(stat => stat.replace(/.*\) /s, '').split(' '));
    return msPerTick * times.reduce((sum, fields) => sum + Number(fields[11]) + Number(fields[12]), 0);
}

async function percentOfCore(browser, url) {
    await browser.open(url);
    await pause(settleMs);
    const [usedMs, startMs] = [chromiumMs(), performance.now()];
    await pause(measureMs);
    return (100 * (chromiumMs() - usedMs)) / (performance.now() - startMs);
}

async function measure() {
    const pages = { 'empty page': 'about:blank#', 'live page': `${address}/` };
    const home = createHome();
    const running = [await startSimulator('--rate', rate), await startProgram(home)];
    const browser = new Chromium();
    for (let round = 1; round <= Number(rounds); ++round) {
        for (const [name, url] of Object.entries(pages)) {
            const share = await percentOfCore(browser, url);
            console.log(`${name}: ${share.toFixed(1)} % of one core, the machine's load ${loadavg()[0].toFixed(1)}`);
        }
    }
    await browser.close();
    for (const program of running) await program.kill();
    home.remove();
}

if (process.env.OCELA_BENCH_ISOLATED) await measure();
else process.exitCode = runIsolated();
