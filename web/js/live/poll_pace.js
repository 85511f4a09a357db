const quickestMs = 160;
const quietMs = 400;
const slowestMs = 1000;
const firstRetryMs = 250;
const slowestRetryMs = 4000;

/** Asking and reading may take this share of the time, so that a slow machine is not kept busy. */
const busyShare = 0.3;

/**
 * How long to wait before the next question.
 *
 * @param failures how often in a row the service has not answered
 * @param tookMs how long the last answer took, from the question until it was read
 * @param changed whether the answer brought anything new
 */
export function pauseMs(failures, tookMs, changed) {
    if (failures > 0) return Math.min(firstRetryMs * 2 ** (failures - 1), slowestRetryMs);
    const interval = Math.max(changed ? quickestMs : quietMs, tookMs / busyShare);
    return Math.max(0, Math.min(interval, slowestMs) - tookMs);
}
