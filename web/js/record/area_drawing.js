// @ts-check
import { screenIn } from '../shared/screen.js';
import { handles } from './area_shapes.js';
/** @import { Surface } from '../shared/canvas.js' */
/** @import { Screen } from '../shared/screen.js' */
/** @import { Area } from './area_shapes.js' */
/** @import { RecordView } from './record_view.js' */

/** The number of colours in the style sheet, --area-0 and so on. */
const colourCount = 6;

const handlePx = 8;
const labelPx = 6;

/**
 * Returns the name of an area's colour in the style sheet.
 *
 * @param {Area} area
 */
export function colourNameOf({ id }) {
    return `--area-${id % colourCount}`;
}

/**
 * Draws the areas of interest with their names.
 *
 * @param {Surface} surface
 * @param {RecordView} view
 */
export function drawAreas(surface, { areaList: { areas, selectedId }, aspect }) {
    const style = getComputedStyle(document.documentElement);
    const screen = screenIn(surface, aspect);
    for (const area of areas)
        drawArea(surface, screen, area, style.getPropertyValue(colourNameOf(area)).trim(), area.id === selectedId);
}

/**
 * The outline has a halo in the page's colour, so that it is visible on images.
 *
 * @param {Surface} surface
 * @param {Screen} screen
 * @param {Area} area
 * @param {string} colour
 * @param {boolean} isSelected
 */
function drawArea({ context, palette }, screen, area, colour, isSelected) {
    const [left, top] = [screen.toX(area.left), screen.toY(area.top)];
    const [width, height] = [(area.width * screen.width) / 100, (area.height * screen.height) / 100];
    context.beginPath();
    if (area.shape === 'rectangle') context.rect(left, top, width, height);
    else context.ellipse(left + width / 2, top + height / 2, width / 2, height / 2, 0, 0, 2 * Math.PI);
    context.fillStyle = colour;
    context.globalAlpha = 0.14;
    context.fill();
    context.globalAlpha = 1;
    const lineWidth = isSelected ? 3 : 2;
    for (const [strokeStyle, thickness] of /** @type {const} */ ([[palette.surface, lineWidth + 2], [colour, lineWidth]])) {
        Object.assign(context, { strokeStyle, lineWidth: thickness });
        context.stroke();
    }
    drawName(context, area.name, left + width / 2, top + labelPx, [palette.surface, colour, palette.font]);
}

/**
 * @param {CanvasRenderingContext2D} context
 * @param {string} name
 * @param {number} x of the centre
 * @param {number} y of the upper edge
 * @param {string[]} style the colours of the halo and of the text, and the font
 */
function drawName(context, name, x, y, [halo, colour, font]) {
    Object.assign(context, {
        font: `600 ${font}`, textAlign: 'center', textBaseline: 'top', lineJoin: 'round', lineWidth: 4, strokeStyle: halo,
        fillStyle: colour,
    });
    context.strokeText(name, x, y);
    context.fillText(name, x, y);
}

/**
 * Draws the handles of the selected area.
 *
 * @param {Surface} surface
 * @param {RecordView} view
 */
export function drawHandles(surface, { areaList: { selected }, aspect }) {
    if (!selected) return;
    const { context, palette } = surface;
    const screen = screenIn(surface, aspect);
    Object.assign(context, { fillStyle: palette.surface, strokeStyle: palette.ink, lineWidth: 1.5 });
    for (const { x, y } of handlePoints(screen, selected)) {
        context.fillRect(x - handlePx / 2, y - handlePx / 2, handlePx, handlePx);
        context.strokeRect(x - handlePx / 2, y - handlePx / 2, handlePx, handlePx);
    }
}

/**
 * Returns the handles of an area with their coordinates.
 *
 * @param {Screen} screen
 * @param {Area} area
 */
export function handlePoints(screen, { left, top, width, height }) {
    return handles.map(handle => ({
        handle,
        x: screen.toX(left + ((handle[0] + 1) * width) / 2),
        y: screen.toY(top + ((handle[1] + 1) * height) / 2),
    }));
}
