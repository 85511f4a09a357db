// @ts-check

/** Object URLs are kept for this time, because the browser may start the download after click() has returned. */
const keptMs = 60000;

/**
 * Saves a file in the browser's download folder.
 *
 * @param {Blob} content
 * @param {string} fileName
 */
export function download(content, fileName) {
    const link = document.createElement('a');
    link.href = URL.createObjectURL(content);
    link.download = fileName;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), keptMs);
}

/**
 * Saves the content of a canvas as a PNG file.
 *
 * @param {HTMLCanvasElement} canvas
 * @param {string} fileName
 */
export async function downloadPng(canvas, fileName) {
    /** @type {Blob | null} */
    const blob = await new Promise(resolve => canvas.toBlob(resolve, 'image/png'));
    if (!blob) throw new Error('The browser cannot create the image.');
    download(blob, fileName);
}
