// @ts-nocheck
import { spawn } from 'node:child_process';
import { existsSync, mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { waitFor } from './wait.js';

export const address = 'http://127.0.0.1:3735';

const privateProfile = new URL('../../../tools/private-profile', import.meta.url).pathname;
const { OCELA_PROGRAM: builtProgram = '', OCELA_SIMULATOR: simulator = '' } = process.env;

/** A child process whose output is collected. */
class Child {
    output = '';

    constructor(file, args, options = {}) {
        this.process = spawn(file, args, { stdio: ['ignore', 'pipe', 'pipe'], ...options });
        for (const stream of [this.process.stdout, this.process.stderr])
            stream.setEncoding('utf8').on('data', text => { this.output += text; });
        this.ended = new Promise(resolve => this.process.once('exit', resolve));
    }

    kill() {
        this.process.kill('SIGKILL');
        return this.ended;
    }
}

/** Starts a simulated GazePoint tracker. Resolves when it listens. */
export async function startSimulator(...args) {
    const child = new Child(simulator, args);
    await waitFor(() => child.output.includes('listening on'), 'the simulator listens');
    return child;
}

/** Creates a home folder in which the GazePoint tracker is selected. `properties` are further settings. */
export function createHome(properties = {}) {
    const folder = mkdtempSync(join(tmpdir(), 'ocela-home-'));
    const settings = join(folder, '.local/share/Velmora');
    mkdirSync(settings, { recursive: true });
    const lines = Object.entries({ SelectedTracker: 'gazepoint', ...properties })
        .map(([name, value]) => `<property name="${name}">${value}</property>`);
    writeFileSync(join(settings, 'OcelaSettings.xml'), `<settings version="1">${lines.join('')}</settings>`);
    return { folder, remove: () => rmSync(folder, { recursive: true, force: true }) };
}

/** Starts Ocela in its own folder, or in `folder`. Resolves when it answers requests. `variables` are of its environment. */
export async function startProgram(home, program = builtProgram, folder = dirname(program), variables = {}) {
    const fixed = { QT_QPA_PLATFORM: 'offscreen', XDG_RUNTIME_DIR: home.folder, LC_ALL: 'C.UTF-8' };
    const env = { ...process.env, ...fixed, ...variables };
    const child = new Child(privateProfile, [home.folder, program], { cwd: folder, env });
    await waitFor(() => fetch(`${address}/hello`).then(({ ok }) => ok, () => false), 'Ocela answers');
    return child;
}

export const fileAt = path => waitFor(() => existsSync(path), path);
