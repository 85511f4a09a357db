// @ts-nocheck
import { execFileSync, spawn, spawnSync } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { waitFor } from '../web/support/wait.js';

const configuration = new URL('virtual_display.conf', import.meta.url).pathname;

/** The screen of the simulated person, see docs/simulators.md. */
const sizeMm = { width: 531, height: 299 };

const refreshHz = 60;

const run = (...command) => execFileSync(command[0], command.slice(1), { stdio: ['ignore', 'pipe', 'inherit'] });

/**
 * An X server with several monitors and a window manager. Child processes that are started later use its display. Needs
 * tools/isolated, because the server has no lock file.
 */
export class VirtualDisplay {
    #folder = mkdtempSync(join(tmpdir(), 'ocela-display-'));
    #children = [];
    #pointer;

    /** Starts the display. Positions and sizes of the monitors are in pixels. The first one is the primary monitor. */
    async start(monitors) {
        const server = this.#spawn(['ignore', 'ignore', 'ignore', 'pipe'], 'Xorg', '-displayfd', '3', '-nolock', '-noreset',
            '-nolisten', 'tcp', '-config', configuration, '-logfile', join(this.#folder, 'log'));
        const number = await new Promise(resolve => server.stdio[3].setEncoding('utf8').once('data', resolve));
        process.env.DISPLAY = `:${number.trim()}`;
        monitors.forEach(addMode);
        run('xrandr', ...monitors.flatMap(layoutOf));
        run('xrandr');  // makes the server probe its outputs, because only then they are connected for other clients
        this.#spawn('ignore', 'openbox');
        const isManaged = () => spawnSync('xdotool', ['get_num_desktops']).status === 0;
        await waitFor(isManaged, 'the window manager has started');
        this.#pointer = this.#spawn(['pipe', 'inherit', 'inherit'], 'xdotool', '-');
    }

    /** Moves the mouse pointer, without waiting for the result. */
    movePointer(x, y) {
        this.#pointer.stdin.write(`mousemove ${Math.round(x)} ${Math.round(y)}\n`);
    }

    click(x, y) {
        run('xdotool', 'mousemove', `${Math.round(x)}`, `${Math.round(y)}`, 'click', '1');
    }

    /** Presses a key in the window with the keyboard focus. */
    press(key) {
        run('xdotool', 'key', key);
    }

    /** Gives the keyboard focus to a window. A search fails if any window is closed meanwhile. */
    focus(windowName) {
        const search = ['search', '--onlyvisible', '--name', windowName, 'windowfocus', '--sync'];
        return waitFor(() => spawnSync('xdotool', search).status === 0, `${windowName} has the keyboard focus`);
    }

    shows(windowName) {
        return spawnSync('xdotool', ['search', '--onlyvisible', '--name', windowName]).status === 0;
    }

    async close() {
        for (const child of this.#children.reverse()) {
            const ended = new Promise(resolve => child.once('exit', resolve));
            child.kill();
            await ended;
        }
        rmSync(this.#folder, { recursive: true });
    }

    #spawn(stdio, program, ...args) {
        const child = spawn(program, args, { stdio });
        this.#children.push(child);
        return child;
    }
}

/** Adds a mode with the shortest timing. Chromium draws as often as the mode says. */
function addMode({ width: w, height: h }, i) {
    const [columns, rows] = [[w, w + 1, w + 2, w + 3], [h, h + 1, h + 2, h + 3]];
    const clockMHz = (columns[3] * rows[3] * refreshHz) / 1e6;
    run('xrandr', '--newmode', `mode${i}`, ...[clockMHz, ...columns, ...rows].map(String));
    run('xrandr', '--addmode', `DUMMY${i}`, `mode${i}`);
}

function layoutOf({ x, y }, i) {
    const size = ['--set', 'WIDTH_MM', `${sizeMm.width}`, '--set', 'HEIGHT_MM', `${sizeMm.height}`];
    return ['--output', `DUMMY${i}`, '--mode', `mode${i}`, '--pos', `${x}x${y}`, ...(i === 0 ? ['--primary'] : []), ...size];
}
