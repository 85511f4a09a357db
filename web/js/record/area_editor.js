// @ts-check
import { screenIn } from '../shared/screen.js';
import { handlePoints } from './area_drawing.js';
import { boxBetween, lowerRight, movedBox, resizedBox } from './area_shapes.js';
/** @import { AreaList } from './area_list.js' */
/** @import { Box, Handle, Shape } from './area_shapes.js' */
/** @import { RecordView } from './record_view.js' */

/** A shorter movement of the pointer is a click. */
const minDragPx = 3;

/** The distance from a handle at which it is grabbed. A finger covers more than a mouse pointer. */
const reachPx = { mouse: 8, touch: 20 };

const keyStep = 1;

/** A box in the centre, for areas that are added with the keyboard. @type {Box} */
const centre = { left: 37.5, top: 37.5, width: 25, height: 25 };

/** @type {Record<string, [number, number]>} */
const arrows = {
    ArrowLeft: [-keyStep, 0], ArrowRight: [keyStep, 0], ArrowUp: [0, -keyStep], ArrowDown: [0, keyStep],
};

/** @type {Record<string, string>} */
const cursors = { '-1,-1': 'nwse', '1,1': 'nwse', '-1,1': 'nesw', '1,-1': 'nesw', '0,-1': 'ns', '0,1': 'ns', '-1,0': 'ew', '1,0': 'ew' };

/**
 * Returns whether a key is Z. In a layout without Latin letters, for example the Russian one, the key at its place counts.
 *
 * @param {KeyboardEvent} event
 */
function isZ({ key, code }) {
    return /^[a-z]$/i.test(key) ? key.toLowerCase() === 'z' : code === 'KeyZ';
}

/** @typedef {{ x: number, y: number }} Point In percent of the screen. */

/** Changes the areas while the pointer moves. `continues` is false for the first change. @typedef {(now: Point, continues: boolean) => void} Gesture */

/**
 * Edits the areas of interest with the pointer and the keyboard. If no tool is chosen, a drag moves or resizes an area.
 */
export class AreaEditor {
    /** The shape that the next drag draws. @type {Shape | null} */
    tool = null;
    #canvas;
    #access;
    #report;

    /**
     * @param {HTMLCanvasElement} canvas
     * @param {() => RecordView | null} access
     * @param {object} report
     * @param {() => void} report.changed called after each change of the areas, the selection or the tool
     * @param {() => void} report.finished called after the last change of a drag, and after any other change of the areas
     * @param {(number: number) => string} report.nameOf returns the name of a new area
     */
    constructor(canvas, access, report) {
        this.#canvas = canvas;
        this.#access = access;
        this.#report = report;
        canvas.addEventListener('pointerdown', event => this.#press(event));
        canvas.addEventListener('pointermove', event => this.#hover(event));
        canvas.addEventListener('keydown', event => this.key(event));
    }

    /**
     * Chooses a tool, or puts it away if it is chosen already.
     *
     * @param {Shape | null} tool
     */
    choose(tool) {
        this.tool = this.tool === tool ? null : tool;
        this.#report.changed();
    }

    /**
     * Adds an area in the centre of the screen.
     *
     * @param {Shape} shape
     */
    addInCentre(shape) {
        this.#access()?.areaList.add(shape, centre, this.#report.nameOf);
        this.#report.finished();
    }

    /**
     * Handles a key for the selected area.
     *
     * @param {KeyboardEvent} event
     */
    key(event) {
        const list = this.#access()?.areaList;
        const act = list && !event.altKey && this.#actionOf(event, list);
        if (!act) return;
        event.preventDefault();
        act();
        this.#report.finished();
    }

    /**
     * Returns the function for a key, or undefined.
     *
     * @param {KeyboardEvent} event
     * @param {AreaList} list
     * @returns {(() => void) | undefined}
     */
    #actionOf(event, list) {
        const { key, ctrlKey, metaKey, shiftKey, repeat, target } = event;
        const { selected } = list;
        if (ctrlKey || metaKey) return isZ(event) && !shiftKey ? () => list.undo() : undefined;
        if (key === 'Escape') return () => this.#rest(list);
        // On a button, Enter presses it.
        if (key === 'Enter' && target === this.#canvas) return () => list.selectNext();
        if (!selected) return undefined;
        if (key === 'Delete' || key === 'Backspace') return () => list.remove(selected.id);
        if (!arrows[key]) return undefined;
        const box = shiftKey ? resizedBox(selected, lowerRight, ...arrows[key]) : movedBox(selected, ...arrows[key]);
        return () => list.change(selected.id, box, repeat);
    }

    /**
     * Puts the tool away, and selects no area.
     *
     * @param {AreaList} list
     */
    #rest(list) {
        this.tool = null;
        list.selectedId = null;
    }

    /**
     * @param {RecordView} view
     */
    #screen({ aspect }) {
        const { clientWidth: width, clientHeight: height } = this.#canvas;
        return screenIn({ width, height }, aspect);
    }

    /**
     * @param {RecordView} view
     * @param {PointerEvent} event
     * @returns {Point}
     */
    #pointAt(view, { offsetX, offsetY }) {
        const { left, top, width, height } = this.#screen(view);
        return { x: ((offsetX - left) * 100) / width, y: ((offsetY - top) * 100) / height };
    }

    /**
     * Returns the handle of the selected area under the pointer.
     *
     * @param {RecordView} view
     * @param {PointerEvent} event
     * @returns {Handle | undefined}
     */
    #handleAt(view, { offsetX, offsetY, pointerType }) {
        const { selected } = view.areaList;
        if (!selected) return undefined;
        const reach = pointerType === 'touch' ? reachPx.touch : reachPx.mouse;
        const distance = (/** @type {Point} */ { x, y }) => Math.max(Math.abs(x - offsetX), Math.abs(y - offsetY));
        const nearest = handlePoints(this.#screen(view), selected).sort((a, b) => distance(a) - distance(b))[0];
        return distance(nearest) <= reach ? nearest.handle : undefined;
    }

    /** @param {PointerEvent} event */
    #hover(event) {
        const view = this.#access();
        if (!view || event.buttons !== 0) return;
        const handle = this.tool ? undefined : this.#handleAt(view, event);
        const isOver = handle || view.areaList.areaAt(this.#pointAt(view, event));
        const pointing = handle ? `${cursors[handle.join()]}-resize` : isOver ? 'move' : 'default';
        this.#canvas.style.cursor = this.tool ? 'crosshair' : pointing;
    }

    /** @param {PointerEvent} start */
    #press(start) {
        const view = this.#access();
        if (!view || start.button !== 0 || !start.isPrimary) return;
        const gesture = this.#gestureAt(view, start);
        this.#report.changed();
        if (gesture) this.#follow(view, start, gesture);
    }

    /**
     * Returns what a drag does, and selects the area under the pointer.
     *
     * @param {RecordView} view
     * @param {PointerEvent} event
     * @returns {Gesture | null}
     */
    #gestureAt(view, event) {
        const { areaList: list } = view;
        const start = this.#pointAt(view, event);
        if (this.tool) return list.isFull ? null : this.#drawing(list, this.tool, start);
        const handle = this.#handleAt(view, event);
        const area = handle ? list.selected : list.areaAt(start);
        list.selectedId = area?.id ?? null;
        if (!area) return null;
        return ({ x, y }, continues) => {
            const by = /** @type {const} */ ([x - start.x, y - start.y]);
            list.change(area.id, handle ? resizedBox(area, handle, ...by) : movedBox(area, ...by), continues);
        };
    }

    /**
     * @param {AreaList} list
     * @param {Shape} shape
     * @param {Point} start
     * @returns {Gesture}
     */
    #drawing(list, shape, start) {
        return (now, continues) => {
            const box = boxBetween(start, now);
            if (!continues) list.add(shape, box, this.#report.nameOf);
            else list.change(/** @type {number} */ (list.selectedId), box, true);
        };
    }

    /**
     * Calls the gesture until the pointer is released. A cancelled drag, for example by the system, changes nothing.
     *
     * @param {RecordView} view
     * @param {PointerEvent} start
     * @param {Gesture} gesture
     */
    #follow(view, start, gesture) {
        let isDragged = false;
        const drag = new AbortController();
        const { signal } = drag;
        this.#canvas.setPointerCapture(start.pointerId);
        this.#canvas.addEventListener('pointermove', event => {
            if (!event.isPrimary) return;
            if (!isDragged && Math.hypot(event.offsetX - start.offsetX, event.offsetY - start.offsetY) < minDragPx) return;
            gesture(this.#pointAt(view, event), isDragged);
            isDragged = true;
            this.#report.changed();
        }, { signal });
        for (const type of /** @type {const} */ (['pointerup', 'pointercancel'])) {
            this.#canvas.addEventListener(type, event => {
                if (!event.isPrimary) return;
                if (isDragged && type === 'pointercancel') view.areaList.undo();
                this.#end(drag, isDragged);
            }, { signal });
        }
    }

    /**
     * @param {AbortController} drag
     * @param {boolean} isDragged
     */
    #end(drag, isDragged) {
        drag.abort();
        if (!isDragged) return;
        this.tool = null;
        this.#report.finished();
    }
}
