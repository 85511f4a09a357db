import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, readFileSync, readdirSync, rmSync } from 'node:fs';
import { extname, join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { address, createHome, startProgram } from '../web/support/program.js';

const web = fileURLToPath(new URL('../../web/', import.meta.url));
const pages = readdirSync(web, { recursive: true }).filter(name => /\.(html|css|js|svg)$/.test(extname(name)));

const install = home => {
    const prefix = join(home.folder, 'usr');
    execFileSync(process.env.OCELA_CMAKE, ['--install', process.env.OCELA_BUILD, '--prefix', prefix]);
    return prefix;
};

test('the installed program serves every page', async () => {
    const home = createHome();
    const prefix = install(home);
    const program = await startProgram(home, join(prefix, 'bin/ocela'));
    try {
        for (const name of pages) {
            const served = await (await fetch(`${address}/${name}`)).text();
            assert.equal(served, readFileSync(join(web, name), 'utf8'), name);
        }
    } finally {
        await program.kill();
        home.remove();
    }
});

test('the menu entries, their icon and the description for software centres are valid', () => {
    const home = createHome();
    const share = join(install(home), 'share');
    const entries = { 'ocela.desktop': 'ocela', 'ocela-dashboard.desktop': 'ocela --dashboard' };
    try {
        assert.deepEqual(readdirSync(join(share, 'applications')).sort(), Object.keys(entries).sort());
        for (const [name, command] of Object.entries(entries)) {
            const file = join(share, 'applications', name);
            assert.equal(execFileSync('desktop-file-validate', [file], { encoding: 'utf8' }), '');
            const text = readFileSync(file, 'utf8');
            assert.ok(text.includes(`\nExec=${command}\n`) && text.includes('\nIcon=ocela\n'), text);
        }
        for (const folder of readdirSync(join(share, 'icons/hicolor'))) {
            const icon = join(share, 'icons/hicolor', folder, 'apps/ocela');
            // The width and the height in the header of a PNG file.
            const sizes = folder === 'scalable' ? '' : readFileSync(`${icon}.png`).subarray(16, 24);
            if (sizes) assert.equal(`${sizes.readInt32BE(0)}x${sizes.readInt32BE(4)}`, folder);
            else assert.ok(existsSync(`${icon}.svg`));
        }
        const [metainfo] = readdirSync(join(share, 'metainfo'));
        execFileSync('appstreamcli', ['validate', '--no-net', join(share, 'metainfo', metainfo)], { stdio: 'pipe' });
        const [, launched] = readFileSync(join(share, 'metainfo', metainfo), 'utf8').match(/"desktop-id">(.*)</) ?? [];
        assert.ok(launched in entries, launched);
    } finally {
        home.remove();
    }
});

test('only the first start of a user creates the autostart entry', async () => {
    const home = createHome();
    const prefix = install(home);
    const settings = join(home.folder, '.local/share/Velmora/OcelaSettings.xml');
    const autostart = join(home.folder, '.config/autostart/Ocela.desktop');
    try {
        for (const isFirst of [false, true]) {
            if (isFirst)
                rmSync(settings);
            const program = await startProgram(home, join(prefix, 'bin/ocela'));
            await program.kill();
            assert.equal(existsSync(autostart), isFirst);
        }
        assert.deepEqual(readFileSync(autostart), readFileSync(join(prefix, 'share/applications/ocela.desktop')));
    } finally {
        home.remove();
    }
});
