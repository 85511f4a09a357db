// @ts-check

const [plus, minus, point, zero, nine] = ['+', '-', '.', '0', '9'].map(character => character.charCodeAt(0));

/** A double cannot represent higher powers of ten exactly. */
const maxDecimals = 22;
const powersOfTen = Float64Array.from({ length: maxDecimals + 1 }, (_, exponent) => 10 ** exponent);

/** The result of readDecimal() within parseDecimal(). */
const result = new Float64Array(1);

/**
 * Returns the number in `bytes` from `from` to `to` (excluded): NaN for "nan" and "inf", undefined for other text. The
 * result for a number with a decimal point may differ from Number() in the 16th digit. This function is much faster
 * than converting the millions of cells of a record file to strings.
 *
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 */
export function parseDecimal(bytes, from, to) {
    const isPlain = from < to && readDecimal(bytes, from, to, result, 0) === to;
    return isPlain ? result[0] : parseText(bytes, from, to);
}

/**
 * Reads the number without exponent that starts at `from`, and stores it in `values[index]`. Returns the end of the number.
 * If there is no such number, stores NaN and returns `from`. Storing the number instead of returning it avoids an
 * allocation for each number.
 *
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to the number ends before this byte
 * @param {Float64Array} values
 * @param {number} index
 */
export function readDecimal(bytes, from, to, values, index) {
    const first = bytes[from];
    const start = first === minus || first === plus ? from + 1 : from;
    let value = 0;
    let pointAt = -1;
    let end = start;
    for (; end < to; ++end) {
        const byte = bytes[end];
        if (byte >= zero && byte <= nine) value = value * 10 + (byte - zero);
        else if (byte === point && pointAt < 0) pointAt = end;
        else break;
    }
    const decimals = pointAt < 0 ? 0 : end - 1 - pointAt;
    const isEmpty = end - start - (pointAt < 0 ? 0 : 1) <= 0;
    if (isEmpty || decimals > maxDecimals) {
        values[index] = NaN;
        return from;
    }
    values[index] = (first === minus ? -value : value) / powersOfTen[decimals];
    return end;
}

/**
 * Handles exponents and other rare forms.
 *
 * @param {Uint8Array} bytes
 * @param {number} from
 * @param {number} to
 */
function parseText(bytes, from, to) {
    const text = new TextDecoder().decode(bytes.subarray(from, to));
    if (/^[-+]?(nan|inf(inity)?)$/i.test(text)) return NaN;
    return /^[-+]?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?$/i.test(text) ? Number(text) : undefined;
}
