import assert from 'node:assert/strict';
import { copyFileSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Chromium } from './support/chromium.js';
import { address, createHome, fileAt, startProgram, startSimulator } from './support/program.js';
import { waitFor } from './support/wait.js';

const rateHz = 150;
const sampleCount = 450;
const isShown = id => `!document.querySelector('#${id}').hidden`;
const duration = "parseFloat(document.querySelector('#duration').textContent)";
const fixationCount = "parseInt(document.querySelector('#fixation-count').textContent)";

const folder = mkdtempSync(join(tmpdir(), 'ocela-records-'));
const recordFile = join(folder, 'record.csv');
const home = createHome();
const browser = new Chromium();
const children = [];

before(async () => {
    children.push(await startSimulator('--rate', `${rateHz}`));
    children.push(await startProgram(home));
    await waitFor(async () => (await state()).tracker.newest > 0, 'samples');
    await fetch(`${address}/startrecord&path=${encodeURIComponent(recordFile)}`);
    await untilRecorded(sampleCount / 3);
    await setMarker('"on", left');
    await untilRecorded((2 * sampleCount) / 3);
    await setMarker('off');
    await untilRecorded(sampleCount);
    await fetch(`${address}/stoprecord`);
    // The last of the four files.
    await fileAt(join(folder, 'record.json'));
});
after(async () => {
    await browser.close();
    for (const child of children) await child.kill();
    home.remove();
    rmSync(folder, { recursive: true, force: true });
});

const state = async () => (await fetch(`${address}/api/v1/state`)).json();

/** Counts samples, because a recording of a few seconds can have none on a machine that stops for as long. */
function untilRecorded(count) {
    return waitFor(async () => (await state()).recordings[0]?.samples >= count, `${count} recorded samples`);
}

async function setMarker(text) {
    const headers = { 'Content-Type': 'application/json' };
    const answer = await fetch(`${address}/api/v1/events`, { method: 'POST', headers, body: JSON.stringify({ text }) });
    assert.equal(answer.status, 201);
}

test('a record file of Ocela is shown, zoomed and saved as an image', async () => {
    const page = await browser.open(`${address}/record.html`);
    await page.choose('#file', recordFile);
    await page.until(isShown('view'));
    await page.until(`${duration} >= ${(0.9 * sampleCount) / rateHz}`);
    assert.ok(await page.evaluate(fixationCount) > 3);
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
    await page.fill('#from', 1);
    await page.until(`${duration} === ${(whole - 1).toFixed(1)}`);
    assert.ok(Math.abs(await page.evaluate("document.querySelector('#to').valueAsNumber") - whole) <= 0.05);

    await page.click('[data-language=ru]');
    await page.until("/^\\d+,\\d %$/.test(document.querySelector('#valid').textContent)");
    assert.match(await page.text('#status'), /^Измерений/);
    assert.match(await page.text('#remarks'), /^Трекер передаёт оси/);
    await page.click('[data-language=en]');

    await page.fill('#min-duration', 2000);
    await page.until(`${fixationCount} === 0`);

    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: folder });
    await page.click('#export');
    await fileAt(join(folder, 'record.png'));
    assert.equal(readFileSync(join(folder, 'record.png')).toString('latin1', 1, 4), 'PNG');
    assert.deepEqual(page.errors, []);
});

test('the recordings of the records folder are listed and open with a click', async () => {
    const records = join(home.folder, 'Documents/Ocela');
    const name = 'a & b+ü%20.csv';
    const list = "document.querySelector('#recordings')";
    const page = await browser.open(`${address}/record.html`);
    await page.until("document.querySelector('#recordings-note').textContent === 'There are no record files in it yet.'");
    for (const ending of ['_samples.csv', '_events.csv', '.csv'])
        copyFileSync(recordFile.replace('.csv', ending), join(records, name.replace('.csv', ending)));
    const show = await page.hide();
    await show();
    await page.until(`/^a & b\\+ü%20\\.csv.* · \\d+\\.\\d MB$/.test(${list}.textContent)`);
    await page.click('#recordings a');
    // An expression cannot be evaluated until the page of the link is loaded.
    await waitFor(() => page.evaluate(isShown('view')).catch(() => false), 'the recording is shown');
    assert.equal(await page.text('#file-name'), name);
    const remarks = 'The times are the times of arrival in “a & b+ü%20_samples.csv”.Markers: 2, from “a & b+ü%20_events.csv”.';
    assert.ok((await page.text('#remarks')).startsWith(remarks));
    await page.until(`${fixationCount} > 3`);

    for (const [requested, reason] of [
        ['b.csv', 'There is no such record file'], ['../record.csv', 'There is no such record file'], ['', 'There is no such'],
    ]) {
        const other = await browser.open(`${address}/record.html?recording=${encodeURIComponent(requested)}`);
        const text = `Cannot show “${requested}”. ${reason}`;
        await other.until(`document.querySelector('#problem').textContent.startsWith(${JSON.stringify(text)})`);
        assert.deepEqual(other.errors, []);
    }
    assert.deepEqual(page.errors, []);
});

test('areas are saved beside a recording of the records folder, and shown with it', async () => {
    const records = join(home.folder, 'Documents/Ocela');
    const [name, areasFile] = ['with areas.csv', 'with areas_areas.json'].map(file => join(records, file));
    copyFileSync(recordFile, name);
    const savedNames = () => JSON.parse(readFileSync(areasFile, 'utf8')).areas.map(area => area.name).join();
    const open = async () => {
        const page = await browser.open(`${address}/record.html?recording=with%20areas.csv`);
        await page.until(isShown('view'));
        return page;
    };
    const untilNote = (page, start) => page.until(`document.querySelector('#areas-note').textContent.startsWith('${start}')`);
    const areaCount = "document.querySelectorAll('#areas-rows tr').length";
    const refuse = 'window.confirm = question => { window.question = question; return false; }';
    // As with the keyboard, which adds an area in the centre.
    const add = page => page.click('[data-tool=ellipse]');

    const page = await open();
    await add(page);
    await page.until(`${areaCount} === 1`);
    await page.click('#areas-save');
    await untilNote(page, '“with areas_areas.json” is saved in the records folder.');
    assert.equal(savedNames(), 'Area 1');
    await add(page);
    await page.until(`${areaCount} === 2`);

    // The browser has kept the second area, which is not saved.
    const second = await open();
    await second.until(`${areaCount} === 2`);
    assert.equal(await second.text('#areas-note'), 'This browser has kept these areas. They are not saved yet.');
    writeFileSync(areasFile, readFileSync(areasFile, 'utf8').replace('Area 1', 'Of somebody else'));
    await second.evaluate(refuse);
    await second.click('#areas-save');
    await second.until("window.question?.startsWith('“with areas_areas.json” has changed')");
    assert.equal(savedNames(), 'Of somebody else');
    // The same after the page was closed, because the browser has kept areas that are based on the earlier content.
    const reopened = await open();
    await untilNote(reopened, 'This browser has kept these areas. They are not saved yet. They are not based on the current file');
    await reopened.until(`${areaCount} === 2`);
    await reopened.evaluate(refuse);
    await reopened.click('#areas-save');
    await reopened.until("window.question?.startsWith('“with areas_areas.json” has changed')");
    assert.equal(savedNames(), 'Of somebody else');
    await reopened.evaluate('window.confirm = () => true');
    await reopened.click('#areas-save');
    await untilNote(reopened, '“with areas_areas.json” is saved');
    assert.equal(savedNames(), 'Area 1,Area 2');
    await reopened.evaluate("localStorage.removeItem('areas')");
    await reopened.click('#areas-clear');
    await reopened.until(`${areaCount} === 0`);
    await reopened.click('#areas-save');
    await reopened.until(`!document.querySelector('#areas-save').hidden && localStorage.getItem('areas') === '[]'`);
    assert.equal(savedNames(), '');

    writeFileSync(areasFile, 'damaged');
    const third = await open();
    await untilNote(third, 'Cannot show “with areas_areas.json”.');
    await add(third);
    await third.evaluate(refuse);
    await third.click('#areas-save');
    await third.until('window.question');
    assert.equal(readFileSync(areasFile, 'utf8'), 'damaged');
    rmSync(name);
    await third.click('#areas-save');
    await untilNote(third, 'Cannot save “with areas_areas.json”. The records folder has no record file of this name.');
    assert.deepEqual([...page.errors, ...second.errors, ...reopened.errors, ...third.errors], []);
});

test('the intervals between markers are shown, chosen and saved', async () => {
    const events = join(folder, 'record_events.csv');
    const page = await browser.open(`${address}/record.html`);
    await page.choose('#file', events, recordFile);
    await page.until("document.querySelectorAll('#interval-rows tr').length === 3");
    const [names, starts, durations] = await page.evaluate(`['th', 'td:nth-child(2)', 'td:nth-child(3)'].map(selector => (
        [...document.querySelectorAll('#interval-rows ' + selector)].map(cell => cell.textContent)))`);
    assert.deepEqual([names, starts[0]], [['Before the first marker', '"on", left', 'off'], '0.000']);
    const onsets = readFileSync(events, 'utf8').split('\r\n').slice(1, 3).map(parseFloat);
    for (const [shown, expected] of [[starts[1], onsets[0]], [starts[2], onsets[1]], [durations[1], onsets[1] - onsets[0]]])
        assert.ok(Math.abs(shown - expected) <= 0.001, `${shown} instead of ${expected}`);

    await page.evaluate("document.querySelector('#interval-rows tr:nth-child(2) button').focus()");
    await page.send('Input.dispatchKeyEvent', { type: 'keyDown', key: 'Enter', windowsVirtualKeyCode: 13, text: '\r' });
    await page.until(`document.querySelector('#from').value === '${starts[1]}'`);
    assert.equal(await page.text('#interval-rows [aria-pressed=true]'), '"on", left');
    assert.equal(await page.text('#duration'), `${Number(durations[1]).toFixed(1)} s`);
    await page.click('#interval-rows tr:nth-child(3) td');
    await page.until(`document.querySelector('#from').value === '${starts[2]}'`);

    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: folder });
    for (const kind of ['intervals', 'fixations']) {
        await page.click(`#save-${kind}`);
        await fileAt(join(folder, `record_${kind}.csv`));
        const csv = readFileSync(join(folder, `record_${kind}.csv`), 'utf8');
        assert.ok(csv.includes(`"""on"", left"`) && csv.includes('off') && csv.split('\r\n').length > 4, csv);
    }

    writeFileSync(events, `${readFileSync(events, 'utf8')}2,0,"x,1,1\r\n`);
    await page.choose('#file', events, recordFile);
    const reason = '“record_events.csv” is not used. Line 4, column 3: a quotation mark is missing at the end of a text.';
    await page.until(`document.querySelector('#remarks').textContent.includes('${reason}')`);
    await page.until(`!(${isShown('intervals-card')})`);
    assert.deepEqual(page.errors, []);
});

test('a record file without timestamps gets the times of its samples file', async () => {
    const lines = readFileSync(recordFile, 'utf8').split('\r\n');
    const timeless = lines.map((line, i) => (i > 0 && line ? `0,0,${line.split(',').slice(2).join()}` : line)).join('\r\n');
    const [record, samples] = ['timeless.csv', 'timeless_samples.csv'].map(name => join(folder, name));
    writeFileSync(record, timeless);
    copyFileSync(join(folder, 'record_samples.csv'), samples);
    const described = JSON.parse(readFileSync(join(folder, 'record.json'), 'utf8'));
    assert.ok(described.rightEyeCrossed);

    const page = await browser.open(`${address}/record.html`);
    await page.choose('#file', record);
    await page.until("document.querySelector('#remarks').textContent.includes('_samples.csv')");
    assert.ok(await page.evaluate(isShown('assumed')));
    await page.choose('#file', samples, record, join(folder, 'record.json'));
    await page.until(`document.querySelector('#remarks').textContent.includes('in “timeless_samples.csv”')`);
    assert.ok(!await page.evaluate(isShown('assumed')));
    await page.until(`document.querySelector('#duration').textContent === '${(described.durationMs / 1000).toFixed(1)} s'`);
    await page.until(`document.querySelector('#rate').textContent === '${described.measuredRateHz.toFixed(1)} Hz'`);

    writeFileSync(samples, readFileSync(samples, 'utf8').split('\r\n').slice(0, 50).join('\r\n'));
    await page.choose('#file', record, samples);
    const reason = `“timeless_samples.csv” is not used. It has 49 samples, but the record file has ${described.sampleCount}.`;
    await page.until(`document.querySelector('#remarks').textContent.includes('${reason}')`);
    assert.deepEqual(page.errors, []);
});

test('other files are refused with a reason and a line, and the next file can be opened', async () => {
    const text = readFileSync(recordFile, 'utf8');
    const lines = text.split('\r\n');
    const half = text.slice(0, text.indexOf(lines[100]) + 20);
    copyFileSync(new URL('../../docs/images/main-window.png', import.meta.url), join(folder, 'picture.csv'));
    for (const [name, content] of [
        ['header.csv', `${lines[0]}\r\n`], ['truncated.csv', half], ['<b>bold.csv', text.replace(lines[3], 'x,'.repeat(22))],
    ])
        writeFileSync(join(folder, name), content);

    const page = await browser.open(`${address}/record.html`);
    for (const [name, part, reason] of [
        ['header.csv', 'problem', 'Line 2: there are no samples after the header.'],
        ['truncated.csv', 'remarks', 'cut off in line 101'],
        ['picture.csv', 'problem', 'Line 1: this is not a record file.'],
        ['<b>bold.csv', 'problem', 'Cannot show “<b>bold.csv”. Line 4, column 1 (Timestamp): “x” is not a number.'],
    ]) {
        await page.choose('#file', join(folder, name));
        await page.until(`document.querySelector('#${part}').textContent.includes(${JSON.stringify(reason)})`);
        assert.equal(await page.evaluate("document.querySelectorAll('main b b, #problem b').length"), 0);
    }
    await page.click('[data-language=ru]');
    await page.until("document.querySelector('#problem').textContent.includes('«x» — не число.')");
    assert.ok(await page.evaluate("document.querySelector('#view').hidden"));
    await page.click('[data-language=en]');
    assert.deepEqual(page.errors, []);
});

test('a dropped record file of an hour is shown with its figures', async () => {
    const page = await browser.open(`${address}/record.html`);
    const lines = readFileSync(recordFile, 'utf8').split('\r\n');
    // The first 100 rows, repeated, at 150 Hz.
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
    assert.deepEqual(page.errors, []);
});

test('fixations are detected by velocity when the screen and its distance are known', async () => {
    const page = await browser.open(`${address}/record.html`);
    await page.choose('#file', recordFile);
    await page.until(`${fixationCount} > 3`);
    await page.click('[data-method=velocity]');
    await page.until("document.querySelector('#fixation-count').textContent === '–'");
    for (const [id, value, missing] of [
        ['screen-width', 531, 'Not entered: Screen height, mm; Viewing distance, mm.'],
        ['screen-height', 299, 'Not entered: Viewing distance, mm.'],
        ['viewing-distance', 620, ''],
    ]) {
        await page.fill(`#${id}`, value);
        const note = await page.text('#geometry-note');
        assert.ok(missing ? note.startsWith(missing) : note === '', note);
    }
    await page.until(`${fixationCount} > 3`);
    const count = await page.evaluate(fixationCount);
    await page.fill('#velocity', 1000);  // faster than any saccade of the person; only lost samples end a fixation
    await page.until(`${fixationCount} < ${count}`);
    await page.fill('#velocity', 30);
    await page.until(`${fixationCount} === ${count}`);

    // The entries are remembered for the next recording.
    const next = await browser.open(`${address}/record.html`);
    await next.choose('#file', recordFile);
    await next.click('[data-method=velocity]');
    await next.until(`${fixationCount} === ${count}`);
    assert.match(await next.text('#geometry-note'), /your last entry/);
    assert.deepEqual([...page.errors, ...next.errors], []);
});
