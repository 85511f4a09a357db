// @ts-check
import { allOf, byId, inputById, setText } from '../shared/dom.js';
import { onLanguage, text } from '../shared/language.js';
import { loadImage } from './stimulus_image.js';
/** @import { RecordView } from './record_view.js' */
/** @import { Stimulus } from './stimulus_image.js' */

const opacity = inputById('stimulus-opacity');

/** The same image is shown with every record file. It stays in this page. @type {Stimulus | null} */
let stimulus = null;

/** Returns why the last image is not shown, in the current language. */
let problem = () => '';

/** @type {() => RecordView | null} */
let shownView = () => null;

let redrawStage = () => {};

/**
 * Connects the buttons that choose and remove the image of the stimulus.
 *
 * @param {() => RecordView | null} access returns the shown record file, or null
 * @param {() => void} redraw called after a change of the image
 */
export function startStimulus(access, redraw) {
    [shownView, redrawStage] = [access, redraw];
    const input = inputById('stimulus-file');
    byId('stimulus-choose').addEventListener('click', () => input.click());
    byId('stimulus-remove').addEventListener('click', () => show(null));
    input.addEventListener('change', () => {
        if (input.files?.[0]) showImage(input.files[0]);
        input.value = '';
    });
    opacity.addEventListener('input', () => stimulus && show(stimulus.image));
    onLanguage(() => setText('stimulus-note', problem()));
    show(null);
}

/** Shows the image with another record file. @param {RecordView} view */
export function openStimulus(view) {
    view.stimulus = stimulus;
}

/**
 * Shows an image behind the gaze, or the reason why it cannot be shown.
 *
 * @param {File} file
 */
export async function showImage(file) {
    try {
        show(await loadImage(file));
    } catch {
        problem = () => text('cannotShow', { name: file.name, reason: text('notAnImage') });
        setText('stimulus-note', problem());
    }
}

/** @param {HTMLImageElement | null} image */
function show(image) {
    stimulus = image && { image, opacity: opacity.valueAsNumber / 100 };
    problem = () => '';
    setText('stimulus-note', '');
    const view = shownView();
    if (view) view.stimulus = stimulus;
    for (const part of allOf('#stimulus-opacity, #stimulus-remove, label[for=stimulus-opacity]')) part.hidden = !stimulus;
    redrawStage();
}
