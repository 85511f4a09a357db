// @ts-check
import { allOf, byId, inputById, setText } from '../shared/dom.js';
import { onLanguage, text } from '../shared/language.js';
import { geometryNames } from './detection.js';
import { defaultDispersionParameters } from './fixations.js';
import { knownGeometry, rememberEntered } from './known_geometry.js';
import { defaultVelocityParameters } from './velocity_fixations.js';
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { FixationParameters } from './detection.js' */
/** @import { VelocityParameters } from './velocity_fixations.js' */

/** The inputs of each method's parameters. */
const inputs = {
    dispersion: { maxDispersion: 'dispersion', minDurationMs: 'min-duration', maxLossMs: 'max-loss' },
    velocity: {
        maxVelocity: 'velocity', smoothingMs: 'smoothing', minDurationMs: 'velocity-min-duration',
        maxLossMs: 'velocity-max-loss', maxMergeGapMs: 'merge-gap', maxMergeAngle: 'merge-angle',
        widthMm: 'screen-width', heightMm: 'screen-height', distanceMm: 'viewing-distance',
    },
};
const geometryTexts = /** @type {const} */ ({ widthMm: 'fileWidthMm', heightMm: 'fileHeightMm', distanceMm: 'fileDistanceMm' });

/** @type {FixationParameters['method']} */
let method = 'dispersion';

/** The values of the fields. A value that its field does not accept is ignored. */
const values = {
    dispersion: { ...defaultDispersionParameters },
    velocity: /** @type {VelocityParameters} */ ({
        method: 'velocity', ...defaultVelocityParameters, widthMm: NaN, heightMm: NaN, distanceMm: NaN,
    }),
};
let source = { isRemembered: false, isDistanceMeasured: false };

/** Returns the parameters of the chosen method. */
export function fixationParameters() {
    return { ...values[method] };
}

/**
 * Sets the defaults, and connects the fields.
 *
 * @param {() => void} changed called after a change of the method or of one of its parameters
 */
export function startDetection(changed) {
    for (const [name, fields] of Object.entries(inputs)) {
        /** @type {Record<string, any>} */
        const parameters = values[/** @type {FixationParameters['method']} */ (name)];
        for (const [key, id] of Object.entries(fields)) {
            const field = inputById(id);
            field.value = Number.isNaN(parameters[key]) ? '' : String(parameters[key]);
            field.addEventListener('change', () => {
                if (!field.reportValidity()) return;
                parameters[key] = field.valueAsNumber;
                if (key in geometryTexts) takeEntry(key);
                changed();
            });
        }
    }
    for (const button of allOf('[data-method]')) {
        button.addEventListener('click', () => {
            method = /** @type {typeof method} */ (button.dataset.method);
            showMethod();
            changed();
        });
    }
    onLanguage(showGeometry);
}

/**
 * Fills in the screen's size and the distance of a recording, as far as they are known.
 *
 * @param {{ columns: SampleColumns, aspect: number }} recording
 */
export function useGeometryOf(recording) {
    source = knownGeometry(recording);
    const known = /** @type {Record<string, any>} */ (source);
    for (const name of geometryNames) {
        values.velocity[name] = known[name];
        inputById(inputs.velocity[name]).value = known[name] > 0 ? String(known[name]) : '';
    }
    showGeometry();
}

/** @param {string} key the changed part of the geometry */
function takeEntry(key) {
    source = { isRemembered: false, isDistanceMeasured: source.isDistanceMeasured && key !== 'distanceMm' };
    rememberEntered(values.velocity, source.isDistanceMeasured);
    showGeometry();
}

function showMethod() {
    for (const button of allOf('[data-method]'))
        button.setAttribute('aria-pressed', String(button.dataset.method === method));
    for (const name of Object.keys(inputs)) byId(`${name}-fields`).hidden = name !== method;
}

/** Shows which values are missing, or where the values are from. */
function showGeometry() {
    const missing = geometryNames.filter(name => !(values.velocity[name] > 0)).map(name => text(geometryTexts[name]));
    const notes = [
        missing.length > 0 && text('geometryMissing', { fields: missing.join('; ') }),
        source.isRemembered && text('geometryRemembered'),
        source.isDistanceMeasured && text('distanceFromRecord'),
    ];
    byId('geometry-note').classList.toggle('missing', missing.length > 0);
    setText('geometry-note', notes.filter(Boolean).join(' '));
}
