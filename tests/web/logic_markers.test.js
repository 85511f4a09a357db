import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { defaultDispersionParameters } from '../../web/js/record/fixations.js';
import { fixationsCsv } from '../../web/js/record/fixation_export.js';
import { intervalsCsv } from '../../web/js/record/intervals_export.js';
import { readMarkers } from '../../web/js/record/markers_file.js';
import { drawOverview, drawPupils } from '../../web/js/record/record_charts.js';
import { RecordView } from '../../web/js/record/record_view.js';
import { drawScanPath } from '../../web/js/record/scan_path_view.js';
import { FileError } from '../../web/js/shared/file_error.js';
import { areaPxOf, screenIn } from '../../web/js/shared/screen.js';
import { columnsOf, listOf } from './support/columns.js';
import { fakeSurface } from './support/fake_context.js';

const header = 'onset,duration,text,number,row\r\n';

describe('events file', () => {
    const example = `${header}-0.500000,0,instructions,,\r\n1.500250,0,"Stimulus ""A"", left",225,224\r\n`;
    const markers = [
        { onsetMs: -500, text: 'instructions', row: NaN }, { onsetMs: 1500.25, text: 'Stimulus "A", left', row: 224 },
    ];
    for (const [name, content, expected] of [
        ['as Ocela writes it', example, markers],
        ['with LF, an empty line, and without the last line end', example.replaceAll('\r', '').replace('\n', '\n\n').trimEnd(), markers],
        ['with line breaks in a text', `${header}1,0,"a\r\nb\n,""",1,0\r\n2,0,,,\r\n`,
            [{ onsetMs: 1000, text: 'a\r\nb\n,"', row: 0 }, { onsetMs: 2000, text: '', row: NaN }]],
        ['without markers', header, []],
    ])
        test(name, () => assert.deepEqual(readMarkers(content, 225), expected));

    for (const [name, content, key, line, more] of [
        ['an empty file', '', 'emptyFile', 1],
        ['a record file', 'Timestamp,Time\r\n1,2\r\n', 'notEvents', 1, { found: 'Timestamp,Time' }],
        ['a missing cell', `${header}1,0,a,1\r\n`, 'wrongColumns', 2, { columns: 4, expected: 5 }],
        ['a comma without quotation marks', `${header}1,0,a,b,1,0\r\n`, 'wrongColumns', 2, { columns: 6 }],
        ['a text as onset, after a line break in a text', `${header}1,0,"a\nb",1,0\r\nx,0,b,1,0\r\n`, 'noNumber', 4,
            { column: 1, name: 'onset', found: 'x' }],
        ['an empty onset', `${header},0,a,1,0\r\n`, 'noNumber', 2, { column: 1, found: '' }],
        ['a fraction as row', `${header}1,0,a,1,0.5\r\n`, 'noWholeNumber', 2, { column: 5, name: 'row', found: '0.5' }],
        ['a row that the record file does not have', `${header}1,0,a,1,225\r\n`, 'noSuchRow', 2, { column: 5, found: '225' }],
        ['a quotation mark that is not closed', `${header}1,0,a,1,0\r\n1,0,"a"",1,0\r\n`, 'openQuote', 3, { column: 3 }],
        ['a quotation mark that is not doubled', `${header}1,0,"a"b",1,0\r\n`, 'afterQuote', 2, { column: 3, found: 'b"' }],
    ])
        test(`is refused with ${name}`, () => assert.throws(() => readMarkers(content, 225), error => {
            assert.ok(error instanceof FileError);
            assert.deepEqual([error.key, error.values], [key, { ...error.values, line, ...more }]);
            return true;
        }));
});

const lost = { x: NaN, y: NaN };

/** 60 samples at 100 Hz: a fixation, a loss of 200 ms, another fixation. The pupils grow. */
const columns = () => columnsOf(listOf(60, i => 10 * i), i => ({
    ...(i < 20 ? { x: 20, y: 40 } : i < 40 ? lost : { x: 60, y: 80 }), leftPupil: i / 10, rightPupil: i < 20 ? 4 : NaN,
}));

function viewOf(onsets, changes = {}) {
    const markers = onsets.map(onset => (typeof onset === 'object' ? onset : { onsetMs: onset, text: `m${onset}`, row: NaN }));
    const file = {
        columns: columns(), aspect: 2, areaPx: { width: 2000, height: 1000 }, timeless: false, setBackLine: 0,
        events: { name: 'r_events.csv', problem: null, markers }, ...changes,
    };
    return new RecordView(file, 'r.csv', defaultDispersionParameters, 50);
}

describe('a marker is at', () => {
    const set = (onsetMs, row) => ({ onsetMs, text: '', row });
    for (const [name, marker, changes, timeMs, x] of [
        ['its onset with the nearest gaze', set(104, 7), {}, 104, 20],
        ['its onset, after the last gaze', set(289, 28), {}, 289, 20],
        ['its onset, before the next gaze', set(301, 30), {}, 301, 60],
        ['its onset, without gaze near it', set(295, 29), { columns: columnsOf([0, 295, 600], i => (i === 1 ? lost : { x: 1 })) }, 295, NaN],
        ['its onset before the recording', set(-150, NaN), {}, -150, NaN],
        ['its row, in a file without timestamps', set(999, 10), { timeless: true }, 210, 20],
        ['its row, after the clock was set back', set(999, 58), { setBackLine: 3 }, 585, 60],
        ['its row, the last one', set(999, 59), { setBackLine: 3 }, 590, 60],
        ['its row, after the clock was set forward', set(104, 42), { hasGap: true }, 425, 60],
        ['its onset, if that is between its row and the next one', set(427, 42), { hasGap: true }, 427, 60],
        ['its onset, if it has no row', set(50, NaN), { timeless: true }, 50, 20],
    ])
        test(name, () => {
            const y = { 20: 40, 60: 80 }[x] ?? NaN;
            assert.deepEqual(viewOf([marker], changes).markers, [{ timeMs, text: '', x, y }]);
        });

    test('another time after a change of the assumed rate', () => {
        const view = viewOf([set(0, 10)], { timeless: true });
        assert.equal(view.markers[0].timeMs, 210);
        view.assumeRate(100);
        assert.deepEqual([view.markers[0].timeMs, view.intervals[1].startMs], [105, 105]);
    });
});

describe('intervals', () => {
    const figuresOf = view => view.intervals.map(({ text, startMs, endMs, sampleCount, validShare, fixationCount }) => (
        [text, startMs, endMs, sampleCount, validShare, fixationCount]));
    for (const [name, onsets, expected] of [
        ['without markers', [], []],
        ['before, between and after markers', [300, 95],
            [[null, 0, 95, 10, 1, 1], ['m95', 95, 300, 20, 0.5, 0], ['m300', 300, 590, 30, 2 / 3, 1]]],
        ['from a sample to another one', [100, 400], [[null, 0, 100, 10, 1, 1], ['m100', 100, 400, 30, 1 / 3, 0], ['m400', 400, 590, 20, 1, 1]]],
        ['from the first sample', [0], [['m0', 0, 590, 60, 2 / 3, 2]]],
        ['beyond the recording', [-50, 700], [['m-50', -50, 700, 60, 2 / 3, 2], ['m700', 700, 700, 0, NaN, 0]]],
        ['before the recording, at its start and twice at its end', [-50, 0, 590, 590],
            [['m-50', -50, 0, 0, NaN, 0], ['m0', 0, 590, 59, 39 / 59, 2], ['m590', 590, 590, 0, NaN, 0], ['m590', 590, 590, 1, 1, 0]]],
    ])
        test(name, () => assert.deepEqual(figuresOf(viewOf(onsets)), expected));

    test('follow the fixation parameters, and are saved as CSV', () => {
        const view = viewOf([95, { onsetMs: 395, text: 'a "b",\r\nc', row: 39 }]);
        assert.equal(intervalsCsv(view.intervals), [
            'Marker,Start_ms,Duration_ms,SampleCount,ValidShare,FixationCount,MeanFixation_ms,L_Pupil_mm,R_Pupil_mm',
            ',0,95,10,1,1,190,0.45,4', 'm95,95,300,30,0.3333,0,,2.45,4', '"a ""b"",\r\nc",395,195,20,1,1,190,4.95,', '',
        ].join('\r\n'));
        view.detect({ ...defaultDispersionParameters, minDurationMs: 200 });
        assert.deepEqual(view.intervals.map(({ fixationCount }) => fixationCount), [0, 0, 0]);
        view.detect({ ...view.parameters, method: 'velocity', widthMm: NaN, heightMm: 300, distanceMm: 600 });
        assert.match(intervalsCsv(view.intervals), /\r\nm95,95,300,30,0\.3333,,,2\.45,4\r\n/);
    });
});

test('the fixations of the whole recording are saved as CSV', () => {
    const detection = 'dispersion maxDispersion=3 minDurationMs=100 maxLossMs=75';
    const lines = (onsets, changes) => {
        const view = viewOf(onsets, changes);
        view.show({ fromMs: 300, toMs: 590 });
        return fixationsCsv(view).split('\r\n');
    };
    assert.deepEqual(lines([100, 400]), [
        'Index,Start_ms,Duration_ms,X,Y,X_px,Y_px,L_Pupil_mm,R_Pupil_mm,SampleCount,Marker,Detection',
        `1,0,190,20,40,400,400,0.95,4,20,,${detection}`, `2,400,190,60,80,1200,800,4.95,,20,m400,${detection}`, '',
    ]);
    assert.equal(lines([], { areaPx: areaPxOf([]) })[2], `2,400,190,60,80,,,4.95,,20,,${detection}`);
    // The sum of the start and the duration is less than the time of the last sample.
    const rounded = columnsOf(listOf(150, i => 1.1 * i), i => (i < 11 || i > 111 ? lost : { x: 20, y: 40 }));
    assert.equal(lines([], { columns: rounded })[1].split(',')[9], '101');
    const samples = listOf(90, i => 0.97 * i + 5.1).map(x => (
        { valid: true, x, y: x, x_px: Math.trunc(19.2 * x), y_px: Math.trunc(10.8 * x) }));
    assert.deepEqual(areaPxOf(samples), { width: 1920, height: 1080 });
});

describe('drawn markers', () => {
    const characterPx = fakeSurface(1, 1).context.measureText('m').width;
    const labelsOf = ({ context: { texts } }) => texts.filter(({ text }) => /^[a-z]/.test(text));

    test('have lines and labels in charts', () => {
        const surface = fakeSurface(648, 118);
        const view = viewOf([-10, 100, { onsetMs: 200, text: 'a text\nthat is long', row: 20 }, 300, 700]);
        view.show({ fromMs: 0, toMs: 590 });
        const chart = drawPupils(surface, view);
        const long = surface.context.lines.ink.filter(([, top]) => top === chart.top).map(([x]) => x);
        assert.deepEqual(long, [100, 200, 300].map(ms => Math.round(chart.toX(ms)) + 0.5));
        assert.deepEqual(labelsOf(surface), [['m100', 100], ['a text that is…', 200], ['m300', 300]].map(([text, ms]) => (
            { text, x: chart.toX(ms) + 4, y: chart.top + 8 })));

        // At the right edge, the label is to the left of its line.
        const edge = fakeSurface(648, 118);
        view.show({ fromMs: 0, toMs: 301 });
        assert.equal(drawPupils(edge, view).toX(300) - 4, labelsOf(edge)[2].x + 4 * characterPx);
    });

    for (const count of [40, 1000, 100000])
        test(`never have overlapping labels: ${count}`, () => {
            const surface = fakeSurface(1000, 64);
            const view = viewOf(listOf(count, i => ({ onsetMs: (590 * i) / count, text: `marker ${i}`, row: 0 })));
            const chart = drawOverview(surface, view);
            const labels = labelsOf(surface);
            assert.ok(labels.length >= 8);
            let free = chart.left;
            for (const { text, x } of labels) {
                assert.ok(x >= free, text);
                free = x + characterPx * text.length;
            }
            assert.ok(free <= chart.left + chart.width);
            // Between the labels, the chart stays visible. The number of lines does not grow with the number of markers.
            const { ink } = surface.context.lines;
            assert.equal(ink.filter(([, top]) => top === chart.top).length, count > 40 ? labels.length : count);
            assert.ok(ink.length <= chart.width + labels.length + 1);
        });

    test('have symbols at the gaze of the shown range, with labels that do not overlap', () => {
        const surface = fakeSurface(550, 350);
        const view = viewOf([50, 100, 500, { onsetMs: 290, text: 'lost', row: 0 }], {
            columns: columnsOf(listOf(60, i => 10 * i), i => (i > 15 && i < 45 ? lost : { x: i < 20 ? 20 : 90, y: 40 })),
        });
        const { toX, toY } = screenIn(surface, 2);
        const labels = () => labelsOf(surface).map(({ text, x, y }) => [text, x > toX(50), y]);
        view.show({ fromMs: 60, toMs: 590 });
        drawScanPath(surface, view);
        assert.deepEqual(labels(), [['m100', false, toY(40)], ['m500', true, toY(40)]]);
        surface.context.texts = [];
        view.show({ fromMs: 0, toMs: 590 });
        drawScanPath(surface, view);
        assert.deepEqual(labels().map(([text]) => text), ['m50', 'm500']);

        const crowded = fakeSurface(550, 350);
        drawScanPath(crowded, viewOf(listOf(400, i => 1.4 * i)));
        assert.deepEqual([labelsOf(crowded), crowded.context.boxes.ink.length], [[], 2]);
    });
});
