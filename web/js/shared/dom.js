// @ts-check

/** @param {string} id */
export const byId = id => /** @type {HTMLElement} */ (document.getElementById(id));
/** @param {string} id */
export const inputById = id => /** @type {HTMLInputElement} */ (byId(id));
/** @param {string} id */
export const canvasById = id => /** @type {HTMLCanvasElement} */ (byId(id));

/**
 * Returns the elements for a CSS selector.
 *
 * @param {string} selector
 * @returns {NodeListOf<HTMLElement>}
 */
export const allOf = selector => document.querySelectorAll(selector);

/**
 * Sets an element's text. An unchanged text is not written, which saves a layout and keeps screen readers silent.
 *
 * @param {string} id
 * @param {string} value
 */
export function setText(id, value) {
    const target = byId(id);
    if (target.textContent !== value) target.textContent = value;
}

/**
 * Creates an element. Its content is plain text, never markup.
 *
 * @param {string} tag
 * @param {string} content
 */
export function element(tag, content = '') {
    const created = document.createElement(tag);
    created.textContent = content;
    return created;
}
