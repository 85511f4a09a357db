import { spawn } from 'node:child_process';
import { existsSync, mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { waitFor } from './patience.js';

export const address = 'http://127.0.0.1:3735';

/** A process of the test's own, whose output is read and which ends with the test. */
class Child {
    output = '';

    constructor(file, args, options = {}) {
        this.process = spawn(file, args, { stdio: ['ignore', 'pipe', 'pipe'], ...options });
        for (const stream of [this.process.stdout, this.process.stderr])
            stream.setEncoding('utf8').on('data', text => { this.output += text; });
        this.ended = new Promise(resolve => this.process.once('exit', resolve));
    }

    kill(signal = 'SIGKILL') {
        this.process.kill(signal);
        return this.ended;
    }
}

/** A stand-in of a GazePoint tracker; ready when this resolves. */
export async function startSimulator(...args) {
    const child = new Child(process.env.OCELA_SIMULATOR, args);
    await waitFor(() => child.output.includes('listening on'), 'the simulator');
    return child;
}

/** A profile of its own, with the GazePoint tracker selected; removed by remove(). */
export function createHome() {
    const folder = mkdtempSync(join(tmpdir(), 'ocela-home-'));
    mkdirSync(join(folder, 'Documents'));
    write(join(folder, 'config/user-dirs.dirs'), 'XDG_DOCUMENTS_DIR="$HOME/Documents"\n');
    write(join(folder, 'data/Velmora/OcelaSettings.xml'),
        '<settings version="1"><property name="SelectedTracker">gazepoint</property></settings>');
    return { folder, remove: () => rmSync(folder, { recursive: true, force: true }) };
}

function write(path, text) {
    mkdirSync(dirname(path), { recursive: true });
    writeFileSync(path, text);
}

function environmentOf({ folder }) {
    return {
        ...process.env,
        QT_QPA_PLATFORM: 'offscreen',
        HOME: folder,
        XDG_DATA_HOME: join(folder, 'data'),
        XDG_CONFIG_HOME: join(folder, 'config'),
        XDG_CACHE_HOME: join(folder, 'cache'),
        XDG_RUNTIME_DIR: folder,
        LC_ALL: 'C.UTF-8',
    };
}

async function answers() {
    try {
        return (await fetch(`${address}/hello`)).ok;
    } catch {
        return false;
    }
}

/** The program, in its own folder as its launchers do; answers requests when this resolves. */
export async function startProgram(home) {
    const child = new Child(process.env.OCELA_PROGRAM, [], {
        cwd: dirname(process.env.OCELA_PROGRAM), env: environmentOf(home),
    });
    await waitFor(answers, 'an answer of the program');
    return child;
}

/** Resolves when the file exists. */
export function fileAt(path) {
    return waitFor(() => existsSync(path), path);
}
