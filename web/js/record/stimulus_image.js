// @ts-check
/** @import { Surface } from '../shared/canvas.js' */
/** @import { Screen } from '../shared/screen.js' */

/** The image that the participant saw. It fills the screen. `opacity` is from 0 to 1. @typedef {{ image: HTMLImageElement, opacity: number }} Stimulus */

const svgType = 'image/svg+xml';
const types = ['image/png', 'image/jpeg', 'image/webp', svgType];

/** @param {File} file */
export function isImage({ type }) {
    return types.includes(type);
}

/**
 * Loads an image. Rejects if it cannot be shown. As an image, an SVG file runs no scripts and loads no other files.
 *
 * @param {File} file
 */
export async function loadImage(file) {
    const image = new Image();
    image.src = file.type === svgType ? await dataUrlOf(file) : URL.createObjectURL(file);
    try {
        await image.decode();
        return image;
    } finally {
        URL.revokeObjectURL(image.src);
    }
}

/**
 * Chromium does not save a canvas as PNG if an SVG file with HTML content was drawn on it, except from a data URL.
 *
 * @param {File} file
 * @returns {Promise<string>}
 */
function dataUrlOf(file) {
    const reader = new FileReader();
    return new Promise((resolve, reject) => {
        reader.onload = () => resolve(String(reader.result));
        reader.onerror = () => reject(reader.error);
        reader.readAsDataURL(file);
    });
}

/**
 * Draws the image on the screen, behind the gaze.
 *
 * @param {Surface} surface
 * @param {Screen} screen
 * @param {Stimulus | null} stimulus
 */
export function drawStimulus({ context }, { left, top, width, height }, stimulus) {
    if (!stimulus) return;
    context.globalAlpha = stimulus.opacity;
    context.drawImage(stimulus.image, left, top, width, height);
    context.globalAlpha = 1;
}
