import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { appendFileSync, copyFileSync, existsSync, mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { waitFor } from '../web/support/wait.js';
import { address } from '../web/support/program.js';

const { OCELA_SETUP: setup, OCELA_WINE: wineScript, WINEPREFIX: prefix } = process.env;
const wine = (...command) => spawnSync(wineScript, command, { stdio: 'ignore' }).status;
const uninstallKey = String.raw`HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Ocela`;
const noSuchProcess = 128;
const isRegistered = () => wine('reg', 'query', uninstallKey) === 0;

assert.equal(wine('wineboot', '--init'), 0);
const users = join(prefix, 'drive_c/users');
const user = join(users, readdirSync(users).find(name => name !== 'Public'));
const startMenu = join(user, 'AppData/Roaming/Microsoft/Windows/Start Menu/Programs');
const autorun = join(startMenu, 'StartUp/Ocela.lnk');
const shortcuts = [join(startMenu, 'Ocela.lnk'), join(startMenu, 'Ocela Dashboard.lnk'), join(user, 'Desktop/Ocela.lnk')];
const settings = join(user, 'AppData/Local/Velmora/OcelaSettings.xml');
const folder = join(user, 'AppData/Local/Programs/Ocela');
const uninstaller = join(folder, 'uninstall.exe');
const uninstall = async () => {
    assert.equal(wine(uninstaller, '/S'), 0);
    await waitFor(() => !isRegistered(), 'the program is removed');
};

async function page(url = address) {
    try {
        return await (await fetch(url)).text();
    } catch {
        return '';
    }
}

/** Asks again until no process is left, because the window may open after the server, and the program ends after it. */
async function quit() {
    await waitFor(() => wine('taskkill', '/im', 'Ocela.exe') === noSuchProcess, 'the program has ended');
}

after(() => wine('wineboot', '--kill'));

test('the installer installs, upgrades and removes the program silently', async () => {
    assert.equal(wine(setup, '/S', '/DESKTOP=1'), 0);
    assert.ok(isRegistered());
    for (const name of ['QuickLink2.dll', 'http/own.html', 'http/outdated.html'])
        writeFileSync(join(folder, name), name);
    appendFileSync(join(folder, 'installed-files.txt'), 'http\\outdated.html\n');

    assert.equal(wine('start', '/unix', autorun), 0);
    await waitFor(page, 'the program serves the dashboard');
    assert.equal(await page(), readFileSync(fileURLToPath(new URL('../../web/index.html', import.meta.url)), 'utf8'));
    assert.equal(wine(setup, '/S'), 2, 'a running program is not upgraded');
    assert.equal(wine(uninstaller, '/S', `_?=Z:${folder.replaceAll('/', '\\')}`), 2, 'a running program is not removed');
    assert.ok(await page());
    await quit();
    rmSync(autorun);
    assert.equal(wine(setup, '/S'), 0, 'the program is upgraded');
    assert.ok(!existsSync(join(folder, 'http/outdated.html')));
    assert.ok(!existsSync(autorun), 'an upgrade keeps the choice of the user');
    assert.ok(shortcuts.every(existsSync));
    copyFileSync(join(startMenu, 'Ocela.lnk'), autorun);

    await uninstall();
    assert.deepEqual(readdirSync(folder, { recursive: true }).sort(), ['QuickLink2.dll', 'http', 'http/own.html']);
    assert.ok(![...shortcuts, autorun].some(existsSync));
    assert.ok(existsSync(settings));
});

test('each shortcut starts the program, and that of the dashboard opens the browser', async () => {
    // Wine opens web pages with xdg-open.
    const tools = mkdtempSync(join(tmpdir(), 'ocela-tools-'));
    const opened = join(tools, 'opened');
    writeFileSync(join(tools, 'xdg-open'), `#!/bin/sh\necho "$1" >>'${opened}'\n`, { mode: 0o755 });
    process.env.PATH = `${tools}:${process.env.PATH}`;
    assert.equal(wine(setup, '/S', '/DESKTOP=1'), 0);
    for (const shortcut of shortcuts) {
        assert.equal(wine('start', '/unix', shortcut), 0);
        await waitFor(page, `${shortcut} starts the program`);
        if (shortcut.includes('Dashboard')) {
            assert.equal(wine('start', '/unix', shortcut), 0);
            await waitFor(() => existsSync(opened) && readFileSync(opened, 'utf8') === 'http://localhost:3735/\n'.repeat(2),
                'both starts open the dashboard');
        }
        await quit();
    }
    assert.equal(readFileSync(opened, 'utf8').split('\n').length, 3);
    rmSync(tools, { recursive: true });
    await uninstall();
});

test('the installer sets who may use the program, unless the user has decided', async () => {
    // Only a server that listens on all interfaces accepts connections to this address.
    const otherAddress = address.replace('127.0.0.1', '127.0.0.2');
    const decided = value => `<settings><property name="AllowOtherComputers">${value}</property></settings>`;
    for (const { options, file, allowed } of [
        { options: [], file: '', allowed: true },
        { options: ['/LOCALONLY=1'], file: '', allowed: false },
        { options: ['/LOCALONLY=1'], file: decided(true), allowed: true },
        { options: ['/LOCALONLY=0'], file: decided(false), allowed: false },
    ]) {
        rmSync(settings, { force: true });
        if (file) writeFileSync(settings, file);
        assert.equal(wine(setup, '/S', ...options), 0);
        assert.equal(existsSync(autorun), !file, 'the settings that the installer writes are no choice about the autostart');
        if (file) assert.equal(readFileSync(settings, 'utf8'), file);
        assert.equal(wine('start', '/unix', join(startMenu, 'Ocela.lnk')), 0);
        await waitFor(page, 'the program serves the dashboard');
        assert.equal(await page(otherAddress) !== '', allowed, `${options} ${file}`);
        await quit();
        await uninstall();
    }
});
