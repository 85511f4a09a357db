// @ts-check
/** @import { Validation } from './validation.js' */
// The validations that this browser remembers. All functions reject if the browser refuses access to its storage.

const [databaseName, storeName] = ['ocela', 'validations'];
const version = 1;

/**
 * @template Result
 * @param {IDBRequest<Result>} request
 * @returns {Promise<Result>}
 */
function resultOf(request) {
    return new Promise((resolve, reject) => {
        request.onsuccess = () => resolve(request.result);
        request.onerror = () => reject(request.error);
    });
}

/** @returns {Promise<IDBDatabase>} */
function openDatabase() {
    const request = indexedDB.open(databaseName, version);
    request.onupgradeneeded = () => request.result.createObjectStore(storeName, { keyPath: 'id' });
    return resultOf(request);
}

/**
 * Calls `change` with the store, and resolves when the change is saved.
 *
 * @param {(store: IDBObjectStore) => void} change
 */
async function write(change) {
    const database = await openDatabase();
    try {
        const transaction = database.transaction(storeName, 'readwrite');
        const saved = new Promise((resolve, reject) => {
            transaction.oncomplete = resolve;
            transaction.onabort = () => reject(transaction.error);
        });
        change(transaction.objectStore(storeName));
        await saved;
    } finally {
        database.close();
    }
}

/**
 * @template Result
 * @param {(store: IDBObjectStore) => Promise<Result>} request
 */
async function read(request) {
    const database = await openDatabase();
    try {
        return await request(database.transaction(storeName).objectStore(storeName));
    } finally {
        database.close();
    }
}

/**
 * Stores a validation. It replaces one with the same id.
 *
 * @param {Validation} validation
 */
export function storeValidation(validation) {
    return write(store => store.put(validation));
}

/** @param {string} id */
export function removeValidation(id) {
    return write(store => store.delete(id));
}

export function removeAllValidations() {
    return write(store => store.clear());
}

/**
 * Returns a validation, or undefined if it has been removed, for example in another tab.
 *
 * @param {string} id
 * @returns {Promise<Validation | undefined>}
 */
export function storedValidation(id) {
    return read(store => resultOf(store.get(id)));
}

/**
 * Returns the results of `convert` for all validations. Only one validation at a time is in memory. An entry that cannot
 * be converted is skipped: another version of this page may have stored it.
 *
 * @template Result
 * @param {(validation: Validation) => Result} convert
 */
export function mapValidations(convert) {
    return read(store => new Promise((resolve, reject) => {
        /** @type {Result[]} */
        const results = [];
        const request = store.openCursor();
        request.onerror = () => reject(request.error);
        request.onsuccess = () => {
            const cursor = request.result;
            if (!cursor) return resolve(results);
            try {
                results.push(convert(cursor.value));
            } catch (error) {
                console.warn('An entry of the history cannot be read.', error);
            }
            cursor.continue();
        };
    }));
}
