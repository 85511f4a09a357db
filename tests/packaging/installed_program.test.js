import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, readdirSync } from 'node:fs';
import { extname, join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { address, createHome, startProgram } from '../web/support/program.js';

const web = fileURLToPath(new URL('../../web/', import.meta.url));
const pages = readdirSync(web, { recursive: true }).filter(name => /\.(html|css|js|svg)$/.test(extname(name)));

test('the installed program serves every page', async () => {
    const home = createHome();
    const prefix = join(home.folder, 'usr');
    execFileSync(process.env.OCELA_CMAKE, ['--install', process.env.OCELA_BUILD, '--prefix', prefix]);
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
