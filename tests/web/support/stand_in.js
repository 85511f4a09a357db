import { readFile } from 'node:fs/promises';
import { createServer } from 'node:http';
import { extname } from 'node:path';

const folder = new URL('../../../web/', import.meta.url);
const types = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.svg': 'image/svg+xml' };

/** Serves the pages, and answers the API's paths with what `answers` has for their beginning: an object or a function. */
export class StandIn {
    /** Paths of the API that were asked for. */
    asked = [];
    #server = createServer((request, response) => this.#answer(request.url, response));

    constructor(answers) {
        this.answers = answers;
    }

    async listen() {
        await new Promise(done => this.#server.listen(0, '127.0.0.1', done));
        this.address = `http://127.0.0.1:${this.#server.address().port}`;
        return this;
    }

    close() {
        this.#server.closeAllConnections();
        this.#server.close();
    }

    async #answer(path, response) {
        const key = Object.keys(this.answers).find(beginning => path.startsWith(beginning));
        if (!key) return this.#sendFile(path === '/' ? 'index.html' : path.slice(1), response);
        this.asked.push(path);
        const answer = this.answers[key];
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
