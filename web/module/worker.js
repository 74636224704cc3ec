// One thread of the engine. It waits for a message that tells what to do: be the main thread, one that searches, or one
// that puts in and takes out files while the main thread is busy.

import {endInput, nextPiece, writeInput} from './queue.js';

const inNode = typeof process === 'object' && Boolean(process.versions?.node);
/** @type {any} */
const node = inNode ? await import('./node.js') : null;
const port = node ? node.port : self;

/** @param {any} message */
const tell = message => port.postMessage(message);

class Ended {
    /** @param {number} status */
    constructor(status) { this.status = status; }
}
const FIRST_PAGES = 128;
const LEFT = Symbol('the engine waits for input');

/** @type {WebAssembly.Memory} */
let memory;
/** @type {any} */
let engine;
/** @type {import('./queue.js').Queue} */
let queue;
let stack = 0;
let over = false;
/** Hears of a thread that has been made. @param {any} thread */
let hearThread = thread => tell({thread});

// Addresses come as signed numbers.
/** @param {number} address @param {number} size */
const bytesAt = (address, size) => new Uint8Array(memory.buffer, address >>> 0, size);
/** @param {number} address @param {number} [count] */
const wordsAt = (address, count = 1) => new Uint32Array(memory.buffer, address >>> 0, count);

/** A text that ends with a zero. @param {number} address */
function textAt(address) {
    const bytes = new Uint8Array(memory.buffer, address >>> 0);
    return new TextDecoder().decode(bytes.slice(0, bytes.indexOf(0)));
}

/** @param {Uint8Array | string} contents */
const bytesOf = contents => typeof contents === 'string' ? new TextEncoder().encode(contents) : contents;

/** Space in the engine's memory for so many bytes and one more. @param {number} size */
function reserved(size) {
    const address = engine.reserve(size);
    if (address === 0)
        throw new RangeError('no memory for so many bytes');
    return address;
}

/** Space with these bytes and a zero behind them. @param {Uint8Array | string} contents */
function place(contents) {
    const bytes = bytesOf(contents);
    const address = reserved(bytes.length);
    bytesAt(address, bytes.length + 1).set(bytes);
    bytesAt(address + bytes.length, 1)[0] = 0;
    return address;
}

/** @param {string} name @param {Uint8Array | string} contents */
function putFile(name, contents) {
    const bytes = bytesOf(contents);
    const [nameAt, contentsAt] = [place(name), place(bytes)];
    engine.putFile(nameAt, contentsAt, bytes.length);
    engine.discard(nameAt);
    engine.discard(contentsAt);
}

/** @param {string} name */
function getFile(name) {
    const nameAt = place(name);
    const size = engine.fileSize(nameAt);
    let bytes = null;
    if (size >= 0) {
        const space = reserved(size);
        bytes = bytesAt(space, engine.getFile(nameAt, space, size)).slice();
        engine.discard(space);
    }
    engine.discard(nameAt);
    return bytes;
}

/** What the engine asks of its host. @param {any} start */
function hostOf(start) {
    const drift = performance.timeOrigin - start.origin;
    return {
        seconds: () => (performance.now() + drift) / 1000,
        seed: () => Math.random() * 2 ** 32 | 0,
        isTerminal: stream => Boolean(start.terminals?.[stream]),
        write: (address, size) => {
            const bytes = bytesAt(address, size);
            if (start.direct)
                return node.write(1, bytes);
            tell({output: bytes.slice(), piece: nextPiece(queue)});
            return true;
        },
        takeMore: () => tell({takesMore: true}),
        leave: () => { throw LEFT; },
        ...(start.direct ? node.files(() => memory, textAt) : noFiles),
    };
}

const noFiles = {
    lendsFiles: () => false, open: () => -1, close: () => {}, readAt: () => -1, writeAt: () => -1, cutTo: () => -1,
    sizeOf: () => -1, exists: () => false, stamp: () => false, remove: () => -1, rename: () => -1, claim: () => -1,
    release: () => {},
};

/** What the compiler's library asks of its surroundings. @param {any} start */
function libraryOf(start) {
    const end = status => { throw new Ended(status); };
    const refuse = () => 0;
    const env = {
        memory,
        abort: () => { throw new Error('the engine has given up'); },
        exit: end,
        emscripten_unwind_to_js_event_loop: () => { throw LEFT; },
        emscripten_get_now: () => performance.now(),
        emscripten_memcpy_big: (to, from, size) => bytesAt(to, size).set(bytesAt(from, size)),
        emscripten_check_blocking_allowed: refuse,
        emscripten_resize_heap: size => {
            try {
                memory.grow(Math.ceil(((size >>> 0) - memory.buffer.byteLength) / 65536));
                return 1;
            } catch {
                return 0;
            }
        },
        _emscripten_default_pthread_stack_size: () => 1 << 20,
        __emscripten_init_main_thread_js: thread => engine._emscripten_thread_init(thread, 0, 1, 1, 0),
        __pthread_create_js: (thread, _attributes, body, argument) => {
            hearThread({thread, body, argument, stack: engine.stackTop(thread)});
            return 0;
        },
        __emscripten_thread_cleanup: refuse,
    };
    const wasi = {
        proc_exit: end,
        // Only standard error is written in this way.
        fd_write: (stream, pieces, count, written) => {
            let total = 0;
            const table = wordsAt(pieces, 2 * count);
            for (let i = 0; i < 2 * count; i += 2) {
                const bytes = bytesAt(table[i], table[i + 1]);
                if (start.direct)
                    node.write(stream, bytes);
                else if (bytes.length > 0)
                    tell({error: bytes.slice()});
                total += bytes.length;
            }
            wordsAt(written)[0] = total;
            return 0;
        },
        environ_sizes_get: (count, size) => {
            wordsAt(count)[0] = wordsAt(size)[0] = 0;
            return 0;
        },
    };
    return {env, wasi};
}

/** An instance of the engine's code in this thread. @param {any} start */
function instantiate(start) {
    memory = start.memory ?? new WebAssembly.Memory({initial: FIRST_PAGES, maximum: start.room});
    const {env, wasi} = libraryOf(start);
    const rest = functions => new Proxy(functions, {get: (all, name) => all[name] ?? (() => 0)});
    const instance = new WebAssembly.Instance(start.module, {
        host: hostOf(start), env: rest(env), wasi_snapshot_preview1: rest(wasi),
    });
    engine = instance.exports;
    queue = {memory, address: engine.input()};
}

/** Runs a part of the engine's life and tells its end. @param {() => number} part */
function live(part) {
    let status = 0;
    try {
        status = part();
        engine.flush();
    } catch (reason) {
        if (reason === LEFT) {
            engine.stackRestore(stack);
            return;
        }
        if (!(reason instanceof Ended))
            throw reason;
        status = reason.status;
    }
    over = true;
    tell({ended: status});
}

/** A thread for the worker that does files while the engine is at work here. */
function threadForClerk() {
    const hear = hearThread;
    let clerk = null;
    hearThread = thread => { clerk = thread; };
    engine.prepareThread?.();
    hearThread = hear;
    return clerk;
}

/** Makes this thread the one that the engine has prepared. @param {any} thread */
function takeOn({thread, stack}) {
    engine.stackRestore(stack);
    engine._emscripten_thread_init(thread, 0, 0, 1, 0);
    engine.emscripten_tls_init();
}

/** @param {any} start */
function beMain(start) {
    instantiate(start);
    engine.__wasm_call_ctors();
    engine.emscripten_tls_init?.();
    stack = engine.stackSave();
    for (const [name, contents] of Object.entries(start.files ?? {}))
        putFile(name, contents);
    const words = ['vrel', ...start.arguments].map(place);
    const table = engine.reserve(4 * words.length + 4);
    wordsAt(table, words.length + 1).set([...words, 0]);
    tell({input: queue.address, clerk: threadForClerk()});
    live(() => engine.main(words.length, table));
    if (!over)
        tell({resting: true});
}

/** @param {any} start */
function beThread(start) {
    if (!engine)
        instantiate(start);
    const {thread, body, argument} = start.thread;
    takeOn(start.thread);
    if (start.ended)
        engine._emscripten_thread_free_data(start.ended);
    try {
        engine.__indirect_function_table.get(body)(argument);
    } catch (reason) {
        if (reason instanceof Ended)
            tell({ended: reason.status});
        else if (reason !== LEFT)
            throw reason;
        return;
    }
    engine._emscripten_thread_exit(0);
    tell({threadEnded: thread});
}

/**
 * Where the main thread has to come back for its input: gives it what has come, as much at once as there is room for.
 * @param {Uint8Array} bytes @param {boolean} last
 */
function takeInput(bytes, last) {
    do {
        bytes = bytes.subarray(writeInput(queue, bytes));
        if (last && bytes.length === 0)
            endInput(queue);
        live(engine.resume);
    } while (bytes.length > 0 && !over);
    if (!over)
        tell({resting: true});
}

/** @param {any} message */
function receive(message) {
    if (message.start === 'main')
        beMain(message);
    else if (message.start === 'thread')
        beThread(message);
    else if (message.start === 'spare')
        instantiate(message);
    else if (message.start === 'clerk') {
        instantiate(message);
        takeOn(message.thread);
    } else if (message.input)
        takeInput(message.input, message.last);
    else if (message.put !== undefined) {
        putFile(message.put, message.contents);
        tell({answer: message.question});
    } else if (message.get !== undefined) {
        tell({answer: message.question, contents: getFile(message.get)});
    }
}

if (node)
    node.port.on('message', receive);
else
    self.onmessage = event => receive(event.data);
