// The engine as an opponent: asked for one move at a time, and told to forget what it was asked.
import {lineOf} from './talk.js';

/** @typedef {{uci: string, score?: number, depth?: number}} Answer   score in centipawns as the engine sees it */

/** @param {string} line @param {Answer} answer */
function readInfo(line, answer) {
  const score = / score cp (-?\d+)/.exec(line), depth = / depth (\d+)/.exec(line);
  if (!score || !depth || !line.includes(' pv ')) return;
  answer.score = Number(score[1]);
  answer.depth = Number(depth[1]);
}

/** @param {{startEngine: (options: object) => Promise<import('./module/vrel.js').Engine>}} app */
export function createOpponent(app) {
  /** @type {import('./module/vrel.js').Engine | null} */
  let engine = null;
  /** @type {Promise<import('./module/vrel.js').Engine> | null} */
  let starting = null;
  let question = 0;  // the one that is open; answers to earlier ones are dropped
  let searching = false;
  let quiet = Promise.resolve();  // over once the engine has answered what it was told to forget

  async function started() {
    if (engine) return engine;
    starting ||= app.startEngine({hash: 16, threads: 1});
    const mine = starting;
    try {
      const found = await mine;
      if (mine !== starting) throw new Error('ended');
      engine = found;
      return found;
    } catch (error) {
      if (mine === starting) starting = null;
      throw error;
    }
  }

  return {
    /**
     * The engine's move, null if it was abandoned; fails if there is no engine or it ends while it thinks.
     * @param {string} position the line of UCI @param {string} limits behind `go`
     * @param {(depth: number) => void} progress
     * @returns {Promise<Answer | null>}
     */
    async think(position, limits, progress = () => {}) {
      const mine = ++question;
      const asked = await started().catch(error => { if (mine === question) throw error; return null; });
      await quiet;
      if (!asked || mine !== question) return null;
      /** @type {Answer} */
      const answer = {uci: ''};
      searching = true;
      asked.send(position);
      const end = lineOf(asked, 'bestmove', line => {
        readInfo(line, answer);
        if (mine === question && answer.depth) progress(answer.depth);
      });
      asked.send(`go ${limits}`);
      const line = await end;
      if (mine !== question) return null;
      searching = false;
      if (line === null) {
        engine = starting = null;
        throw new Error('the engine has ended');
      }
      answer.uci = line.split(' ')[1];
      return answer;
    },

    /** Forgets the open question. A late stop is answered again, so the engine is asked whether it is ready. */
    abandon() {
      ++question;
      if (!searching || !engine) return;
      searching = false;
      const asked = engine;
      quiet = (async () => {
        const answer = lineOf(asked, 'bestmove');
        asked.send('stop');
        await answer;
        const ready = lineOf(asked, 'readyok');
        asked.send('isready');
        await ready;
      })();
    },

    /** Ends the engine and gives its memory back; the next question starts another one. */
    end() {
      ++question;
      searching = false;
      quiet = Promise.resolve();
      const gone = engine, late = starting;
      engine = starting = null;
      if (gone) gone.end();
      else late?.then(found => found.end(), () => {});
    },
  };
}
