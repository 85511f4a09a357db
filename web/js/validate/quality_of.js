// @ts-check
import { qualityTable } from '../shared/quality_table.js';
/** @import { Validation } from './validation.js' */
/** @import { QualityTable } from './verdict.js' */

/** @type {WeakMap<Validation, QualityTable>} */
const tables = new WeakMap();

/**
 * Returns the data quality of a validation. It is calculated once. Throws a FileError if the windows are not usable; see
 * windowsOf().
 *
 * @param {Validation} validation
 */
export function qualityOf(validation) {
    const { samples, geometry, expectedHz } = validation;
    const table = tables.get(validation) ?? qualityTable(samples, geometry, expectedHz ?? undefined);
    tables.set(validation, table);
    return table;
}

/**
 * Sets the data quality of a validation that was calculated in a worker.
 *
 * @param {Validation} validation
 * @param {QualityTable} table
 */
export function setQuality(validation, table) {
    tables.set(validation, table);
}
