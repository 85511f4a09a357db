import { once } from 'node:events';
import { readFile } from 'node:fs/promises';
import { createServer } from 'node:http';
import { extname } from 'node:path';

const folder = new URL('../../../web/', import.meta.url);
const root = '/api/v1/';

const types = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.svg': 'image/svg+xml' };

/** Returns the answer for a request that is refused. */
export const problem = (status, detail) => ({ status, type: 'application/problem+json', body: { title: 'No', status, detail } });

/**
 * A server for the pages, with a fake API for programs. A stream gets the `state` first, and then the events of send().
 * `answers` maps a method and a resource, for example "POST recording", to an answer: `status` and `body`.
 */
export class FakeService {
    state = {
        run: 'run', time: Date.now(), trackers: ['gazepoint', 'eyetech'], calibration: { running: false, last: null },
        tracker: { name: 'gazepoint', connected: true, reason: null, lastSampleAgeMs: null, newest: null },
        recordings: [], lastRecording: null,
        screens: [{ number: 1, width: 1920, height: 1080, primary: false }, { number: 2, width: 2560, height: 1440, primary: true }],
    };
    answers = {};
    /** [method, resource with its query, body] of each request to the API. */
    requests = [];
    /** The open streams. */
    streams = new Set();
    #server = createServer((request, response) => this.#answer(request, response));

    get address() {
        return `http://127.0.0.1:${this.#server.address().port}`;
    }

    async listen() {
        await new Promise(done => this.#server.listen(0, '127.0.0.1', done));
        return this;
    }

    close() {
        this.#server.closeAllConnections();
        this.#server.close();
    }

    /** Changes the state and sends it to all streams. */
    setState(change) {
        Object.assign(this.state, change, { time: Date.now() });
        this.send('state', this.state);
    }

    /** Sends an event to all streams. */
    send(name, data, id = '') {
        const idLine = id && `id: ${id}\n`;
        for (const stream of this.streams) stream.write(`${idLine}event: ${name}\ndata: ${JSON.stringify(data)}\n\n`);
    }

    /** Sends what `samplesOf` returns for the time since the last call, until the returned function is called. */
    feed(samplesOf) {
        let fromMs = Date.now() - 2000;
        const timer = setInterval(() => {
            const toMs = Date.now();
            const samples = samplesOf(fromMs, toMs);
            fromMs = toMs;
            if (samples.length > 0) this.send('samples', samples, `run:${samples[samples.length - 1].number}`);
            this.setState({});
        }, 100);
        return () => clearInterval(timer);
    }

    async #answer(request, response) {
        const { method, url } = request;
        if (!url.startsWith(root)) return this.#sendFile(url.replace(/\?.*/, '').replace(/\/$/, '/index.html').slice(1), response);
        const resource = url.slice(root.length);
        let text = '';
        request.on('data', chunk => { text += chunk; });
        await once(request, 'end');
        this.requests.push([method, resource, text && JSON.parse(text)]);
        const { status = 200, body = {}, type = 'application/json' } = this.answers[`${method} ${resource.replace(/\?.*/, '')}`] ?? {};
        if (resource.startsWith('stream?') && status === 200) return this.#openStream(response);
        response.writeHead(status, { 'Content-Type': type }).end(typeof body === 'string' ? body : JSON.stringify(body));
    }

    #openStream(response) {
        response.writeHead(200, { 'Content-Type': 'text/event-stream' });
        this.streams.add(response);
        response.on('close', () => this.streams.delete(response));
        this.setState({});
    }

    async #sendFile(name, response) {
        try {
            const content = await readFile(new URL(name, folder));
            response.setHeader('Content-Type', types[extname(name)]);
            response.end(content);
        } catch {
            response.writeHead(404).end();
        }
    }
}
