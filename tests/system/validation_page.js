// @ts-nocheck
import { waitFor } from '../web/support/wait.js';

/** The screen and the distance of the simulated person, see docs/simulators.md. */
const setup = { 'width-mm': 531, 'height-mm': 299, distance: 620 };

const isInstructing = "document.querySelector('#stage').dataset.phase === 'instruction'";
export const step = 'document.documentElement.dataset.step';

/** Gives the keyboard focus to a page. In a background tab, it would have no connection to Ocela. */
export async function focusPage(page) {
    await page.send('Page.bringToFront');
    await page.until('document.hasFocus()');
}

/** Waits until the page fills a monitor. Display scaling may add a part of a pixel of the page. */
export function untilFullScreen(page, { width, height }) {
    const isClose = (size, pixels) => `Math.abs(${size} * devicePixelRatio - ${pixels}) <= devicePixelRatio`;
    return page.until(`document.fullscreenElement && ${isClose('innerWidth', width)} && ${isClose('innerHeight', height)}`);
}

/** Presses the start button, which is disabled while no samples arrive. Browsers permit full screen only for a real key. */
async function pressStart(page, display) {
    await page.evaluate("document.querySelector('#start').focus()");
    display.press('Return');
    const problem = await page.text('#problem');
    if (problem) throw new Error(problem);
    return page.evaluate(`${step} === 'run'`);
}

/** Starts a validation on the page /validate.html like a user, until the first target moves. */
export async function startRun(page, display, monitor) {
    await focusPage(page);
    await page.until("document.querySelector('#screen-check').dataset.check === 'match'");
    for (const [id, value] of Object.entries(setup)) await page.fill(`#${id}`, value);
    await waitFor(() => pressStart(page, display), 'the validation starts');
    await untilFullScreen(page, monitor);
    await page.until(isInstructing);
    display.press('space');
    await page.until(`!(${isInstructing})`);
}
