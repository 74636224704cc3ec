// The engine as an analyser: one search at a time, each told to end before the next begins.
import {lineOf} from './talk.js';

/** @typedef {import('./module/vrel.js').Engine} Engine */
/**
 * A line of the engine: `rank` from 0 for the best, the score in centipawns as the side to move sees it, moves in
 * coordinates.
 * @typedef {{rank: number, depth: number, score: number, nodes: number, nps: number, moves: string[]}} Found
 */
/** @typedef {{threads: number, hash: number, lines: number}} Settings */

const WHAT_FAILS = 'The engine couldn’t get the memory that was asked for.';

/** @param {string} line of the engine @returns {Found | null} */
export function readFound(line) {
  const pv = line.indexOf(' pv ');
  if (!line.startsWith('info ') || pv < 0) return null;
  const number = (/** @type {string} */ name) => Number((new RegExp(` ${name} (-?\\d+)`).exec(line) || [])[1] || 0);
  return {rank: Math.max(0, number('multipv') - 1), depth: number('depth'), score: number('score cp'),
          nodes: number('nodes'), nps: number('nps'), moves: line.slice(pv + 4).trim().split(' ')};
}

/**
 * @param {(options: object) => Promise<Engine>} start
 */
export function createAnalyser(start) {
  /** @type {Engine | null} */
  let engine = null;
  let number = 0;      // of the search that is wanted; what belongs to earlier ones is dropped
  let running = false; // an answer is owed
  /** @type {Settings | null} */
  let inForce = null;
  /** @type {Promise<unknown>} */
  let chain = Promise.resolve();

  // A stop that comes too late is answered once more; nothing of that is left when the sign of life comes.
  async function stopSearch() {
    if (!engine || !running) return;
    running = false;
    const answer = lineOf(engine, 'bestmove');
    engine.send('stop');
    if (await answer === null || !engine) return;
    const ready = lineOf(engine, 'readyok');
    engine.send('isready');
    await ready;
  }

  async function drop() {
    const gone = engine;
    engine = inForce = null;
    running = false;
    await gone?.end();
  }

  /** @param {Settings} settings */
  async function prepare(settings) {
    const {threads, hash, lines} = settings;
    // Table and threads are asked for at the start, when there is most to be had.
    if (engine && (inForce.threads !== threads || inForce.hash !== hash)) await drop();
    if (!engine) {
      const started = await start({threads, hash});
      engine = started;
      started.ended.then(() => { if (engine === started) engine = inForce = null; });
      const ready = lineOf(engine, 'readyok');
      for (const [name, value] of [['Hash', hash], ['Threads', threads]]) started.send(`setoption name ${name} value ${value}`);
      started.send('isready');
      if (await ready === null) throw new Error(WHAT_FAILS);
      inForce = {threads, hash, lines: 1};
    }
    if (inForce.lines !== lines) engine.send(`setoption name MultiPV value ${lines}`);
    inForce.lines = lines;
  }

  const analyser = {
    /** @type {() => boolean} */
    shared: () => engine ? engine.shared : false,

    /**
     * Searches in place of whatever is searched, and hands on each line that is found. True when it has ended by
     * itself, false if another search or the end has taken its place. Fails if the engine can't be had.
     * @param {string} position behind UCI's `position` @param {string} limits behind `go`
     * @param {Settings} settings @param {(found: Found) => void} found
     * @param {boolean} afresh nothing of earlier searches is used
     */
    search(position, limits, settings, found, afresh = false) {
      const mine = ++number;
      const search = chain.then(async () => {
        await stopSearch();
        if (mine !== number) return null;
        await prepare(settings);
        if (mine !== number) return null;
        if (afresh) engine.send('ucinewgame');
        engine.send(`position ${position}`);
        running = true;
        const end = lineOf(engine, 'bestmove', line => {
          const each = mine === number ? readFound(line) : null;
          if (each) found(each);
        });
        engine.send(`go ${limits}`);
        return {end};
      });
      chain = search.catch(() => {});
      return search.then(async begun => {
        const line = begun && await begun.end;
        if (!begun || mine !== number) return false;
        if (line === null) throw new Error('The engine has ended.');
        running = false;
        return true;
      });
    },

    /** Ends the search; the engine stays for the next one. */
    stop() {
      ++number;
      chain = chain.then(stopSearch).catch(() => {});
    },

    /** Ends the engine and gives its memory back. */
    end() {
      ++number;
      const gone = engine;
      engine = inForce = null;
      running = false;
      gone?.end();
      chain = chain.then(drop).catch(() => {});
    },
  };
  return analyser;
}
