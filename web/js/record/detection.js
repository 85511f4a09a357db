// @ts-check
import { findDispersionFixations } from './fixations.js';
import { findVelocityFixations } from './velocity_fixations.js';
/** @import { SampleColumns } from '../shared/sample_columns.js' */
/** @import { DispersionParameters } from './fixations.js' */
/** @import { VelocityParameters } from './velocity_fixations.js' */

/** The parameters of one of the methods. @typedef {DispersionParameters | VelocityParameters} FixationParameters */

export const geometryNames = /** @type {const} */ (['widthMm', 'heightMm', 'distanceMm']);

/**
 * Returns whether no parameter is missing. The velocity method needs the screen's size and distance.
 *
 * @param {FixationParameters} parameters
 */
export function isComplete(parameters) {
    return parameters.method === 'dispersion' || geometryNames.every(name => parameters[name] > 0);
}

/**
 * Finds fixations by the method of the parameters.
 *
 * @param {SampleColumns} columns
 * @param {FixationParameters} parameters
 * @param {number} aspect the screen's width divided by its height
 */
export function detectFixations(columns, parameters, aspect) {
    if (parameters.method === 'dispersion') return findDispersionFixations(columns, parameters, aspect);
    return findVelocityFixations(columns, parameters);
}

/**
 * Describes the method and its parameters, for files: the method, and NAME=VALUE for each parameter.
 *
 * @param {FixationParameters} parameters
 */
export function describeDetection({ method, ...parameters }) {
    return [method, ...Object.entries(parameters).map(([name, value]) => `${name}=${value}`)].join(' ');
}
