import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { waitFor } from './patience.js';

/**
 * A headless Chromium that is driven by the DevTools protocol over a pair of pipes: JSON texts, each ended by a NUL.
 */
export class Chromium {
    #process;
    #profile = mkdtempSync(join(tmpdir(), 'ocela-chromium-'));
    #waiting = new Map();
    #lastId = 0;
    #targetId;
    #received = '';
    listeners = new Set();

    constructor(...options) {
        this.#process = spawn('chromium', [
            '--headless=new', '--no-sandbox', '--remote-debugging-pipe', `--user-data-dir=${this.#profile}`,
            '--disable-gpu', '--disable-dev-shm-usage', '--no-first-run', '--hide-scrollbars', ...options,
        ], { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
        this.#process.stdio[4].setEncoding('utf8').on('data', text => this.#receive(text));
        this.#process.on('exit', () => this.#waiting.forEach(({ reject }) => reject(new Error('Chromium has ended'))));
    }

    get pid() {
        return this.#process.pid;
    }

    send(method, params = {}, sessionId = undefined) {
        const id = ++this.#lastId;
        this.#process.stdio[3].write(JSON.stringify({ id, method, params, sessionId }) + '\0');
        return new Promise((resolve, reject) => this.#waiting.set(id, { resolve, reject, method }));
    }

    /** A page at an address; the one that was open before is closed. */
    async open(url, options = {}) {
        if (this.#targetId) await this.send('Target.closeTarget', { targetId: this.#targetId });
        const { targetId } = await this.send('Target.createTarget', { url: 'about:blank' });
        this.#targetId = targetId;
        const { sessionId } = await this.send('Target.attachToTarget', { targetId, flatten: true });
        const page = new Page(this, sessionId);
        await page.start(url, options);
        return page;
    }

    async close() {
        const ended = new Promise(resolve => this.#process.once('exit', resolve));
        this.#process.kill('SIGTERM');
        await ended;
        await waitFor(() => this.#removeProfile(), 'the end of all of Chromium');
    }

    /** Not while processes of it still write. */
    #removeProfile() {
        try {
            rmSync(this.#profile, { recursive: true, force: true });
            return true;
        } catch {
            return false;
        }
    }

    #receive(text) {
        const messages = (this.#received + text).split('\0');
        this.#received = messages.pop();
        for (const message of messages.map(JSON.parse)) this.#take(message);
    }

    #take(message) {
        const call = this.#waiting.get(message.id);
        this.#waiting.delete(message.id);
        if (!call) this.listeners.forEach(listen => listen(message));
        else if (message.error) call.reject(new Error(`${call.method}: ${message.error.message}`));
        else call.resolve(message.result);
    }
}

/** One tab. Complaints of its scripts, and of the browser about them, gather in `complaints`. */
export class Page {
    complaints = [];
    #browser;
    #session;

    constructor(browser, session) {
        this.#browser = browser;
        this.#session = session;
        browser.listeners.add(message => message.sessionId === session && this.#listen(message));
    }

    send(method, params) {
        return this.#browser.send(method, params, this.#session);
    }

    async start(url, { width = 1280, height = 800, dark = false, language = 'en-GB', scale = 1 }) {
        for (const domain of ['Page', 'Runtime', 'Log', 'DOM']) await this.send(`${domain}.enable`);
        const userAgent = 'Mozilla/5.0';
        await this.send('Emulation.setUserAgentOverride', { userAgent, acceptLanguage: language });
        const features = [{ name: 'prefers-color-scheme', value: dark ? 'dark' : 'light' }];
        await this.send('Emulation.setEmulatedMedia', { features });
        await this.send('Emulation.setDeviceMetricsOverride', { width, height, deviceScaleFactor: scale, mobile: false });
        await this.send('Page.navigate', { url });
        await this.until('document.readyState === "complete" && location.href !== "about:blank"');
    }

    /** The value of an expression in the page; promises are awaited. */
    async evaluate(expression) {
        const parameters = { expression, awaitPromise: true, returnByValue: true };
        const { result, exceptionDetails } = await this.send('Runtime.evaluate', parameters);
        if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
        return result.value;
    }

    until(expression) {
        return waitFor(() => this.evaluate(expression), expression);
    }

    text(selector) {
        return this.evaluate(`document.querySelector(${JSON.stringify(selector)}).textContent`);
    }

    click(selector) {
        return this.evaluate(`document.querySelector(${JSON.stringify(selector)}).click()`);
    }

    async choose(selector, ...files) {
        const { root } = await this.send('DOM.getDocument');
        const { nodeId } = await this.send('DOM.querySelector', { nodeId: root.nodeId, selector });
        await this.send('DOM.setFileInputFiles', { nodeId, files });
    }

    async screenshot() {
        const { data } = await this.send('Page.captureScreenshot', { format: 'png', captureBeyondViewport: false });
        return Buffer.from(data, 'base64');
    }

    #listen({ method, params }) {
        if (method === 'Runtime.exceptionThrown') this.complaints.push(params.exceptionDetails.exception?.description);
        if (method === 'Log.entryAdded' && params.entry.level === 'error' && params.entry.source !== 'network')
            this.complaints.push(params.entry.text);
    }
}
