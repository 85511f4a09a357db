// @ts-nocheck

/** A busy machine needs far less for the longest step, which reads a record file of an hour. */
const timeoutMs = 120000;
const intervalMs = 50;

export const pause = ms => new Promise(done => setTimeout(done, ms));

/** Returns the first truthy value of `condition`. Throws after `timeoutMs`. */
export async function waitFor(condition, name) {
    const endMs = Date.now() + timeoutMs;
    for (;;) {
        const value = await condition();
        if (value) return value;
        if (Date.now() > endMs) throw new Error(`timeout: ${name}`);
        await pause(intervalMs);
    }
}
