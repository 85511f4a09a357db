// @ts-check
/** @import { Area, ScreenSize, State } from '../shared/live_model.js' */

/** @typedef {'match' | 'otherScreen' | 'unknown'} ScreenCheck Whether the page is on the calibrated screen. */

/**
 * A screen as the browser reports it, with the page's centre on the desktop. In device pixels.
 *
 * @typedef {{ widthPx: number, heightPx: number, centreX: number, centreY: number }} BrowserScreen
 */

/**
 * Converts positions in percent of the calibrated area to fractions of the screen.
 *
 * @typedef {{ x: (percent: number) => number, y: (percent: number) => number }} AreaOnScreen
 */

/** A browser rounds sizes to CSS pixels. With display scaling, that is up to two device pixels. */
const toleratedPx = 2;

/** A scroll bar and the window's frame need less than this share of the window's width. */
const toleratedZoom = 0.05;

/**
 * Returns the screen with the centre of the calibrated area. Null if the area is not known, or on no screen.
 *
 * @param {State} state
 * @returns {ScreenSize | null}
 */
export function calibratedScreenOf({ area, screens }) {
    if (!area) return null;
    const [x, y] = [area.x + area.width / 2, area.y + area.height / 2];
    return screens.find(screen => contains(rectangleOf(screen, area.unit), x, y)) ?? null;
}

/**
 * Returns how percent of the calibrated area become fractions of the screen. If the area is not known, it is taken to be
 * the whole screen.
 *
 * @param {State} state
 * @returns {AreaOnScreen}
 */
export function areaOnScreen(state) {
    const { area } = state;
    const screen = calibratedScreenOf(state);
    if (!area || !screen) return { x: percent => percent / 100, y: percent => percent / 100 };
    const { x, y, width, height } = rectangleOf(screen, area.unit);
    return {
        x: percent => (area.x - x + (percent / 100) * area.width) / width,
        y: percent => (area.y - y + (percent / 100) * area.height) / height,
    };
}

/**
 * Returns the rectangle of a screen in the unit of the area. Display scaling changes the size of a screen, but not the
 * position of its top-left corner.
 *
 * @param {ScreenSize} screen
 * @param {Area['unit']} unit
 */
function rectangleOf({ x, y, width, height, scale }, unit) {
    const pixelRatio = unit === 'device' ? 1 : scale;
    return { x, y, width: width / pixelRatio, height: height / pixelRatio };
}

/**
 * @param {{ x: number, y: number, width: number, height: number }} rectangle
 * @param {number} x
 * @param {number} y
 */
function contains(rectangle, x, y) {
    return x >= rectangle.x && x < rectangle.x + rectangle.width && y >= rectangle.y && y < rectangle.y + rectangle.height;
}

/**
 * Returns the screen of a browser window. If the page is zoomed, most browsers report a wrong size.
 *
 * @param {Pick<Window, 'screen' | 'devicePixelRatio' | 'screenX' | 'screenY' | 'outerWidth' | 'outerHeight'>} browserWindow
 * @returns {BrowserScreen}
 */
export function browserScreenOf({ screen, devicePixelRatio, screenX, screenY, outerWidth, outerHeight }) {
    return {
        widthPx: Math.round(screen.width * devicePixelRatio),
        heightPx: Math.round(screen.height * devicePixelRatio),
        centreX: (screenX + outerWidth / 2) * devicePixelRatio,
        centreY: (screenY + outerHeight / 2) * devicePixelRatio,
    };
}

/**
 * Returns whether the page is on the calibrated screen. Screens are told apart by their resolution, and screens of the
 * same resolution by their position on the desktop.
 *
 * @param {State} state
 * @param {BrowserScreen} browserScreen
 * @returns {ScreenCheck}
 */
export function screenCheckOf(state, browserScreen) {
    const calibrated = calibratedScreenOf(state);
    if (!calibrated) return 'unknown';
    if (!isSameSize(calibrated, browserScreen)) return 'otherScreen';
    const hasTwin = state.screens.some(other => other !== calibrated && isSameSize(other, browserScreen));
    const isThere = contains(calibrated, browserScreen.centreX, browserScreen.centreY);
    return hasTwin && !isThere ? 'otherScreen' : 'match';
}

/**
 * @param {{ width: number, height: number }} screen
 * @param {{ widthPx: number, heightPx: number }} browserScreen
 */
function isSameSize({ width, height }, { widthPx, heightPx }) {
    return Math.abs(width - widthPx) <= toleratedPx && Math.abs(height - heightPx) <= toleratedPx;
}

/**
 * Returns the zoom of the page in percent, or null if the page is not zoomed. Firefox scales both widths, so its zoom is
 * not detected. It reports the correct size of the screen at any zoom.
 *
 * @param {{ outerWidth: number, innerWidth: number }} browserWindow
 */
export function zoomPercentOf({ outerWidth, innerWidth }) {
    const zoom = outerWidth / innerWidth;
    return Math.abs(zoom - 1) > toleratedZoom ? Math.round(100 * zoom) : null;
}
