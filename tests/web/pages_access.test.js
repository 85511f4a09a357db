import assert from 'node:assert/strict';
import { existsSync } from 'node:fs';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { Chromium } from './support/chromium.js';
import { FakeService } from './support/fake_service.js';
import { address, createHome, fileAt, startProgram } from './support/program.js';

const localhost = address.replace('127.0.0.1', 'localhost');
const browser = new Chromium({ options: ['--host-resolver-rules=MAP attacker.example 127.0.0.1'] });
after(() => browser.close());

/** The answer of Ocela to a script, or the name of the error. */
const ask = url => `fetch('${url}').then(answer => answer.json()).then(({ result }) => result, error => error.name)`;
const showImage = url => `new Promise(done => {
    const image = new Image();
    image.onload = image.onerror = done;
    image.src = '${url}';
}).then(() => true)`;

test('a browser lets only permitted pages use Ocela', async t => {
    // The pages of this test are JSON documents, because Ocela's own pages have a policy that forbids requests to other origins.
    const allowed = new FakeService();
    const foreign = new FakeService();
    for (const service of [allowed, foreign]) {
        await service.listen();
        t.after(() => service.close());
    }
    const home = createHome({ AllowForeignPages: false, AllowedOrigins: allowed.address });
    const programs = [];
    t.after(async () => {
        for (const program of programs) await program.kill();
        home.remove();
    });
    programs.push(await startProgram(home));
    const recordTo = name => `${localhost}/startrecord&path=${join(home.folder, name)}`;

    let page = await browser.open(`${foreign.address}/api/v1/page`);
    assert.equal(await page.evaluate(ask(`${localhost}/hello`)), 'TypeError');
    await page.evaluate(showImage(recordTo('foreign.csv')));

    page = await browser.open(`http://attacker.example:${new URL(address).port}/`);
    assert.match(await page.text('body'), /"error":"The host name /);

    page = await browser.open(`${localhost}/hello`);
    assert.equal(await page.evaluate(ask('/hello')), true);
    assert.equal(await page.evaluate(ask(`${address}/hello`)), true, 'under another name of this computer');

    page = await browser.open(`${allowed.address}/api/v1/page`);
    await page.evaluate(ask(`${localhost}/stoprecord`));
    assert.equal(await page.evaluate(ask(recordTo('allowed.csv'))), true);
    assert.equal(await page.evaluate(ask(`${localhost}/stoprecord`)), true);
    await fileAt(join(home.folder, 'allowed.csv'));
    assert.ok(!existsSync(join(home.folder, 'foreign.csv')));
});
