/**
 * The drawing context of a canvas that fills its place in the layout, filled with `background`, with CSS pixels as
 * unit. `width` and `height` are its size in them.
 */
export function prepare(canvas, background) {
    const { clientWidth: width, clientHeight: height } = canvas;
    const ratio = window.devicePixelRatio || 1;
    const size = [Math.round(width * ratio), Math.round(height * ratio)];
    if (canvas.width !== size[0] || canvas.height !== size[1]) [canvas.width, canvas.height] = size;
    // Opaque pictures are shown with less work.
    const context = canvas.getContext('2d', { alpha: false });
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.fillStyle = background;
    context.fillRect(0, 0, width, height);
    return { context, width, height };
}
