// @ts-nocheck
import { spawn } from 'node:child_process';
import { mkdtempSync } from 'node:fs';
import { rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { waitFor } from './wait.js';

/**
 * A Chromium, controlled with the DevTools protocol over two pipes. Each message ends with NUL. It is headless, with pages of
 * a fixed size, unless it `hasWindow` on the X display.
 */
export class Chromium {
    listeners = new Set();
    hasWindow;
    #process;
    #profile = mkdtempSync(join(tmpdir(), 'ocela-chromium-'));
    #calls = new Map();
    #lastId = 0;
    #targetId = '';
    #received = '';

    constructor({ hasWindow = false, options = [] } = {}) {
        this.hasWindow = hasWindow;
        this.#process = spawn('chromium', [
            ...(hasWindow ? ['--ozone-platform=x11'] : ['--headless=new', '--hide-scrollbars']),
            '--no-sandbox', '--remote-debugging-pipe', `--user-data-dir=${this.#profile}`, '--disable-gpu',
            '--disable-dev-shm-usage', '--no-first-run', ...options,
        ], { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
        this.#process.stdio[4].setEncoding('utf8').on('data', text => this.#receive(text));
        this.#process.on('exit', () => this.#calls.forEach(({ reject }) => reject(new Error('Chromium has exited'))));
    }

    send(method, params = {}, sessionId) {
        const id = ++this.#lastId;
        this.#process.stdio[3].write(`${JSON.stringify({ id, method, params, sessionId })}\0`);
        return new Promise((resolve, reject) => this.#calls.set(id, { resolve, reject, method }));
    }

    /** Opens a page and closes the previous one. */
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
        const exited = new Promise(resolve => this.#process.once('exit', resolve));
        this.#process.kill('SIGTERM');
        await exited;
        // Fails while a process of Chromium still writes to the profile.
        const removeProfile = () => rm(this.#profile, { recursive: true, force: true }).then(() => true, () => false);
        await waitFor(removeProfile, 'all processes of Chromium exit');
    }

    #receive(text) {
        const messages = (this.#received + text).split('\0');
        this.#received = messages.pop() ?? '';
        for (const message of messages) this.#take(JSON.parse(message));
    }

    #take(message) {
        const call = this.#calls.get(message.id);
        this.#calls.delete(message.id);
        if (!call) this.listeners.forEach(listen => listen(message));
        else if (message.error) call.reject(new Error(`${call.method}: ${message.error.message}`));
        else call.resolve(message.result);
    }
}

export class Page {
    /** Uncaught exceptions of the page's scripts, and errors that the browser logged for the page. */
    errors = [];
    #browser;
    #session;

    constructor(browser, session) {
        this.#browser = browser;
        this.#session = session;
        browser.listeners.add(event => event.sessionId === session && this.#listen(event));
    }

    send(method, params = {}) {
        return this.#browser.send(method, params, this.#session);
    }

    async start(url, { width = 1280, language = 'en-GB' }) {
        for (const domain of ['Page', 'Runtime', 'Log', 'DOM']) await this.send(`${domain}.enable`);
        await this.send('Emulation.setUserAgentOverride', { userAgent: 'Mozilla/5.0', acceptLanguage: language });
        const size = { width, height: 800, screenWidth: width, screenHeight: 800 };
        const metrics = { ...size, deviceScaleFactor: 1, mobile: false };
        if (!this.#browser.hasWindow) await this.send('Emulation.setDeviceMetricsOverride', metrics);
        await this.send('Page.navigate', { url });
        await this.until('document.readyState === "complete" && location.href !== "about:blank"');
    }

    /** Hides the page behind another tab. Returns a function that shows it again. */
    async hide() {
        const { targetId } = await this.#browser.send('Target.createTarget', { url: 'about:blank' });
        await this.until('document.hidden');
        return async () => {
            await this.#browser.send('Target.closeTarget', { targetId });
            await this.send('Page.bringToFront');
            await this.until('!document.hidden');
        };
    }

    /** Returns the value of an expression. A promise is awaited. */
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

    /** Sets the value of a field and dispatches a change event, as when a user types and leaves the field. */
    fill(selector, value) {
        return this.evaluate(`{
            const field = document.querySelector(${JSON.stringify(selector)});
            field.value = ${JSON.stringify(value)};
            field.dispatchEvent(new Event('change'));
        }`);
    }

    async choose(selector, ...files) {
        const { root } = await this.send('DOM.getDocument');
        const { nodeId } = await this.send('DOM.querySelector', { nodeId: root.nodeId, selector });
        await this.send('DOM.setFileInputFiles', { nodeId, files });
    }

    #listen({ method, params }) {
        if (method === 'Runtime.exceptionThrown') this.errors.push(params.exceptionDetails.exception?.description);
        if (method === 'Log.entryAdded' && params.entry.level === 'error' && params.entry.source !== 'network')
            this.errors.push(params.entry.text);
    }
}
