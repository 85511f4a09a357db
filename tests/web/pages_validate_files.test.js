import assert from 'node:assert/strict';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { writeExchangeFile } from '../../web/js/shared/exchange_file.js';
import { Chromium } from './support/chromium.js';
import { FakeService } from './support/fake_service.js';
import { fileAt } from './support/program.js';
import { geometry, inPage, validationOf } from './support/validations.js';

const folder = mkdtempSync(join(tmpdir(), 'ocela-validations-'));
const saved = join(folder, 'saved');
mkdirSync(saved);
const service = await new FakeService().listen();
const browser = new Chromium();
after(async () => {
    await browser.close();
    service.close();
    rmSync(folder, { recursive: true, force: true });
});

const { samples } = validationOf([[[0.5, 0], [0, 1.7]], [[0.5, 0], null]]);
const good = writeExchangeFile(samples);
const isResult = "document.documentElement.dataset.step === 'result'";
const cell = (eye, target, measure) => `tr[data-eye="${eye}"][data-target="${target}"] td[data-measure="${measure}"]`;

const openPage = () => browser.open(`${service.address}/validate.html`);

async function chooseFile(page, name, content) {
    const file = join(folder, name);
    writeFileSync(file, content);
    await page.choose('#file', file);
}

async function enterScreen(page) {
    await page.until("!document.querySelector('#file-form').hidden");
    const { widthMm, heightMm, widthPx, heightPx, distanceMm } = geometry;
    const fields = { 'width-mm': widthMm, 'height-mm': heightMm, 'width-px': widthPx, 'height-px': heightPx, 'distance-mm': distanceMm };
    for (const [id, value] of Object.entries(fields)) await page.fill(`#file-${id}`, String(value));
    await page.click('#file-form [type=submit]');
    await page.until(isResult);
}

test('a file in the exchange format is opened, judged and saved, and the saved files give the same result', async () => {
    let page = await openPage();
    await chooseFile(page, 'good.tsv', good);
    await enterScreen(page);
    const shown = [['left', 0, 'accuracy'], ['right', 0, 'accuracyY'], ['right', 1, 'accuracy'], ['right', 'mean', 'dataLoss']];
    for (const [[eye, target, measure], value] of shown.map((key, i) => [key, ['0.50', '1.70', 'not enough data', '50.0'][i]]))
        assert.equal(await page.text(cell(eye, target, measure)), value);
    assert.match(await page.text('#verdict-reasons'), /1\.10°, worse than the limit of 1\.00°.*25\.0 %, more than the limit of 10\.0 %.*not have enough data at these targets: 1\./);
    assert.match(await page.text('#methods-text'), /\[eye tracker\].*Niehorster/);
    assert.ok(await page.evaluate("document.querySelector('#repeat').hidden && document.querySelector('#calibrate-again').hidden"));

    await page.fill('#limit-accuracy', '0.8');
    await page.fill('#limit-loss', '30');
    assert.match(await page.text('#verdict-reasons'), /1\.10°, worse than the limit of 0\.80°.*The mean data loss is 25\.0 %\. The limit/);

    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: saved });
    for (const type of ['json', 'tsv', 'png']) {
        await page.click(`#save-${type}`);
        await fileAt(join(saved, `good.${type}`));
    }
    assert.equal(readFileSync(join(saved, 'good.tsv'), 'utf8'), good);
    assert.equal(readFileSync(join(saved, 'good.png')).toString('latin1', 1, 4), 'PNG');
    const table = await page.text('#quality-table');
    assert.deepEqual(page.errors, []);

    page = await openPage();
    await page.choose('#file', join(saved, 'good.json'));
    await page.until(isResult);
    assert.equal(await page.text('#quality-table'), table);
    assert.equal(await page.evaluate('scrollY'), 0);
    assert.match(await page.text('#verdict-reasons'), /limit of 0\.80°/, 'the limits are remembered');
    await page.click('[data-language=ru]');
    assert.match(await page.text('#verdict'), /Вне допустимых пределов\s+.*1,10°, хуже предела 0,80°/);
    await page.click('[data-language=en]');

    await page.choose('#file', join(folder, 'good.tsv'));
    await page.until("!document.querySelector('#file-form').hidden");
    assert.equal(await page.evaluate("document.querySelector('#file-distance-mm').value"), '1000', 'the screen is remembered');
    assert.deepEqual(page.errors, []);
});

test('a file of one eye has no combined gaze', async () => {
    const page = await openPage();
    await chooseFile(page, 'left.tsv', writeExchangeFile({ ...samples, right: null }));
    await enterScreen(page);
    assert.equal(await page.text(cell('left', 'mean', 'accuracy')), '0.50');
    assert.equal(await page.evaluate("document.querySelectorAll('tr:is([data-eye=right], [data-eye=combined])').length"), 0);
    assert.match(await page.text('#remarks'), /There are no data of the right eye\./);
    assert.deepEqual(page.errors, []);
});

test('other files are refused with a reason', async () => {
    const page = await openPage();
    for (const [name, content, reason] of [
        ['columns.tsv', good.replace('tar_x', 'other'), 'Line 1: the column “tar_x” is missing.'],
        ['<b>text.tsv', good.replace('\n0\t', '\n0\tlost'), /Cannot show “<b>text\.tsv”\. Line 2, column 2 \(left_x\): “lost.*” is not a number\./],
        ['times.tsv', good.replace(/\n\d+\t/g, '\n5\t'), 'Line 2: all timestamps in this collection window of target 0 are equal.'],
        ['targets.tsv', good.replace(/\t[01](\t0\t0)/g, '\t-1$1'), 'The file has no samples of a target.'],
        ['empty.tsv', '', 'Line 1: the file is empty.'],
        ['many.tsv', good + Array.from({ length: 1100 }, (_, i) => `${1000 + i}\t0\t0\t0\t0\t${i}\t0\t0\n`).join(''), 'at most 1000'],
        ['damaged.json', readFileSync(join(saved, 'good.json'), 'utf8').replace('"missedCount":0', '"missedCount":"5"'), '“circumstances” is missing or invalid'],
        ['other.json', '{"a": 1}', 'This JSON file does not contain a validation.'],
    ]) {
        await chooseFile(page, name, content);
        const matches = reason instanceof RegExp ? `${reason}.test(text)` : `text.includes(${JSON.stringify(reason)})`;
        await page.until(`{ const text = document.querySelector('#open-problem').textContent; ${matches}; }`);
        assert.ok(await page.evaluate("document.querySelector('#file-form').hidden && !document.querySelector('#open b')"));
    }
    assert.ok(!await page.evaluate(isResult));
    await page.click('[data-language=ru]');
    await page.until("document.querySelector('#open-problem').textContent.includes('В этом файле JSON нет валидации.')");
    await page.click('[data-language=en]');
    assert.deepEqual(page.errors, []);
});

/** Returns an expression that adds a validation to the history of the page. */
const remember = (targets, change) => `Promise.all([import('/js/validate/history_view.js'), ${inPage(targets, change)}])
    .then(([{ rememberValidation }, validation]) => rememberValidation(validation))`;

test('the history survives a reload, and can be opened, saved and deleted', async () => {
    let page = await openPage();
    const note = "document.querySelector('#history-note').textContent";
    await page.until(`${note} === 'There are no validations in this browser yet.'`);
    const both = degrees => [[[degrees, 0], [degrees, 0]]];
    await page.evaluate(remember(both(0.5), { id: 'first', time: 1e12 }));
    await page.evaluate(remember(both(0.9), { id: 'second', time: 1e12 + 60000 }));

    page = await openPage();
    await page.until("document.querySelectorAll('.session tbody tr').length === 2");
    assert.match(await page.text('.session h3'), /P1.*A/);
    assert.match(await page.text('.drift'), /left eye 0\.40° \(horizontal \+0\.40°, vertical 0\.00°\), accuracy \+0\.40°/);
    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: saved });
    await page.evaluate(`Date.prototype.getFullYear = () => 2000; Date.prototype.getMonth = () => 0;
        for (const name of ['getDate', 'getHours', 'getMinutes', 'getSeconds']) Date.prototype[name] = () => 1;`);
    await page.click('#history-export');
    await fileAt(join(saved, 'validations_2000-01-01_01-01-01.tsv'));
    await page.click('[data-id=second] .link');
    await page.until(isResult);
    assert.equal(await page.text(cell('left', 'mean', 'accuracy')), '0.90');
    // A repetition would have the labels of the set-up.
    assert.deepEqual(await page.evaluate("['repeat', 'calibrate-again'].map(id => document.getElementById(id).hidden)"), [true, false]);

    await page.evaluate('confirm = () => false');
    await page.click('[data-id=first] .delete');
    await page.evaluate('confirm = () => true');
    await page.click('[data-id=second] .delete');
    await page.until("document.querySelectorAll('.session tbody tr').length === 1 && document.querySelector('[data-id=first]')");
    await page.click('#history-delete');
    await page.until(`${note} === 'There are no validations in this browser yet.'`);

    await page.evaluate("indexedDB.open = () => { throw new Error('Not here.'); }");
    await page.evaluate(remember(both(0.5), {}));
    await page.until(`${note}.startsWith('This browser does not store the history: Not here.')`);
    assert.deepEqual(page.errors, []);
});
