import { drawHeatMap } from './heat_map_view.js';
import { drawScanPath } from './scan_path_view.js';

/** Draws the screen with what `mode` names, of the record's range. */
export function drawStage(context, width, height, mode, view, palette) {
    if (mode === 'heatMap') drawHeatMap(context, width, height, view.heatMap, view.aspect, palette);
    else drawScanPath(context, width, height, view.fixations, view.firstFixation, view.aspect, palette);
}
