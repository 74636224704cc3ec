// The engine for programs: start it, send it lines, listen to what it says, put in and take out files, end it. Each
// engine runs in workers of its own, in browsers and under Node.

import {endInput, writeInput} from './queue.js';

/** @typedef {import('./vrel.d.ts').EngineOptions} EngineOptions */
/** @typedef {import('./vrel.d.ts').Engine} Engine */

const inNode = typeof process === 'object' && Boolean(process.versions?.node);
const MEGABYTE = 1 << 20, PAGE = 65536;

// Megabytes beside the table: the program itself, and what each thread has.
const ROOM = 24, ROOM_OF_THREAD = 3;
const USUAL_HASH = 16, MOST_HASH = 2048;

/** @type {Record<string, Promise<WebAssembly.Module>>} */
const modules = {};

/** The code of a build, compiled once. @param {string} name */
function compiled(name) {
    modules[name] ??= compile(new URL(name, import.meta.url));
    modules[name].catch(() => delete modules[name]);
    return modules[name];
}

/** @param {URL} url */
async function compile(url) {
    if (inNode) {
        const {readFile} = await import('node:fs/promises');
        return WebAssembly.compile(await readFile(url));
    }
    const response = await fetch(url);
    if (!response.ok)
        throw new Error(`${url}: ${response.status}`);
    return WebAssembly.compile(await response.arrayBuffer());
}

/** A worker of the same manner in both worlds. @typedef {{post: (message: any) => void, end: () => void}} Helper */

/** @param {(message: any, helper: Helper) => void} receive @param {(error: any) => void} fail @returns {Promise<Helper>} */
async function startHelper(receive, fail) {
    const url = new URL('worker.js', import.meta.url);
    if (inNode) {
        const {Worker} = await import('node:worker_threads');
        const worker = new Worker(url);
        const helper = {post: message => worker.postMessage(message), end: () => void worker.terminate()};
        worker.on('message', message => receive(message, helper));
        worker.on('error', fail);
        return helper;
    }
    const worker = new Worker(url, {type: 'module'});
    const helper = {post: message => worker.postMessage(message), end: () => worker.terminate()};
    worker.onmessage = event => receive(event.data, helper);
    worker.onerror = event => fail(event.message || event);
    return helper;
}

/** Whether threads can share memory here. */
export const canShare = () =>
    typeof SharedArrayBuffer === 'function' && (inNode || globalThis.crossOriginIsolated === true);

/**
 * Memory for the engine, of which no more is asked for than it may need: some systems refuse a large bound. Half of it
 * is tried where it is refused.
 * @param {boolean} shared @param {number} megabytes
 */
function claimMemory(shared, megabytes) {
    for (let most = megabytes; ; most = Math.floor(most / 2)) {
        try {
            const memory = new WebAssembly.Memory(
                {initial: 8 * MEGABYTE / PAGE, maximum: most * MEGABYTE / PAGE, shared});
            return {memory, most};
        } catch (error) {
            if (most < 2 * ROOM)
                throw error;
        }
    }
}

/** Hands on whole lines of what comes in pieces. @param {Set<(line: string) => void>} listeners */
function lineReader(listeners) {
    const decoder = new TextDecoder();
    let rest = '';
    return (/** @type {Uint8Array} */ bytes) => {
        const lines = (rest + decoder.decode(bytes, {stream: true})).split('\n');
        rest = /** @type {string} */ (lines.pop());
        for (const line of lines)
            for (const listener of [...listeners])
                listener(line);
    };
}
