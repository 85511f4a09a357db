// @ts-check

/**
 * Copies the text of an element to the clipboard. Returns whether this was possible.
 *
 * @param {HTMLElement} source
 */
export async function copyText(source) {
    try {
        await navigator.clipboard.writeText(source.textContent ?? '');
        return true;
    } catch {
        // navigator.clipboard is missing on pages from other computers, and the browser may refuse access.
        getSelection()?.selectAllChildren(source);
        return document.execCommand('copy');
    }
}
