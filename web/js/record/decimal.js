const [plus, minus, point, zero, nine] = ['+', '-', '.', '0', '9'].map(character => character.charCodeAt(0));

/** Most digits behind the point whose power of ten is exact. */
const mostDecimals = 22;

/**
 * The number that stands in `bytes` from `from` to `to` (excluded), NaN for one that is none by name ("nan", "inf"),
 * undefined when it is no number at all. Numbers with a point may differ in the last of their 16 digits from the
 * exact one. Much quicker than making a text of each of the millions of cells of a record.
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
    if (isEmpty || decimals > mostDecimals) return parseText(bytes, from, to);
    return (first === minus ? -value : value) / 10 ** decimals;
}

/** Exponents, and what is rare or wrong. */
function parseText(bytes, from, to) {
    const text = new TextDecoder().decode(bytes.subarray(from, to));
    if (/^[-+]?(nan|inf(inity)?)$/i.test(text)) return NaN;
    return /^[-+]?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?$/i.test(text) ? Number(text) : undefined;
}
