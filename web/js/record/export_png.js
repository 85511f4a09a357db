import { number, text } from '../shared/language.js';
import { canvasAspect } from '../shared/screen.js';
import { drawPupils, drawValidity } from './record_charts.js';
import { figuresOf } from './record_texts.js';
import { drawStage } from './stage.js';

/** In the units of the drawing, each of which becomes two pixels. */
const [width, scale, edge] = [1000, 2, 24];
const [titleHeight, chartHeight, captionHeight] = [64, 150, 24];

/** What draws each chart, and the colours of its lines by their names. */
const charts = [
    ['chartPupil', drawPupils, { leftEye: 'left', rightEye: 'right' }],
    ['chartValid', drawValidity, {}],
];

/** Offers a picture of what is shown, with its figures, as a file beside the record's name. */
export async function savePicture(view, mode, palette) {
    const canvas = pictureOf(view, mode, palette);
    const blob = await new Promise(resolve => canvas.toBlob(resolve, 'image/png'));
    const link = document.createElement('a');
    link.href = URL.createObjectURL(blob);
    link.download = `${view.fileName.replace(/\.csv$/i, '')}.png`;
    link.click();
    // The browser may look at the address a little later.
    setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}

function pictureOf(view, mode, palette) {
    const stageHeight = Math.round((width - 2 * edge) / canvasAspect(view.aspect));
    const height = titleHeight + stageHeight + charts.length * (captionHeight + chartHeight) + edge;
    const canvas = Object.assign(document.createElement('canvas'), { width: width * scale, height: height * scale });
    const context = canvas.getContext('2d');
    context.scale(scale, scale);
    context.fillStyle = palette.surface;
    context.fillRect(0, 0, width, height);
    drawTitle(context, view, palette);
    context.translate(edge, titleHeight);
    drawStage(context, width - 2 * edge, stageHeight, mode, view, palette);
    context.translate(0, stageHeight);
    for (const chart of charts) drawCaptioned(context, ...chart, view, palette);
    return canvas;
}

function drawTitle(context, view, palette) {
    const { fromMs, toMs } = view.range;
    const seconds = ms => text('seconds', { value: number(ms / 1000, 1) });
    const { rate, valid, 'fixation-count': count, 'mean-fixation': mean } = figuresOf(view);
    const figures = [
        `${seconds(fromMs)} – ${seconds(toMs)}`, rate, `${text('validShare')}: ${valid}`,
        `${text('fixations')}: ${count}`, `${text('meanFixation')}: ${mean}`,
    ];
    write(context, view.fileName, edge, 30, palette.ink, palette.font.replace(/^\d+px/, '600 17px'));
    write(context, figures.join('  ·  '), edge, 52, palette.muted, palette.font.replace(/^\d+px/, '13px'));
}

function drawCaptioned(context, caption, drawChart, lines, view, palette) {
    const font = palette.font.replace(/^\d+px/, '600 13px');
    let end = 0;
    for (const [key, colour] of [[caption, 'ink'], ...Object.entries(lines)])
        end += write(context, text(key), end, captionHeight - 6, palette[colour], font) + edge;
    context.translate(0, captionHeight);
    drawChart(context, width - 2 * edge, chartHeight, view, palette);
    context.translate(0, chartHeight);
}

/** Returns how wide the text is. */
function write(context, content, x, y, colour, font) {
    Object.assign(context, { font, fillStyle: colour, textAlign: 'left', textBaseline: 'alphabetic' });
    context.fillText(content, x, y, width - 2 * edge);
    return context.measureText(content).width;
}
