import assert from 'node:assert/strict';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { headers } from '../../web/js/record/record_parser.js';
import { Chromium } from './support/chromium.js';
import { FakeService } from './support/fake_service.js';
import { fileAt } from './support/program.js';

const folder = mkdtempSync(join(tmpdir(), 'ocela-areas-'));
const saved = join(folder, 'saved');
mkdirSync(saved);
const service = await new FakeService().listen();
service.answers['GET recordings'] = { body: { recordings: [] } };
const browser = new Chromium();
after(async () => {
    await browser.close();
    service.close();
    rmSync(folder, { recursive: true, force: true });
});

/** Writes a file and returns its path. */
function fileOf(name, content) {
    writeFileSync(join(folder, name), content);
    return join(folder, name);
}

// 300 ms at the left, 200 ms at the right, and 200 ms at the left.
const gaze = [...Array(31).fill([30, 50]), ...Array(21).fill([80, 50]), ...Array(21).fill([30, 50])];
const rows = gaze.map(([x, y], i) => `${10 * i},0,1,${x},${y},${19.2 * x},${10.8 * y},0,${x},${y},0,0,3,0,0,${x},${y},0,0,3,0,0,0`);
const record = fileOf('P01.csv', [headers.join(), ...rows, ''].join('\r\n'));

const figures = "[...document.querySelectorAll('#areas-rows tr')].map(row => [row.querySelector('input').value, "
    + "...[...row.querySelectorAll('td')].map(cell => cell.textContent)].join('|')).join('\\n')";
const untilFigures = (page, expected) => page.until(`${figures} === ${JSON.stringify(expected)}`);

async function openRecord(page, ...files) {
    await page.choose('#file', record, ...files);
    await page.until("!document.querySelector('#view').hidden");
}

/** Drags with the mouse between two points of the picture, in percent of the screen. */
async function drag(page, ...points) {
    const box = await page.evaluate(`{
        const canvas = document.querySelector('#areas');
        canvas.scrollIntoView({ block: 'center' });
        canvas.getBoundingClientRect().toJSON();
    }`);
    // The margin is 5 % of the screen's width on all sides.
    const width = box.width / 1.1;
    const [from, to] = points.map(([x, y]) =>
        ({ x: box.x + width * (0.05 + x / 100), y: box.y + width * (0.05 + (y * 9) / 1600), button: 'left', clickCount: 1 }));
    const send = (type, point, buttons) => page.send('Input.dispatchMouseEvent', { type, ...point, buttons });
    await send('mousePressed', from, 1);
    await send('mouseMoved', { ...from, x: (from.x + to.x) / 2 }, 1);
    await send('mouseMoved', to, 1);
    await send('mouseReleased', to, 0);
}

/** Presses the button of a tool as a mouse does. */
const chooseTool = (page, tool) =>
    page.evaluate(`document.querySelector('[data-tool=${tool}]').dispatchEvent(new MouseEvent('click', { detail: 1, bubbles: true }))`);

test('areas are drawn with the mouse, changed with the keyboard, saved and opened again', async () => {
    const page = await browser.open(`${service.address}/record.html`);
    await openRecord(page);
    await chooseTool(page, 'rectangle');
    await drag(page, [20, 30], [40, 70]);
    await untilFigures(page, 'Area 1|500 ms|69.4 %|2|2|0 ms|300 ms|×');
    await chooseTool(page, 'ellipse');
    await drag(page, [30, 40], [90, 90]);
    const second = 'Area 2|200 ms|27.8 %|1|1|310 ms|200 ms|×';
    await untilFigures(page, `Area 1|500 ms|69.4 %|2|2|0 ms|300 ms|×\n${second}`);

    await page.fill('tr[data-area="Area 1"] input', 'Logo, "left"');
    const both = `Logo, "left"|500 ms|69.4 %|2|2|0 ms|300 ms|×\n${second}`;
    await untilFigures(page, both);
    const gone = `${both.split('\n')[0]}\nArea 2|0 ms|0.0 %|0|0|–|–|×`;
    await drag(page, [60, 80], [60, 90]);
    await untilFigures(page, gone);
    await drag(page, [60, 90], [60, 80]);
    await untilFigures(page, both);
    const press = (key, modifiers = 0, code = '') => page.send('Input.dispatchKeyEvent', { type: 'keyDown', key, code, modifiers });
    await page.click('#areas-rows .area-select');
    await page.evaluate("document.querySelector('tr[data-area=\"Area 2\"] .area-select').focus()");
    for (let i = 0; i < 25; ++i) await press('ArrowLeft', 8);
    await untilFigures(page, gone);
    await press('Delete');
    await untilFigures(page, both.split('\n')[0]);
    assert.equal(await page.evaluate('document.activeElement.id'), 'areas');
    // A Russian layout, then a German one with Caps Lock.
    await press('я', 2, 'KeyZ');
    await untilFigures(page, gone);
    await page.click('tr[data-area="Area 2"] .area-delete');
    await untilFigures(page, both.split('\n')[0]);
    await press('Z', 2, 'KeyY');
    await untilFigures(page, gone);
    for (let i = 0; i < 25; ++i) await page.click('#areas-undo');
    await untilFigures(page, both);

    await page.fill('#to', 0.4);
    await untilFigures(page, both.replace('500 ms|69.4 %|2|2', '300 ms|75.0 %|1|1').replace('200 ms|27.8 %', '90 ms|22.5 %'));
    await page.click('#whole');
    // Without the screen size and the distance, the fixations are not known.
    await page.click('[data-method=velocity]');
    await untilFigures(page, both.replaceAll(/\|.*\|×/g, '|–|–|–|–|–|–|×'));
    assert.ok(await page.evaluate("document.querySelector('#save-fixations').disabled"));
    await page.click('[data-method=dispersion]');
    await untilFigures(page, both);
    assert.ok(!await page.evaluate("document.querySelector('#save-fixations').disabled"));
    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: saved });
    await page.click('#areas-table');
    await fileAt(join(saved, 'P01_areas.csv'));
    assert.match(readFileSync(join(saved, 'P01_areas.csv'), 'utf8'), /\r\nP01\.csv,0,720,"Logo, ""left""",rectangle,.*,500,0\.694444,2,2,0,300\r\n/);
    await page.click('#areas-save');
    await fileAt(join(saved, 'P01_areas.json'));
    assert.deepEqual(page.errors, []);

    const other = await browser.open(`${service.address}/record.html`);
    await openRecord(other);
    await untilFigures(other, both);
    assert.match(await other.text('#areas-note'), /This browser has kept/);
    await other.evaluate('window.confirm = () => true');
    await other.click('#areas-clear');
    await untilFigures(other, '');
    await openRecord(other, join(saved, 'P01_areas.json'));
    await untilFigures(other, both);
    assert.match(await other.text('#areas-note'), /^Areas from “P01_areas.json”: 2\./);
    const third = fileOf('P02_areas.json', readFileSync(join(saved, 'P01_areas.json'), 'utf8').replace('P01.csv', 'P02.csv').replace('Area 2', 'C'));
    await other.choose('#file', third);
    await untilFigures(other, both.replace('Area 2', 'C'));
    assert.match(await other.text('#areas-note'), /saved for the record file “P02.csv”/);
    await other.choose('#areas-file', fileOf('bad.json', '{"format": "Ocela areas", "version": 1, "areas": [{"name": "X"}]}'));
    await other.until("document.querySelector('#areas-note').textContent.startsWith('Cannot show “bad.json”. Area 1: “shape” is missing')");
    await untilFigures(other, both.replace('Area 2', 'C'));
    await other.click('#areas-undo');
    await untilFigures(other, both);
    assert.deepEqual(other.errors, []);
});

test('an image is shown behind the gaze, and a file without its record is refused', async () => {
    const page = await browser.open(`${service.address}/record.html`);
    const svg = '<svg xmlns="http://www.w3.org/2000/svg" width="16" height="9"><rect width="16" height="9" fill="#f00"/><foreignObject/></svg>';
    const image = fileOf('stimulus.svg', svg);
    await page.choose('#file', image);
    await page.until("document.querySelector('#problem').textContent === 'Cannot show “stimulus.svg”. Open a record file first, or choose both files together.'");
    await openRecord(page, image);
    // The colour at the upper left corner of the screen.
    const red = `(() => {
        const canvas = document.querySelector('#stage');
        const at = 0.08 * canvas.width;
        const [r, g, b] = canvas.getContext('2d').getImageData(at, at, 1, 1).data;
        return r - g > 100 && g === b;
    })()`;
    await page.until(red);
    await page.choose('#stimulus-file', fileOf('text.png', 'no image'));
    await page.until("document.querySelector('#stimulus-note').textContent.startsWith('Cannot show “text.png”.')");
    assert.ok(await page.evaluate(red));
    await page.click('#stimulus-remove');
    await page.until(`!${red}`);
    assert.deepEqual(page.errors, []);
});
