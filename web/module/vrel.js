// The engine for programs: start it, send it lines, listen to what it says, put in and take out files, end it.

import {limitLines} from './limits.js';
import {canShare, startRun} from './run.js';
import {startSteps} from './steps.js';

/** @typedef {import('./vrel.d.ts').EngineOptions} EngineOptions */
/** @typedef {import('./vrel.d.ts').Engine} Engine */

const USUAL_HASH = 16;    // megabytes
const PROGRAM_HASH = 64;  // that a program on the command line has

/** Whole lines of what comes in pieces, for whoever listens. The first listener hears what was said before. */
function makeVoice() {
    /** @type {Set<(line: string) => void>} */
    const listeners = new Set();
    /** @type {string[] | null} */
    let unheard = [];
    const decoder = new TextDecoder();
    let rest = '';
    /** @param {string} line */
    const say = line => unheard ? void unheard.push(line) : [...listeners].forEach(listener => listener(line));
    return {
        say,
        /** @param {Uint8Array} bytes */
        hear: bytes => {
            const lines = (rest + decoder.decode(bytes, {stream: true})).split('\n');
            rest = /** @type {string} */ (lines.pop());
            lines.forEach(say);
        },
        /** @param {(line: string) => void} listener */
        listen: listener => {
            listeners.add(listener);
            const lines = unheard ?? [];
            unheard = null;
            lines.forEach(listener);
            return () => void listeners.delete(listener);
        },
    };
}

/** How many threads this machine runs at once. */
const processors = async () =>
    globalThis.navigator?.hardwareConcurrency ?? (await import('node:os')).availableParallelism?.() ?? 4;

/** @param {EngineOptions} [options] @returns {Promise<Engine>} */
export async function startEngine(options = {}) {
    const shared = options.shared !== false && canShare();
    const words = options.arguments ?? [];
    const threads = shared ? Math.max(options.threads ?? 1, 1) : 1;
    const hash = options.hash ?? (words.length > 0 ? PROGRAM_HASH : USUAL_HASH);
    const output = makeVoice(), errors = makeVoice();
    const run = await (shared ? startRun : startSteps)({
        shared, hash, threads, mostThreads: shared ? Math.max(threads, await processors()) : 1,
        files: options.files ?? {},
        arguments: [
            ...(options.hash !== undefined || words.length === 0 ? ['-hash', String(hash)] : []),
            ...(threads > 1 ? ['-threads', String(threads)] : []), ...words,
        ],
        hearOutput: bytes => output.hear(bytes),
        hearError: bytes => errors.hear(bytes),
    });
    const encoder = new TextEncoder();
    return {
        shared,
        ended: run.ended,
        send: line => run.write(encoder.encode(limitLines(line, run.limits, errors.say) + '\n')),
        listen: output.listen,
        listenToErrors: errors.listen,
        writeFile: run.put,
        readFile: run.get,
        end: async () => run.end(),
    };
}
