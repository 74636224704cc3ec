// The engine for programs: start it, send it lines, listen to what it says, put in and take out files, end it.

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
    return {
        /** @param {string} line */
        say: line => unheard ? void unheard.push(line) : [...listeners].forEach(listener => listener(line)),
        /** @param {Uint8Array} bytes @param {(line: string) => void} use */
        hear: (bytes, use) => {
            const lines = (rest + decoder.decode(bytes, {stream: true})).split('\n');
            rest = /** @type {string} */ (lines.pop());
            lines.forEach(use);
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

/**
 * A line as it can be met: what asks for more threads or a larger table than there can be asks for what there is, with
 * a word about it.
 * @param {string} line @param {{shared: boolean, mostHash: number}} limits @param {(word: string) => void} complain
 */
function withinLimits(line, limits, complain) {
    const [, start, name, value] = /^(\s*setoption\s+name\s+(Hash|Threads)\s+value\s+)(\d+)\s*$/.exec(line) ?? [];
    const most = name === 'Hash' ? limits.mostHash : name === 'Threads' && !limits.shared ? 1 : Infinity;
    if (!(Number(value) > most))
        return line;
    complain(`${name} ${value}: there is room for ${most}`);
    return start + most;
}

/** @param {EngineOptions} [options] @returns {Promise<Engine>} */
export async function startEngine(options = {}) {
    const shared = options.shared !== false && canShare();
    const words = options.arguments ?? [];
    const threads = shared ? Math.max(options.threads ?? 1, 1) : 1;
    const hash = options.hash ?? (words.length > 0 ? PROGRAM_HASH : USUAL_HASH);
    const output = makeVoice(), errors = makeVoice();
    const run = await (shared ? startRun : startSteps)({
        shared, hash, threads, files: options.files ?? {},
        arguments: limits => [
            ...(options.hash !== undefined || words.length === 0 ? ['-hash', String(Math.min(hash, limits.mostHash))] : []),
            ...(threads > 1 ? ['-threads', String(threads)] : []), ...words,
        ],
        hearOutput: bytes => output.hear(bytes, output.say),
        hearError: bytes => errors.hear(bytes, errors.say),
    });
    if (run.mostHash < hash)
        errors.say(`Hash ${hash}: there is room for ${run.mostHash}`);
    const encoder = new TextEncoder();
    return {
        shared,
        ended: run.ended,
        send: line => run.write(encoder.encode(withinLimits(line, {shared, mostHash: run.mostHash}, errors.say) + '\n')),
        listen: output.listen,
        listenToErrors: errors.listen,
        writeFile: run.put,
        readFile: run.get,
        end: async () => run.end(),
    };
}
