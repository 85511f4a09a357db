// @ts-check

const [plus, minus, point, zero, nine] = ['+', '-', '.', '0', '9'].map(character => character.charCodeAt(0));

/** A double cannot represent higher powers of ten exactly. */
const maxDecimals = 22;
const powersOfTen = Float64Array.from({ length: maxDecimals + 1 }, (_, exponent) => 10 ** exponent);

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
    const first = bytes[from];
    const start = first === minus || first === plus ? from + 1 : from;
    let value = 0;
    let pointAt = to - 1;
    for (let i = start; i < to; ++i) {
        const byte = bytes[i];
        if (byte >= zero && byte <= nine) value = value * 10 + (byte - zero);
        else if (byte === point && pointAt === to - 1) pointAt = i;
        else return parseText(bytes, from, to);
    }
    const decimals = to - 1 - pointAt;
    const isEmpty = to - start - (bytes[pointAt] === point ? 1 : 0) <= 0;
    if (isEmpty || decimals > maxDecimals) return parseText(bytes, from, to);
    return (first === minus ? -value : value) / powersOfTen[decimals];
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
