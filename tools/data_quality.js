// @ts-check
// The program behind tools/data-quality.
import { readFileSync } from 'node:fs';
import { parseArgs } from 'node:util';
import { readExchangeFile } from '../web/js/shared/exchange_file.js';
import { FileError } from '../web/js/shared/file_error.js';
import { text } from '../web/js/shared/language.js';
import { measureCells, measureNames } from '../web/js/shared/quality_columns.js';
import { qualityTable } from '../web/js/shared/quality_table.js';

const help = `Prints the data quality of gaze on targets: accuracy, precision, data loss and effective frequency.

usage: tools/data-quality FILE.tsv --screen WIDTHxHEIGHT --resolution WIDTHxHEIGHT --distance MM [--rate HZ]

  --screen WIDTHxHEIGHT       size of the screen in mm, for example 528x297
  --resolution WIDTHxHEIGHT   size of the screen in pixels, for example 1920x1080
  --distance MM               distance from the eyes to the screen's centre, for example 650
  --rate HZ                   nominal sample rate of the tracker, for the loss of samples that were not delivered
  --help                      print this text

FILE.tsv has tab-separated columns with a header line: timestamp (ms), left_x, left_y, right_x, right_y (pixels from the
screen's centre, x to the right, y downward; empty or "nan" if missing), target_id (-1 outside the collection windows),
tar_x and tar_y (pixels from the centre). The columns of one eye may be absent. "-" reads standard input.

The output is tab-separated, with a header line: a line for each eye and target, and the mean of each eye over the targets.
"combined" is the mean position of both eyes. The last line is the mean over the eyes. Angles are in degrees, and the BCEA
(68 %) is in square degrees. The accuracy is "not enough data" if less than half of the expected samples is valid.
To align the columns: tools/data-quality ... | column -ts "$(printf '\\t')"

Exit code: 0 on success, 1 if the file cannot be read, 2 if the options are wrong.
`;

/** A mistake in the command line. */
class UsageError extends Error {}

/** @param {string[]} args */
function optionsOf(args) {
    const string = /** @type {const} */ ({ type: 'string' });
    const options = { screen: string, resolution: string, distance: string, rate: string };
    try {
        return parseArgs({ args, allowPositionals: true, options: { ...options, help: { type: 'boolean' } } });
    } catch (error) {
        throw new UsageError(/** @type {Error} */ (error).message);
    }
}

/**
 * @param {string} option
 * @param {string | undefined} value
 */
function positiveNumber(option, value) {
    if (value === undefined) throw new UsageError(`${option} is missing.`);
    if (!/^\d+\.?\d*$/.test(value) || !(Number(value) > 0))
        throw new UsageError(`${option} must be a number greater than 0, but it is “${value}”.`);
    return Number(value);
}

/**
 * @param {string} option
 * @param {string | undefined} value
 */
function sizeOf(option, value) {
    if (value === undefined) throw new UsageError(`${option} is missing.`);
    const parts = value.split('x');
    if (parts.length !== 2) throw new UsageError(`${option} must be WIDTHxHEIGHT, but it is “${value}”.`);
    return parts.map(part => positiveNumber(`Each part of ${option}`, part));
}

/** @param {string} name */
function readSamples(name) {
    try {
        return readExchangeFile(readFileSync(name === '-' ? 0 : name));
    } catch (error) {
        const reason = error instanceof FileError ? text(error.key, error.values) : /** @type {Error} */ (error).message;
        throw new Error(`${name}: ${reason}`);
    }
}

/** @param {ReturnType<typeof qualityTable>} table */
function linesOf({ gazes, mean }) {
    const line = (/** @type {(string | number)[]} */ ...cells) => `${cells.join('\t')}\n`;
    return [
        line('eye', 'target_id', ...measureNames),
        ...gazes.flatMap(({ name, targets, mean: meanOfTargets }) => [
            ...targets.map(({ targetId, quality }) => line(name, targetId, ...measureCells(quality))),
            line(name, 'mean', ...measureCells(meanOfTargets)),
        ]),
        line('mean', 'mean', ...measureCells(mean)),
    ];
}

/** @param {string[]} args */
function run(args) {
    const { values: options, positionals } = optionsOf(args);
    if (options.help) return help;
    if (positionals.length !== 1) throw new UsageError('Exactly one file is needed.');
    const [widthMm, heightMm] = sizeOf('--screen', options.screen);
    const [widthPx, heightPx] = sizeOf('--resolution', options.resolution);
    const distanceMm = positiveNumber('--distance', options.distance);
    const expectedHz = options.rate === undefined ? undefined : positiveNumber('--rate', options.rate);
    const geometry = { widthMm, heightMm, widthPx, heightPx, distanceMm };
    return linesOf(qualityTable(readSamples(positionals[0]), geometry, expectedHz)).join('');
}

try {
    process.stdout.write(run(process.argv.slice(2)));
} catch (error) {
    const isUsage = error instanceof UsageError;
    console.error(`data-quality: ${/** @type {Error} */ (error).message}${isUsage ? '\nSee tools/data-quality --help.' : ''}`);
    process.exitCode = isUsage ? 2 : 1;
}
