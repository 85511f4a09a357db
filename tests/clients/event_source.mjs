// A small EventSource for Node, which has none. It does not resume.
globalThis.EventSource = class {
    #listeners = {};
    #abort = new AbortController();

    constructor(url) {
        this.#read(url).catch(error => {
            if (error.name !== 'AbortError') throw error;
        });
    }

    addEventListener(name, listener) {
        this.#listeners[name] = listener;
    }

    close() {
        this.#abort.abort();
    }

    async #read(url) {
        const response = await fetch(url, { signal: this.#abort.signal });
        const decoder = new TextDecoder();
        let rest = '';
        for await (const bytes of response.body) {
            const events = (rest + decoder.decode(bytes, { stream: true })).split('\n\n');
            rest = events.pop();
            events.forEach(event => this.#dispatch(event));
        }
    }

    #dispatch(event) {
        const field = name => new RegExp(`^${name}: (.*)$`, 'm').exec(event)?.[1];
        this.#listeners[field('event')]?.({ data: field('data'), lastEventId: field('id') });
    }
};
