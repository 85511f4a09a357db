import assert from 'node:assert/strict';
import { copyFileSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Chromium } from './support/chromium.js';
import { waitFor } from './support/patience.js';
import { address, createHome, fileAt, startProgram, startSimulator } from './support/program.js';

const seconds = 3;
const isShown = id => `!document.querySelector('#${id}').hidden`;
const duration = "parseFloat(document.querySelector('#duration').textContent)";

let folder, home, simulator, program, browser, record;
before(async () => {
    folder = mkdtempSync(join(tmpdir(), 'ocela-records-'));
    home = createHome();
    simulator = await startSimulator('--rate', '150');
    program = await startProgram(home);
    browser = new Chromium();
    record = join(folder, 'record.csv');
    await recordTo(record);
});
after(async () => {
    await browser?.close();
    await program?.kill();
    await simulator?.kill();
    home?.remove();
    rmSync(folder, { recursive: true, force: true });
});

async function lastSample() {
    return (await (await fetch(`${address}/lastsample`)).json()).sample;
}

/** A record of the program, of so many seconds. */
async function recordTo(file) {
    await waitFor(async () => (await lastSample()).timestamp > 0, 'samples');
    await fetch(`${address}/startrecord&path=${encodeURIComponent(file)}`);
    const { timestamp } = await lastSample();
    await waitFor(async () => (await lastSample()).timestamp > timestamp + 1000 * seconds, 'a record long enough');
    await fetch(`${address}/stoprecord`);
    await fileAt(file);
}

test('a record of the program is shown, zoomed and saved as a picture', async () => {
    const page = await browser.open(`${address}/record.html`);
    await page.choose('#file', record);
    await page.until(isShown('view'));
    await page.until(`${duration} >= ${seconds - 0.5}`);
    assert.ok(await page.evaluate("parseInt(document.querySelector('#fixation-count').textContent)") > 3);
    assert.ok(await page.evaluate("parseInt(document.querySelector('#mean-fixation').textContent)") >= 100);

    const scanPath = await page.evaluate("document.querySelector('#stage').toDataURL()");
    await page.click('[data-mode=heatMap]');
    await page.until(`document.querySelector('#stage').toDataURL() !== ${JSON.stringify(scanPath)}`);

    const whole = await page.evaluate(duration);
    const { x, y } = await page.evaluate(`
        document.querySelector('#pupils').scrollIntoView();
        document.querySelector('#pupils').getBoundingClientRect().toJSON()`);
    await page.send('Input.dispatchMouseEvent', { type: 'mouseWheel', x: x + 300, y: y + 40, deltaX: 0, deltaY: -500 });
    await page.until(`${duration} < ${whole}`);
    const zoomed = await page.evaluate(duration);
    await page.evaluate("document.querySelector('#validity').focus()");
    await page.send('Input.dispatchKeyEvent', { type: 'keyDown', key: '+' });
    await page.until(`${duration} < ${zoomed}`);
    await page.click('#whole');
    await page.until(`${duration} === ${whole}`);

    await page.evaluate(`
        document.querySelector('#shortest').value = 2000;
        document.querySelector('#shortest').dispatchEvent(new Event('change'))`);
    await page.until("document.querySelector('#fixation-count').textContent === '0'");

    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: folder });
    await page.click('#export');
    await fileAt(join(folder, 'record.png'));
    assert.equal(readFileSync(join(folder, 'record.png')).toString('latin1', 1, 4), 'PNG');
    assert.deepEqual(page.complaints, []);
});

test('what is no record gets a reason with its line, and the next file is opened all the same', async () => {
    const text = readFileSync(record, 'utf8');
    const lines = text.split('\r\n');
    const half = text.slice(0, text.indexOf(lines[100]) + 20);
    copyFileSync(new URL('../../docs/images/main-window.png', import.meta.url), join(folder, 'picture.csv'));
    for (const [name, content] of [
        ['header.csv', `${lines[0]}\r\n`], ['truncated.csv', half], ['<b>bold.csv', text.replace(lines[3], 'x,'.repeat(22))],
    ])
        writeFileSync(join(folder, name), content);

    const page = await browser.open(`${address}/record.html`);
    for (const [name, part, reason] of [
        ['header.csv', 'problem', 'Line 2: no samples follow the header.'],
        ['truncated.csv', 'remarks', 'Line 101 is incomplete'],
        ['picture.csv', 'problem', 'Line 1: this is no record of Ocela.'],
        ['<b>bold.csv', 'problem', 'Cannot show “<b>bold.csv”. Line 4, column 1 (Timestamp): “x” is no number.'],
    ]) {
        await page.choose('#file', join(folder, name));
        await page.until(`document.querySelector('#${part}').textContent.includes(${JSON.stringify(reason)})`);
        assert.equal(await page.evaluate("document.querySelectorAll('main b b, #problem b').length"), 0);
    }
    await page.click('[data-language=ru]');
    await page.until("document.querySelector('#problem').textContent.includes('«x» — не число.')");
    assert.ok(await page.evaluate("document.querySelector('#view').hidden"));
    await page.click('[data-language=en]');
    assert.deepEqual(page.complaints, []);
});

test('a dropped record of an hour opens, and stays with its figures', async () => {
    const page = await browser.open(`${address}/record.html`);
    const lines = readFileSync(record, 'utf8').split('\r\n');
    // The same seconds over and over, at 150 Hz.
    await page.evaluate(`{
        const rows = ${JSON.stringify(lines.slice(1, 101).map(line => line.split(',').slice(2).join()))};
        const body = Array.from({ length: 540000 }, (_, i) => Math.round(1e12 + i / 0.15) + ',0,' + rows[i % rows.length]);
        const dataTransfer = new DataTransfer();
        dataTransfer.items.add(new File([${JSON.stringify(lines[0])}, '\\r\\n', body.join('\\r\\n'), '\\r\\n'], 'hour.csv'));
        document.dispatchEvent(new DragEvent('drop', { dataTransfer, bubbles: true, cancelable: true }));
    }`);
    await page.until(isShown('view'));
    await page.until("document.querySelector('#duration').textContent === '1:00:00'");
    assert.equal(await page.text('#rate'), '150.0 Hz');
    assert.match(await page.text('#status'), /^540,000 /);
    assert.deepEqual(page.complaints, []);
});
