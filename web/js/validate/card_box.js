// @ts-check
import { byId, inputById } from '../shared/dom.js';

/** The width of a bank card (ISO/IEC 7810 ID-1). */
const cardWidthMm = 85.6;

/**
 * Connects the box that the user drags to the size of a bank card held against the screen. The slider does the same with
 * the keyboard.
 *
 * @param {(mmPerCssPx: number) => void} used called when the user accepts the size
 */
export function startCardBox(used) {
    const box = byId('card-box');
    const handle = byId('card-handle');
    const slider = inputById('card-width');
    const resize = () => { box.style.width = `${slider.value}px`; };
    slider.addEventListener('input', resize);
    handle.addEventListener('pointerdown', event => {
        handle.setPointerCapture(event.pointerId);
        event.preventDefault();
    });
    handle.addEventListener('pointermove', event => {
        if (!handle.hasPointerCapture(event.pointerId)) return;
        slider.value = String(Math.round(event.clientX - box.getBoundingClientRect().left));
        resize();
    });
    byId('use-card').addEventListener('click', () => used(cardWidthMm / slider.valueAsNumber));
    resize();
}
