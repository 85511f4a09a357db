import { readFile } from 'node:fs/promises';
import { createServer } from 'node:http';
import { extname } from 'node:path';

const folder = new URL('../../../web/', import.meta.url);

const types = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.svg': 'image/svg+xml' };

/**
 * A server for the pages and a fake API. `answers` maps the start of a request path to the answer: an object, a function that
 * returns one, or null for status 503.
 */
export class FakeService {
    requests = [];
    #server = createServer((request, response) => this.#answer(request.url, response));

    constructor(answers) {
        this.answers = answers;
    }

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

    async #answer(path, response) {
        const key = Object.keys(this.answers).find(start => path.startsWith(start));
        if (!key) return this.#sendFile(path === '/' ? 'index.html' : path.slice(1), response);
        this.requests.push({ path });
        const answer = this.answers[key];
        if (answer === null) return response.writeHead(503).end();
        response.setHeader('Content-Type', 'text/json; charset=UTF-8');
        response.end(JSON.stringify(typeof answer === 'function' ? answer() : answer));
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
