export const byId = id => document.getElementById(id);

/** Writes only what differs, so that nothing is laid out, or read aloud, for nothing. */
export function setText(id, value) {
    const element = byId(id);
    if (element.textContent !== value) element.textContent = value;
}

/** A new element with a text in it, which never becomes markup. */
export function element(tag, content, className = '') {
    const created = document.createElement(tag);
    created.textContent = content;
    created.className = className;
    return created;
}
