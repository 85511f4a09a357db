import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { appendFileSync, copyFileSync, existsSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { waitFor } from '../web/support/wait.js';
import { address } from '../web/support/program.js';

const { OCELA_SETUP: setup, OCELA_WINE: wineScript, WINEPREFIX: prefix } = process.env;
const wine = (...command) => spawnSync(wineScript, command, { stdio: 'ignore' }).status;
const uninstallKey = String.raw`HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Ocela`;
const isRegistered = () => wine('reg', 'query', uninstallKey) === 0;

assert.equal(wine('wineboot', '--init'), 0);
const users = join(prefix, 'drive_c/users');
const user = join(users, readdirSync(users).find(name => name !== 'Public'));
const startMenu = join(user, 'AppData/Roaming/Microsoft/Windows/Start Menu/Programs');
const autorun = join(startMenu, 'StartUp/Ocela.lnk');
const settings = join(user, 'AppData/Local/Velmora/OcelaSettings.xml');
const folder = join(user, 'AppData/Local/Programs/Ocela');
const uninstaller = join(folder, 'uninstall.exe');

async function page() {
    try {
        return await (await fetch(address)).text();
    } catch {
        return '';
    }
}

after(() => wine('wineboot', '--kill'));

test('the installer installs, upgrades and removes the program silently', async () => {
    assert.equal(wine(setup, '/S'), 0);
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
    assert.equal(wine('taskkill', '/im', 'Ocela.exe'), 0);
    rmSync(autorun);
    await waitFor(async () => await page() === '' && wine(setup, '/S') === 0, 'the program is upgraded');
    assert.ok(!existsSync(join(folder, 'http/outdated.html')));
    assert.ok(!existsSync(autorun), 'an upgrade keeps the choice of the user');
    copyFileSync(join(startMenu, 'Ocela.lnk'), autorun);

    assert.equal(wine(uninstaller, '/S'), 0);
    await waitFor(() => !isRegistered(), 'the program is removed');
    assert.deepEqual(readdirSync(folder, { recursive: true }).sort(), ['QuickLink2.dll', 'http', 'http/own.html']);
    assert.ok(!existsSync(join(startMenu, 'Ocela.lnk')) && !existsSync(autorun));
    assert.ok(existsSync(settings));
});
