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
