const names = ['ink', 'muted', 'line', 'surface', 'screen', 'edge', 'gaze', 'band', 'left', 'right', 'accent', 'bad'];

/** The style sheet's colours for what is drawn on canvases; it decides between light and dark. */
export function readPalette() {
    const style = getComputedStyle(document.documentElement);
    return {
        ...Object.fromEntries(names.map(name => [name, style.getPropertyValue(`--${name}`).trim()])),
        font: style.getPropertyValue('--chart-font').trim(),
    };
}

/** Calls `change` when the colours change. */
export function onPaletteChange(change) {
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', change);
}
