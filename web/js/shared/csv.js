// @ts-check

/**
 * Returns a table as CSV in the format of record files. A missing number is an empty cell.
 *
 * @param {string[]} headers
 * @param {(string | number)[][]} rows
 */
export function csvOf(headers, rows) {
    return [headers, ...rows].map(cells => `${cells.map(cellOf).join()}\r\n`).join('');
}

/** @param {string | number} value */
function cellOf(value) {
    const text = Number.isNaN(value) ? '' : String(value);
    return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

/**
 * Returns a number with at most `decimals` decimals.
 *
 * @param {number} value
 * @param {number} decimals
 */
export function rounded(value, decimals) {
    return Number(value.toFixed(decimals));
}
