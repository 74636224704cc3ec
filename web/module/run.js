// One run of the engine's program, in workers of its own, in browsers and under Node.

import {limitWords} from './limits.js';
import {endInput, writeInput} from './queue.js';

/** @typedef {import('./limits.js').Limits} Limits */

const inNode = typeof process === 'object' && Boolean(process.versions?.node);
const MEGABYTE = 1 << 20, PAGE = 65536;

// Megabytes beside the table: the program itself, and what each thread has.
const ROOM = 24, ROOM_OF_THREAD = 3;
const MOST_HASH = 2000;  // megabytes: the allocator of the library gives no block of 2048

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

/** A worker of the same manner in both worlds; a program stays for those that are held. @typedef {{post: (message: any) => void, end: () => void, hold: (stays: boolean) => void}} Helper */

/** @param {(message: any, helper: Helper) => void} receive @param {(error: any) => void} fail @returns {Promise<Helper>} */
async function startHelper(receive, fail) {
    const url = new URL('worker.js', import.meta.url);
    if (inNode) {
        const {Worker} = await import('node:worker_threads');
        const worker = new Worker(url);
        const helper = {
            post: message => worker.postMessage(message), end: () => void worker.terminate(),
            hold: stays => stays ? worker.ref() : worker.unref(),
        };
        worker.on('message', message => receive(message, helper));
        worker.on('error', fail);
        return helper;
    }
    const worker = new Worker(url, {type: 'module'});
    const helper = {post: message => worker.postMessage(message), end: () => worker.terminate(), hold: () => {}};
    worker.onmessage = event => receive(event.data, helper);
    worker.onerror = event => fail(new Error(event.message || 'its worker can’t be loaded'));
    return helper;
}

/** Whether threads can share memory here. */
export const canShare = () =>
    typeof SharedArrayBuffer === 'function' && (inNode || globalThis.crossOriginIsolated === true);

/**
 * Memory for the engine, of which no more is asked for than it may need: some systems refuse a large bound. Half of it
 * is tried where it is refused. It has its whole size from the start, of which a system gives what is used: of memory
 * that grows while other threads run these may not hear in time.
 * @param {number} megabytes
 */
function claimMemory(megabytes) {
    for (let most = megabytes; ; most = Math.floor(most / 2)) {
        try {
            const pages = most * MEGABYTE / PAGE;
            const memory = new WebAssembly.Memory({initial: pages, maximum: pages, shared: true});
            return {memory, most};
        } catch (error) {
            if (most < 2 * ROOM)
                throw error;
        }
    }
}

/**
 * What a run is started with. Without `direct`, which is for programs on a command line, standard streams are the two
 * listeners and files are in memory. There is room for a table of `hash` megabytes and `mostThreads` threads.
 * @typedef {{shared: boolean, arguments: string[], files: Record<string, Uint8Array | string>, hash: number,
 *            threads: number, mostThreads: number, direct?: boolean, terminals?: boolean[], hearOutput?: (bytes: Uint8Array) => void,
 *            hearError?: (bytes: Uint8Array) => void, hearRest?: () => void}} RunOptions
 */

/**
 * A run: `write` gives it bytes of its standard input, `endInput` tells that no more will come.
 * @typedef {{write: (bytes: Uint8Array) => void, endInput: () => void, ended: Promise<number>, limits: Limits,
 *            put: (name: string, contents: Uint8Array | string) => Promise<void>,
 *            get: (name: string) => Promise<Uint8Array | null>, end: () => void}} Run
 */

/** @param {RunOptions} options @returns {Promise<Run>} */
export async function startRun(options) {
    const {shared, hash, threads, mostThreads} = options;
    const module = await compiled(shared ? 'vrel.wasm' : 'vrel-single.wasm');
    const room = Math.min(hash, MOST_HASH) + ROOM + ROOM_OF_THREAD * mostThreads;
    const {memory, most} = shared ? claimMemory(room) : {memory: undefined, most: room};
    const common = {
        module, memory, room: most * MEGABYTE / PAGE, origin: performance.timeOrigin, direct: options.direct,
        terminals: options.terminals,
    };

    const limits = {Hash: Math.max(most - ROOM - ROOM_OF_THREAD * mostThreads, 1), Threads: mostThreads};
    /** @param {string} word */
    const complain = word => options.hearError?.(new TextEncoder().encode(word + '\n'));

    /** @type {Helper[]} */
    const helpers = [];
    /** @type {Helper[]} */
    const idle = [];
    /** @type {import('./queue.js').Queue | null} */
    let queue = null;
    let over = false;
    /** @type {(status: number) => void} */
    let tellEnd = () => {};
    const ended = new Promise(resolve => { tellEnd = resolve; });
    /** @type {() => void} */
    let tellStart = () => {};
    /** @type {(error: any) => void} */
    let tellFailure = () => {};
    const started = new Promise((resolve, reject) => { tellStart = () => resolve(undefined); tellFailure = reject; });

    /** @param {any} error */
    const fail = error => {
        if (over)
            return;
        tellFailure(error);
        complain(`the engine has failed: ${error?.message ?? error}`);
        finish(1);
    };

    /** @param {number} status */
    const finish = status => {
        over = true;
        tellEnd(status);
        // Files may still be asked for, but no program has to stay for that.
        for (const helper of helpers)
            if (shared)
                helper.end();
            else
                helper.hold(false);
        clerk = null;
    };

    // Pieces of output come from several workers, and are handed on in the order in which they were written.
    /** @type {Map<number, Uint8Array>} */
    const pieces = new Map();
    let next = 0;
    /** @param {number} piece @param {Uint8Array} bytes */
    const hear = (piece, bytes) => {
        pieces.set(piece, bytes);
        for (let text; (text = pieces.get(next)) !== undefined; ++next) {
            pieces.delete(next);
            options.hearOutput?.(text);
        }
    };

    /** @type {Uint8Array[]} */
    let heldBack = [];
    const writeHeldBack = () => {
        while (queue !== null && heldBack.length > 0) {
            const count = writeInput(queue, heldBack[0]);
            if (count < heldBack[0].length) {
                heldBack[0] = heldBack[0].subarray(count);
                return;
            }
            heldBack.shift();
        }
        if (queue !== null && inputIsOver)
            endInput(queue);
    };
    let inputIsOver = false;

    /** @type {Map<number, (contents: Uint8Array | null) => void>} */
    const questions = new Map();
    let asked = 0;

    // The main thread sees no message while the engine runs in it; a worker of its own does files meanwhile.
    /** @type {Promise<Helper> | null} */
    let clerk = null;
    /** @type {any} */
    let clerkThread = null;
    /** @type {number[]} */
    const threadsEnded = [];

    /** @param {any} thread */
    const startThread = async thread => {
        const helper = idle.pop() ?? await newHelper();
        helper.post({...common, start: 'thread', thread, ended: threadsEnded.pop()});
    };

    /** @param {any} message @param {Helper} helper */
    const receive = (message, helper) => {
        if (message.output)
            hear(message.piece, message.output);
        else if (message.error)
            options.hearError?.(message.error);
        else if (message.resting)
            options.hearRest?.();
        else if (message.takesMore)
            writeHeldBack();
        else if (message.thread)
            startThread(message.thread).catch(fail);
        else if (message.threadEnded) {
            threadsEnded.push(message.threadEnded);
            idle.push(helper);
        } else if (message.input) {
            if (memory)
                queue = {memory, address: message.input};
            clerkThread = message.clerk;
            tellStart();
            writeHeldBack();
        } else if (message.answer !== undefined) {
            questions.get(message.answer)?.(message.contents ?? null);
            questions.delete(message.answer);
        } else if (message.ended !== undefined)
            finish(message.ended);
    };

    const newHelper = async () => {
        const helper = await startHelper(receive, fail);
        helpers.push(helper);
        return helper;
    };

    const main = await newHelper();
    main.post({...common, start: 'main', arguments: limitWords(options.arguments, limits, complain),
        files: options.files});
    if (shared)
        for (let i = 0; i < threads; ++i) {
            const helper = await newHelper();
            helper.post({...common, start: 'spare'});
            idle.push(helper);
        }

    /** @param {any} question @returns {Promise<Uint8Array | null>} */
    const ask = async question => {
        const helper = shared ? await (clerk ??= newClerk()) : main;
        helper.hold(true);
        const answer = await new Promise(resolve => {
            questions.set(++asked, resolve);
            helper.post({...question, question: asked});
        });
        if (over)
            helper.hold(false);
        return answer;
    };
    const newClerk = async () => {
        const helper = await newHelper();
        helper.post({...common, start: 'clerk', thread: clerkThread});
        return helper;
    };

    await started;
    return {
        write: bytes => {
            if (!shared)
                return main.post({input: bytes});
            heldBack.push(bytes);
            if (heldBack.length === 1)
                writeHeldBack();
        },
        endInput: () => {
            inputIsOver = true;
            if (!shared)
                main.post({input: new Uint8Array(0), last: true});
            else if (heldBack.length === 0)
                writeHeldBack();
        },
        ended,
        limits,
        put: async (name, contents) => void await ask({put: name, contents}),
        get: name => ask({get: name}),
        end: () => {
            finish(0);
            for (const helper of helpers)
                helper.end();
        },
    };
}
