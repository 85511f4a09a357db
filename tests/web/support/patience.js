/** Nothing on a healthy machine takes this long, and a busy one may. */
const patienceMs = 30000;
const pauseMs = 50;

export const pause = ms => new Promise(done => setTimeout(done, ms));

/** What `condition` gives as soon as it is true; throws, saying `what` was waited for, when it never is. */
export async function waitFor(condition, what) {
    const endMs = Date.now() + patienceMs;
    for (;;) {
        const value = await condition();
        if (value) return value;
        if (Date.now() > endMs) throw new Error(`waited in vain for: ${what}`);
        await pause(pauseMs);
    }
}
