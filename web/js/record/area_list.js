// @ts-check
import { contains } from './area_shapes.js';
/** @import { Area, Box, Shape } from './area_shapes.js' */

export const maxAreaCount = 100;
const maxUndoCount = 100;

/** The areas of interest of a record file. Each change can be undone. */
export class AreaList {
    /** In the order of the table. Later areas are drawn above earlier ones. @type {readonly Area[]} */
    areas;
    /** @type {number | null} */
    selectedId = null;
    /** The areas before each change. @type {(readonly Area[])[]} */
    #past = [];

    /** @param {readonly Area[]} areas */
    constructor(areas = []) {
        this.areas = areas;
    }

    get selected() {
        return this.areas.find(({ id }) => id === this.selectedId) ?? null;
    }

    get isFull() {
        return this.areas.length >= maxAreaCount;
    }

    get canUndo() {
        return this.#past.length > 0;
    }

    /**
     * Returns the uppermost area at a point, or null.
     *
     * @param {{ x: number, y: number }} point
     */
    areaAt(point) {
        return this.areas.filter(area => contains(area, point)).pop() ?? null;
    }

    /** Selects the area after the selected one, or the first one. */
    selectNext() {
        const next = this.areas.findIndex(({ id }) => id === this.selectedId) + 1;
        this.selectedId = (this.areas[next] ?? this.areas[0])?.id ?? null;
    }

    /**
     * Adds an area and selects it.
     *
     * @param {Shape} shape
     * @param {Box} box
     * @param {(number: number) => string} nameOf returns a name; the first one that is not used is taken
     */
    add(shape, box, nameOf) {
        const names = new Set(this.areas.map(({ name }) => name));
        let number = 1;
        while (names.has(nameOf(number))) ++number;
        const id = Math.max(-1, ...this.areas.map(area => area.id)) + 1;
        this.#set([...this.areas, { id, name: nameOf(number), shape, ...box }]);
        this.selectedId = id;
    }

    /**
     * @param {number} id
     * @param {Partial<Box & { name: string }>} values
     * @param {boolean} continues whether the change belongs to the previous one, so that they are undone together
     */
    change(id, values, continues = false) {
        this.#set(this.areas.map(area => (area.id === id ? { ...area, ...values } : area)), continues);
    }

    /** @param {number} id */
    remove(id) {
        this.#set(this.areas.filter(area => area.id !== id));
    }

    /** @param {readonly Area[]} areas */
    replace(areas) {
        this.#set(areas);
    }

    /** Undoes the last change. */
    undo() {
        this.areas = this.#past.pop() ?? this.areas;
    }

    /**
     * @param {readonly Area[]} areas
     * @param {boolean} continues
     */
    #set(areas, continues = false) {
        if (!continues) this.#past.push(this.areas);
        if (this.#past.length > maxUndoCount) this.#past.shift();
        this.areas = areas;
    }
}
