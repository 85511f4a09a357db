/** A tracker of the slowest usual rate delivers many times in this. */
export const stalledAfterMs = 1000;

/** The slowest pace of the questions is quicker: after this, the last answer tells nothing of now. */
export const unansweredAfterMs = 1500;

/**
 * What there is to say about the service and the tracker, as a key of the dictionaries.
 *
 * @param answer what the service said last: undefined before its first answer, null when it does not answer
 * @param startedMs,changedMs,answeredMs,nowMs when the first samples came, when they last changed (NaN: not yet), when
 *     the service said it, and now, in ms of the page's clock
 */
export function streamState(answer, startedMs, changedMs, answeredMs, nowMs) {
    if (answer === null) return 'offline';
    if (answer === undefined || nowMs - answeredMs > unansweredAfterMs) return 'connecting';
    if (!answer.result) return 'noTracker';
    if (answer.samples.length === 0) return 'noSamples';
    // The first samples may be old ones: only the next tell that the tracker delivers.
    if (Number.isNaN(changedMs)) return answeredMs - startedMs <= stalledAfterMs ? 'connecting' : 'stalled';
    return answeredMs - changedMs <= stalledAfterMs ? 'live' : 'stalled';
}
