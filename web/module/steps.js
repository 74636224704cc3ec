// The build without threads, where the engine's worker hears nothing while it searches. Lines are given to it one by
// one, each when the one before is done with. What is to end a search ends the worker; the reply is the last line that
// the search has shown, and another worker goes on with the same options and position.

import {startRun} from './run.js';

/** @typedef {import('./run.js').Run} Run */
/** @typedef {import('./run.js').RunOptions} RunOptions */

const PATIENCE = 100;  // milliseconds

// Lines that end a search.
const ENDING = /^\s*(stop|quit|go|ponderhit|ucinewgame|setoption\s+name\s+(Hash|Threads|Clear Hash))\b/;

/** @param {RunOptions} options @returns {Promise<Run>} */
export async function startSteps(options) {
    const encoder = new TextEncoder(), decoder = new TextDecoder();
    /** @param {string} line */
    const say = line => options.hearOutput?.(encoder.encode(line + '\n'));

    // What another worker has to know: files that were put in, options by name, the position.
    const files = {...options.files};
    /** @type {Map<string, string>} */
    const known = new Map();
    let console = false;

    /** What waits for its turn: lines, and questions about files. @type {(string | ((run: Run) => Promise<any>))[]} */
    const queue = [];
    /** What the engine is busy with, empty for nothing. */
    let busy = '';
    let muted = false, over = false;
    let heard = '', best = '';
    /** @type {Run} */
    let run = /** @type {any} */ (null);
    /** @type {(status: number) => void} */
    let tellEnd = () => {};
    const ended = new Promise(resolve => { tellEnd = resolve; });

    /** @param {Uint8Array} bytes */
    const hear = bytes => {
        if (muted)
            return;
        options.hearOutput?.(bytes);
        const lines = (heard + decoder.decode(bytes, {stream: true})).split('\n');
        heard = /** @type {string} */ (lines.pop());
        for (const line of lines) {
            const [, move, ponder] = /^info .*\bpv (\S+)(?: (\S+))?/.exec(line) ?? [];
            if (move && isSearch())
                best = `bestmove ${move}${ponder ? ` ponder ${ponder}` : ''}`;
            if (line.startsWith('bestmove'))
                busy = 'coming to rest';
        }
        lookBehind();
    };
    /** How many answers the present worker owes: one for its start, one for each line. @type {{owed: number}} */
    let worker = {owed: 0};
    /** @type {(() => void) | null} */
    let rested = null;
    const start = async () => {
        const lines = [...known.values()];
        const mine = worker = {owed: 1 + lines.length};
        const idle = new Promise(resolve => { rested = () => resolve(undefined); });
        const hearRest = () => {
            if (--mine.owed === 0 && mine === worker)
                rest();
        };
        run = await startRun({...options, files, hearOutput: hear, hearRest});
        void run.ended.then(status => {
            if (mine === worker)
                finish(status);
        });
        lines.forEach(give);
        await Promise.race([idle, run.ended]);
        rested = null;
    };
    /** @param {string} line */
    const give = line => void run.write(encoder.encode(line));
    /** @param {number} status */
    const finish = status => {
        over = true;
        tellEnd(status);
    };
    /** The worker is done with what it was given. */
    const rest = () => {
        busy = '';
        if (rested)
            rested();
        else
            next();
    };

    /** @param {string} line */
    const remember = line => {
        const [, name] = /^\s*setoption\s+name\s+(.*?)\s+value\b/.exec(line) ?? [];
        const word = /^\s*(\S*)/.exec(line)?.[1] ?? '';
        if (name)
            known.set(name, line);
        else if (word === 'uci' || word === 'position')
            known.set(word, line);
    };

    const next = () => {
        if (busy || muted || over)
            return;
        const task = queue.shift();
        if (task === undefined)
            return;
        if (typeof task === 'string') {
            busy = task;
            best = '';
            remember(task);
            ++worker.owed;
            give(task);
            lookBehind();
        } else {
            busy = 'files';
            void task(run).finally(rest);
        }
    };

    /** Ends the search under way, with its reply if `tells`. @param {boolean} tells */
    const endSearch = async tells => {
        worker = {owed: 0};
        run.end();
        muted = true;
        busy = heard = '';
        if (tells && best)
            say(best);
        else if (tells)
            queue.unshift('go depth 1\n');
        await start();
        muted = false;
        next();
    };

    const isSearch = () => !console && /^\s*go\b/.test(busy);

    /** Ends the search under way if a line that waits wants it. Its first line is waited for, but not for long. */
    const lookBehind = (patient = true) => {
        const place = queue.findIndex(task => typeof task === 'string' && ENDING.test(task));
        if (!isSearch() || muted || over || place < 0)
            return;
        const word = /^\s*(\S+)/.exec(String(queue[place]))?.[1];
        if (word === 'quit') {
            end();
        } else if (word === 'ponderhit') {
            queue.splice(place, 1);
            if (!/\bponder\b/.test(busy))
                return;
            queue.unshift(busy.replace(/\bponder\b/, ''));
            void endSearch(false);
        } else if (patient && !best) {
            const line = busy;
            setTimeout(() => busy === line && lookBehind(false), PATIENCE);
        } else {
            if (word === 'stop')
                queue.splice(place, 1);
            void endSearch(true);
        }
    };
    const end = () => {
        worker = {owed: 0};
        run.end();
        finish(0);
    };

    /** @param {string} line with its end */
    const take = line => {
        if (/^\s*uci\s*$/.test(line))
            console = false;
        queue.push(line);
        if (busy)
            lookBehind();
        else
            next();
    };

    console = options.arguments.includes('-c');
    await start();
    return {
        write: bytes => take(decoder.decode(bytes)),
        endInput: () => {},
        ended,
        limits: run.limits,
        put: (name, contents) => ask(async current => {
            files[name] = contents;
            await current.put(name, contents);
        }),
        get: name => ask(current => current.get(name)),
        end,
    };

    /** @param {(run: Run) => Promise<any>} question */
    function ask(question) {
        return new Promise((resolve, reject) => {
            /** @param {Run} current */
            const task = current => question(current).then(resolve, reject);
            if (over) {
                void task(run);
            } else {
                queue.push(task);
                next();
            }
        });
    }
}
