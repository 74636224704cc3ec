// A game: where it starts, its moves, the ply that is shown, its tags, and the scores of its positions. Whoever shows
// something of it subscribes to its changes.
import {boardOf, readFen, START_FEN} from './rules.js';

/** @typedef {import('./rules.js').Move} Move */
/** @typedef {import('./rules.js').ReadGame} ReadGame */

/**
 * A score of a position, in centipawns as white sees it, and the depth of its search if that is known. Scores near
 * 10000 are mates.
 * @typedef {{centipawns: number, depth?: number}} Score
 */

/**
 * What has changed: all of it ("game"), the moves, the ply shown, scores and marks, the tags.
 * @typedef {'game' | 'moves' | 'ply' | 'scores' | 'tags'} Change
 */

/** @typedef {{fen: string, moves: {uci: string, text: string, fen: string}[], ply: number, tags: Record<string, string>, scores: (Score | null)[], doubtful: number[]}} SavedGame */

const SEVEN = ['Event', 'Site', 'Date', 'Round', 'White', 'Black', 'Result'];
const WIDTH = 80;  // of a line of PGN

/** @param {string} uci @param {string} text @param {string} fen @returns {Move} */
const moveOf = (uci, text, fen) => {
  const index = (/** @type {string} */ name) => (8 - Number(name[1])) * 8 + 'abcdefgh'.indexOf(name[0]);
  return {uci, text, from: index(uci.slice(0, 2)), to: index(uci.slice(2, 4)), promotion: uci.slice(4), fen};
};

/** Tokens in lines. @param {string[]} tokens */
function wrap(tokens) {
  const lines = [''];
  for (const token of tokens) {
    const line = lines[lines.length - 1];
    if (line && line.length + 1 + token.length > WIDTH) lines.push(token);
    else lines[lines.length - 1] = line ? `${line} ${token}` : token;
  }
  return lines.join('\n');
}

export function createGame() {
  /** @type {((change: Change) => void)[]} */
  const listeners = [];
  const tell = (/** @type {Change} */ change) => listeners.forEach(listener => listener(change));
  let halfmove = 0, fullmove = 1;

  const game = {
    /** Four fields of FEN. */
    startFen: START_FEN.split(' ').slice(0, 4).join(' '),
    /** @type {Move[]} */
    moves: [],
    /** The ply that is shown, 0 for the start. */
    ply: 0,
    /** @type {Record<string, string>} */
    tags: {},
    /** By ply, the start's first. @type {(Score | null)[]} */
    scores: [],
    /** Plies whose moves are doubtful, the first move's is 1. @type {Set<number>} */
    doubtful: new Set(),

    /** Calls the listener with each change; the result ends that. @param {(change: Change) => void} listener */
    subscribe(listener) {
      listeners.push(listener);
      return () => { listeners.splice(listeners.indexOf(listener), 1); };
    },

    /** The four fields of a ply's position. */
    fen: (ply = game.ply) => ply ? game.moves[ply - 1].fen : game.startFen,
    board: (ply = game.ply) => boardOf(game.fen(ply)),
    /** The moves up to a ply, in coordinates. */
    uciMoves: (ply = game.ply) => game.moves.slice(0, ply).map(move => move.uci),
    /** True if white makes the move behind a ply. */
    whiteToMove: (ply = game.ply) => game.fen(ply).split(' ')[1] === 'w',

    /** FEN with its counters, for others. */
    fullFen(ply = game.ply) {
      let quiet = halfmove;
      for (let i = 0; i < ply; ++i) {
        const before = game.board(i), move = game.moves[i];
        quiet = before[move.to] !== '.' || before[move.from].toLowerCase() === 'p' ? 0 : quiet + 1;
      }
      return `${game.fen(ply)} ${quiet} ${game.moveNumber(ply + 1)}`;
    },

    /** The number of the move that leads to a ply. @param {number} ply */
    moveNumber: ply => fullmove + Math.floor((ply - 1 + (game.whiteToMove(0) ? 0 : 1)) / 2),

    /** "12." or "12..." of the move that leads to a ply. @param {number} ply */
    numberText: ply => `${game.moveNumber(ply)}${game.whiteToMove(ply - 1) ? '.' : '...'}`,

    /** Starts anew from a position that the rules have taken. */
    setPosition(fen = START_FEN) {
      const read = readFen(fen);
      if (!('fen' in read)) throw new Error(read.trouble);
      ({fen: game.startFen, halfmove, fullmove} = read);
      Object.assign(game, {moves: [], ply: 0, tags: {}, scores: [], doubtful: new Set()});
      tell('game');
    },

    /** Takes over a game that the rules have read. @param {ReadGame} read */
    setGame(read) {
      const start = readFen(read.tags.FEN || read.fen);
      ({halfmove, fullmove} = 'fen' in start ? start : {halfmove: 0, fullmove: 1});
      Object.assign(game, {startFen: read.fen, moves: read.moves, ply: 0, tags: {...read.tags}, scores: [], doubtful: new Set()});
      read.moves.forEach((move, i) => {
        if (move.before !== undefined) game.scores[i] ??= {centipawns: move.before};
        if (move.after !== undefined) game.scores[i + 1] = {centipawns: move.after};
        if (move.doubtful) game.doubtful.add(i + 1);
      });
      tell('game');
    },

    /** Plays a legal move at the ply shown. Another one than the game's begins a new branch in its place. @param {Move} move */
    play(move) {
      if (game.moves[game.ply]?.uci === move.uci) return game.go(game.ply + 1);
      game.cut(game.ply);
      game.moves.push(move);
      game.ply = game.moves.length;
      delete game.tags.Result;
      tell('moves');
    },

    /** Takes back the last moves of the game. */
    takeBack(plies = 1) {
      game.cut(Math.max(0, game.moves.length - plies));
      game.ply = game.moves.length;
      delete game.tags.Result;
      tell('moves');
    },

    /** Drops what is behind a ply, and says nothing. @param {number} ply */
    cut(ply) {
      game.moves = game.moves.slice(0, ply);
      game.scores = game.scores.slice(0, ply + 1);
      game.doubtful = new Set([...game.doubtful].filter(each => each <= ply));
    },

    /** Shows a ply of the game, or the nearest that there is. @param {number} ply */
    go(ply) {
      game.ply = Math.max(0, Math.min(game.moves.length, ply));
      tell('ply');
    },

    /** @param {number} ply @param {Score} score */
    setScore(ply, score) {
      game.scores[ply] = score;
      tell('scores');
    },

    clearScores() {
      game.scores = [];
      game.doubtful = new Set();
      tell('scores');
    },

    /** @param {Iterable<number>} plies */
    setDoubtful(plies) {
      game.doubtful = new Set(plies);
      tell('scores');
    },

    /** An empty text takes the tag away. @param {string} name @param {string} text */
    setTag(name, text) {
      if (text) game.tags[name] = text;
      else delete game.tags[name];
      tell('tags');
    },

    /** "White - Black", or nothing if nobody is named. */
    title: () => game.tags.White || game.tags.Black ? `${game.tags.White || '?'} – ${game.tags.Black || '?'}` : '',

    /** The moves up to a ply, each with its score, as the rules read a line. */
    scoredMoves: (ply = game.moves.length) => game.moves.slice(0, ply).map((move, i) =>
      game.scores[i] ? `${move.uci} ${commentOf(game.scores[i], game.whiteToMove(i))}` : move.uci),

    /** What the tags say of the end. */
    result: () => /^(1-0|0-1|1\/2-1\/2)$/.test(game.tags.Result || '') ? game.tags.Result : '*',

    /**
     * The game as PGN, each move with the score that the engine gives the position in which it is made, as its mover
     * sees it: "{+0.35/12}", as the engine's own reader and scanner take it.
     */
    toPgn() {
      const atStart = game.startFen === START_FEN.split(' ').slice(0, 4).join(' ') && fullmove === 1;
      const tags = {...game.tags, ...(atStart ? {} : {SetUp: '1', FEN: game.fullFen(0)})};
      if (atStart) {
        delete tags.FEN;
        delete tags.SetUp;
      }
      const others = Object.keys(tags).filter(name => !SEVEN.includes(name));
      const result = game.result();
      const value = (/** @type {string} */ name) =>
        name === 'Result' ? result : tags[name] || (name === 'Date' ? '????.??.??' : '?');
      const head = [...SEVEN, ...others].map(name =>
        `[${name} "${value(name).replace(/[\r\n]/g, ' ').replace(/(["\\])/g, '\\$1')}"]`);
      const tokens = game.moves.flatMap((move, i) => {
        const white = game.whiteToMove(i), score = game.scores[i];
        const number = white || i === 0 || game.scores[i - 1] ? [game.numberText(i + 1)] : [];
        return [...number, move.text, ...(score ? [commentOf(score, white)] : [])];
      });
      return `${head.join('\n')}\n\n${wrap([...tokens, result])}\n`;
    },

    /** What is kept of the game, to be had back by `restore`. @returns {SavedGame} */
    save: () => ({
      fen: game.fullFen(0), ply: game.ply, tags: game.tags, scores: game.scores, doubtful: [...game.doubtful],
      moves: game.moves.map(({uci, text, fen}) => ({uci, text, fen})),
    }),

    /** False if that is no game that was kept. The moves are trusted to be legal. @param {SavedGame} saved */
    restore(saved) {
      const read = readFen(String(saved?.fen));
      if (!('fen' in read) || !Array.isArray(saved.moves)) return false;
      if (!saved.moves.every(move => /^[a-h][1-8][a-h][1-8][qrbn]?$/.test(move?.uci) && 'fen' in readFen(move.fen)))
        return false;
      ({fen: game.startFen, halfmove, fullmove} = read);
      game.moves = saved.moves.map(move => moveOf(move.uci, String(move.text), move.fen));
      game.ply = Math.max(0, Math.min(game.moves.length, Number(saved.ply) || 0));
      game.tags = Object.fromEntries(Object.entries(saved.tags || {}).map(([name, text]) => [name, String(text)]));
      game.scores = (saved.scores || []).map(score => Number.isFinite(score?.centipawns) ? score : null);
      game.doubtful = new Set(saved.doubtful || []);
      tell('game');
      return true;
    },
  };
  return game;
}

/** @param {Score} score @param {boolean} white who sees it */
function commentOf(score, white) {
  const seen = white ? score.centipawns : -score.centipawns;
  return `{${seen < 0 ? '-' : '+'}${(Math.abs(seen) / 100).toFixed(2)}/${score.depth ?? 0}}`;
}

/** @typedef {ReturnType<typeof createGame>} Game */
