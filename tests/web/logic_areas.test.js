import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { keepAreas, keptAreas } from '../../web/js/record/area_drafts.js';
import { areaFiguresOf } from '../../web/js/record/area_figures.js';
import { AreaList } from '../../web/js/record/area_list.js';
import { boxBetween, contains, movedBox, resizedBox } from '../../web/js/record/area_shapes.js';
import { isAreasName, readAreasFile, writeAreasFile, writeAreasTable } from '../../web/js/record/areas_file.js';
import { isAttachment } from '../../web/js/record/chosen_files.js';
import { defaultDispersionParameters } from '../../web/js/record/fixations.js';
import { RecordView } from '../../web/js/record/record_view.js';
import { columnsOf, listOf } from './support/columns.js';

const rectangle = { id: 0, name: 'A', shape: 'rectangle', left: 10, top: 10, width: 20, height: 20 };
const ellipse = { id: 1, name: 'B', shape: 'ellipse', left: 40, top: 40, width: 20, height: 10 };

test('the edge belongs to an area, and the corners of an ellipse’s box do not', () => {
    for (const [area, x, y, expected] of [
        [rectangle, 10, 10, true], [rectangle, 30, 30, true], [rectangle, 30.01, 20, false], [rectangle, 20, 9.99, false],
        [ellipse, 50, 45, true], [ellipse, 60, 45, true], [ellipse, 50, 40, true], [ellipse, 60.01, 45, false],
        [ellipse, 50, 39.99, false], [ellipse, 40, 40, false],
        // 0.7² + 0.7² = 0.98, and 0.72² + 0.72² = 1.04.
        [ellipse, 57, 48.5, true], [ellipse, 57.2, 48.6, false], [ellipse, NaN, NaN, false],
    ])
        assert.equal(contains(area, { x, y }), expected, `${area.shape} ${x} ${y}`);
});

describe('figures', () => {
    const inside = { x: 20, y: 20 };
    const outside = { x: 90, y: 90 };
    const shared = { x: 29, y: 29 };
    const at = (startMs, durationMs, place) => ({ startMs, durationMs, ...place });
    const fixations = [at(100, 100, outside), at(250, 100, inside), at(400, 50, shared), at(500, 200, outside), at(900, 200, shared)];
    const other = { ...rectangle, left: 25, top: 25 };
    const none = [0, 0, 0, 0, NaN, NaN];
    for (const [name, area, from, range, fixationBefore, expected] of [
        // 100 + 50 ms, and 100 of the last 200 ms.
        ['two visits, the second one half in the range', rectangle, 0, [0, 1000], null, [250, 0.25, 3, 2, 250, 100]],
        ['an overlapping area counts, too', other, 0, [0, 1000], null, [150, 0.15, 2, 2, 400, 50]],
        ['the gaze is in the area before the range', rectangle, 2, [400, 900], fixations[1], [50, 0.1, 2, 1, 0, 50]],
        ['the gaze comes in at the start of the range', rectangle, 1, [200, 400], fixations[0], [100, 0.5, 2, 1, 50, 100]],
        ['the first fixation of the recording is in the area', rectangle, 1, [200, 400], null, [100, 0.5, 2, 1, 50, 100]],
        ['an area without fixations', ellipse, 0, [0, 1000], null, none],
    ])
        test(name, () => {
            const [fromMs, toMs] = range;
            const shown = { range: { fromMs, toMs }, areFixationsKnown: true, fixationBefore, fixations: fixations.slice(from).filter(({ startMs }) => startMs <= toMs) };
            assert.deepEqual(Object.values(areaFiguresOf(area, shown)), expected);
        });

    test('entries and dwell times of adjacent ranges add up', () => {
        // 200 ms in the area, 200 ms outside, and twice 200 ms at different places in it.
        const gaze = [[12, 12], [80, 80], [12, 12], [28, 28]].flatMap(([x, y]) => listOf(20, () => ({ x, y })));
        const columns = columnsOf(gaze.map((_, i) => 10 * i), i => gaze[i]);
        const file = { columns, aspect: 16 / 9, crossed: false, timeless: false, setBackLine: 0, cutOffLine: 0, samples: null };
        const view = new RecordView(file, 'record.csv', defaultDispersionParameters, 60);
        const figures = (fromMs, toMs) => {
            view.show({ fromMs, toMs });
            return Object.values(areaFiguresOf(rectangle, view)).slice(0, 4);
        };
        assert.deepEqual(figures(0, 790), [570, 570 / 790, 3, 2]);
        assert.deepEqual(figures(0, 590), [380, 380 / 590, 2, 2]);
        assert.deepEqual(figures(591, 790), [190, 190 / 199, 1, 0]);
    });
});

test('boxes stay within the screen and keep a minimum size', () => {
    const box = { left: 60, top: 70, width: 30, height: 20 };
    for (const [actual, expected] of [
        [boxBetween({ x: 30.004, y: 40 }, { x: 10, y: 20.006 }), [10, 20.01, 20, 19.99]],
        [boxBetween({ x: 95, y: -5 }, { x: 130, y: 4 }), [95, 0, 5, 4]],
        [boxBetween({ x: 100, y: 50 }, { x: 100, y: 50 }), [99, 50, 1, 1]],
        [movedBox(box, 5, -5), [65, 65, 30, 20]],
        [movedBox(box, 50, 50), [70, 80, 30, 20]],
        [movedBox(box, -99, -99), [0, 0, 30, 20]],
        [resizedBox(box, [1, 1], 20, -5), [60, 70, 40, 15]],
        [resizedBox(box, [-1, 0], -70, 9), [0, 70, 90, 20]],
        [resizedBox(box, [-1, -1], 99, 99), [89, 89, 1, 1]],
    ])
        assert.deepEqual(Object.values(actual), expected);
});

test('each change can be undone, and a drag is one change', () => {
    const list = new AreaList();
    const nameOf = number => `Area ${number}`;
    const state = () => list.areas.map(({ name, left }) => `${name} ${left}`).join();
    list.add('rectangle', { left: 10, top: 5, width: 5, height: 5 }, nameOf);
    list.add('ellipse', { left: 5, top: 5, width: 5, height: 5 }, nameOf);
    const [first, second] = list.areas;
    list.change(second.id, { left: 6 });
    list.change(second.id, { left: 7 }, true);
    list.remove(first.id);
    list.add('ellipse', { left: 50, top: 5, width: 5, height: 5 }, nameOf);
    assert.equal(state(), 'Area 2 7,Area 1 50');
    assert.notEqual(list.selectedId, second.id);
    list.replace([]);
    for (const expected of ['Area 2 7,Area 1 50', 'Area 2 7', 'Area 1 10,Area 2 7', 'Area 1 10,Area 2 5', 'Area 1 10', '']) {
        assert.ok(list.canUndo);
        list.undo();
        assert.equal(state(), expected);
    }
    assert.ok(!list.canUndo);
});

test('the uppermost area is found', () => {
    const list = new AreaList([rectangle, { ...rectangle, id: 5, left: 25 }]);
    assert.deepEqual([20, 28, 44, 50].map(x => list.areaAt({ x, y: 20 })?.id), [0, 5, 5, undefined]);
});

describe('areas file', () => {
    const content = writeAreasFile([rectangle, ellipse], 'P01.csv', 1.6);

    test('is read as it was written', () => {
        assert.deepEqual(readAreasFile(`\uFEFF${content}`), { record: 'P01.csv', areas: [rectangle, ellipse] });
        const { format, version, screen } = JSON.parse(content);
        assert.deepEqual([format, version, screen], ['Ocela areas', 1, { aspect: 1.6 }]);
    });

    test('may have rounded sizes', () => {
        const rounded = JSON.stringify({ ...JSON.parse(content), areas: [{ ...rectangle, left: 33.34, width: 66.67 }] });
        assert.equal(readAreasFile(rounded).areas.length, 1);
    });

    const changed = change => JSON.stringify({ ...JSON.parse(content), ...change });
    const second = change => changed({ areas: [rectangle, { ...ellipse, ...change }] });
    for (const [name, text, key, values] of [
        ['cut off', content.slice(0, -5), 'brokenJson'],
        ['the description of a record', '{"format": 1}', 'notAreas'],
        ['no object', 'null', 'notAreas'],
        ['without a version', changed({ version: undefined }), 'notAreas'],
        ['of a later version', changed({ version: 2 }), 'laterVersion', { version: '2' }],
        ['without areas', changed({ areas: {} }), 'noAreas'],
        ['with too many areas', changed({ areas: Array(101).fill(rectangle) }), 'tooManyAreas', { count: 101, max: 100 }],
        ['with an unknown shape', second({ shape: 'polygon' }), 'damagedArea', { number: 2, part: 'shape' }],
        ['without a name', second({ name: ' ' }), 'damagedArea', { number: 2, part: 'name' }],
        ['with a text as a number', second({ left: '40' }), 'damagedArea', { number: 2, part: 'left' }],
        ['with an area left of the screen', second({ left: -0.1 }), 'damagedArea', { number: 2, part: 'left' }],
        ['with an area below the screen', second({ top: 95 }), 'damagedArea', { number: 2, part: 'height' }],
        ['with an area without a width', second({ width: 0 }), 'damagedArea', { number: 2, part: 'width' }],
        ['with an area of null', changed({ areas: [null] }), 'damagedArea', { number: 1, part: 'name' }],
    ])
        test(`${name} is refused`, () =>
            assert.throws(() => readAreasFile(text), { key, values: { line: 1, ...values } }));

    test('is recognized by its name, and an image by its type', () => {
        const names = ['P01_areas.json', 'P01_areas (2).json', 'P01.json', 'areas.csv'];
        assert.deepEqual(names.map(isAreasName), [true, true, false, false]);
        const files = [['a.png', 'image/png'], ['a.svg', 'image/svg+xml'], ['a.csv', 'text/csv'], ['P01_areas.json', 'application/json']];
        assert.deepEqual(files.map(([name, type]) => isAttachment({ name, type })), [true, true, false, true]);
    });
});

test('the table has one row for each area, with empty cells for missing values', () => {
    const shown = { range: { fromMs: 0, toMs: 3000 }, areFixationsKnown: true, fixationBefore: null, fixations: [{ startMs: 100.5, durationMs: 1000, x: 20, y: 20 }] };
    assert.equal(writeAreasTable([{ ...rectangle, name: 'Logo, "left"' }, ellipse], 'P01.csv', shown), [
        'Record,From_ms,To_ms,Area,Shape,Left_percent,Top_percent,Width_percent,Height_percent,Dwell_ms,DwellShare,'
            + 'FixationCount,EntryCount,TimeToFirstFixation_ms,FirstFixation_ms',
        'P01.csv,0,3000,"Logo, ""left""",rectangle,10,10,20,20,1000,0.333333,1,1,100.5,1000',
        'P01.csv,0,3000,B,ellipse,40,40,20,10,0,0,0,0,,', '',
    ].join('\r\n'));
});

test('the browser keeps the areas of the last 50 records', () => {
    const stored = new Map();
    let isFull = false;
    globalThis.localStorage = {
        getItem: key => stored.get(key) ?? null,
        setItem: (key, value) => {
            if (isFull) throw new Error('full');
            stored.set(key, value);
        },
    };
    const viewOf = (fileName, length, areas = [], folder = null) => (
        { fileName, aspect: 1.6, columns: { length }, areaList: new AreaList(areas), folder });
    const keep = (...record) => keepAreas(viewOf(...record));
    for (let i = 0; i < 50; ++i) assert.ok(keep(`${i}.csv`, 100, [{ ...rectangle, name: `${i}` }]));
    // Records without areas take no room.
    for (const name of ['a.csv', 'b.csv', 'c.csv']) assert.ok(keep(name, 100));
    assert.ok(keep('0.csv', 100, [ellipse]));
    assert.ok(keep('0.csv', 200, [rectangle, ellipse]));
    const kept = (...record) => keptAreas(viewOf(...record))?.areas.map(({ name }) => name).join() ?? null;
    assert.deepEqual([kept('0.csv', 100), kept('0.csv', 200), kept('1.csv', 100), kept('2.csv', 100)], ['B', 'A,B', null, '2']);
    keep('0.csv', 100);
    assert.equal(kept('0.csv', 100), null);
    // The base is the content of the saved areas, from which these were changed.
    for (const [folder, areas, expected] of [
        [null, [ellipse], null], [{ areas: null }, [ellipse], null], [{ areas: 'saved' }, [ellipse], 'saved'], [{ areas: 'saved' }, [], 'saved'],
    ]) {
        keep('0.csv', 100, areas, folder);
        assert.equal(keptAreas(viewOf('0.csv', 100)).base, expected);
    }

    isFull = true;
    assert.ok(!keep('3.csv', 100, [ellipse]));
    assert.equal(kept('3.csv', 100), '3');
    for (const junk of ['{', 'null', '[["3.csv 100", "{}", null], 7, ["3.csv 100"]]']) {
        stored.set('areas', junk);
        assert.equal(kept('3.csv', 100), null);
    }
    delete globalThis.localStorage;
});
