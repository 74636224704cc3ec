// The rules of chess, as the engine knows them: legal moves and their texts, games read from PGN, evaluations.
//
// An engine of their own answers, in its console, so that no question waits for a search:
//   position fen FEN moves e2e4 …  sets up a position with its past; a move against the rules is answered
//                                  "can't parse move 'e2e5'"
//   legal        "position FEN", "state S" with S one of play, mate, stalemate, repetition, fifty, material, impossible,
//                " check" behind it if the side to move is in check; "legal e2e4 e4 FEN" for each move, "legal end"
//   games FILE   "game NUMBER PLIES TAGS" for each game of a PGN file, "games end"
//   games FILE N "tag [Name "text"]", "position FEN", "move e2e4 e4 FEN", each with "score CENTIPAWNS" (as the mover
//                saw it before the move) or "eval CENTIPAWNS" (of the position behind it) and "doubtful" if it is so,
//                "unread TEXT" where a text stands for no move, "game end"
// All scores are told as white sees them.

/** @typedef {import('../module/vrel.js').Engine} Engine */
/** @typedef {import('../module/vrel.js').EngineOptions} EngineOptions */
/** @typedef {(options: EngineOptions) => Promise<Engine>} StartEngine */

/**
 * A legal move: in coordinates as UCI has them, as PGN has it, and the position behind it. Squares are counted from
 * a8 = 0 to h1 = 63; `promotion` is '' or one of 'q', 'r', 'b', 'n'.
 * @typedef {{uci: string, text: string, from: number, to: number, promotion: string, fen: string}} Move
 */

/**
 * A position: four fields of FEN, and its board as 64 letters, a8 first, '.' for an empty square.
 * @typedef {'play' | 'mate' | 'stalemate' | 'repetition' | 'fifty' | 'material' | 'impossible'} State
 * @typedef {{fen: string, board: string, whiteToMove: boolean, check: boolean, state: State, moves: Move[]}} Position
 */

/**
 * A game of a PGN file: what a list shows of it, and the game with its moves. Scores are in centipawns as white sees
 * them: `before` of the position in which the move is made, `after` of that behind it.
 * @typedef {{number: number, plies: number, tags: Record<string, string>}} GameHead
 * @typedef {Move & {before?: number, after?: number, doubtful: boolean}} ReadMove
 * @typedef {{tags: Record<string, string>, fen: string, moves: ReadMove[], trouble: string}} ReadGame
 */

/**
 * What evaluation.js shows.
 * @typedef {{fen: string, board: string, eval: number, qscore: number, stage: number, draw_adj: string,
 *            in_check: boolean, hung: string[], pinned: string[], free: string[], terms: (string | number)[][],
 *            surplus: string[], shares: (number | null)[], parts: Record<string, number[]>}} Evaluation
 */

export const START_FEN = 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1';

const NO_KINGS = 'A position has one king of each colour.';
const NO_FEN = 'That is no position in FEN.';
const GAMES_FILE = 'games.pgn';
const LINE_FILE = 'line.pgn';
const MOST_PLIES = 10000;  // of a game whose moves are told to the engine in one line
const IN_CHECK = -10000;

/** The board of a position as 64 letters. @param {string} fen */
export const boardOf = fen => fen.split(' ', 1)[0].replace(/\d/g, digit => '.'.repeat(Number(digit))).replace(/\//g, '');

/** @param {string} square such as "e2" */
const indexOf = square => (8 - Number(square[1])) * 8 + 'abcdefgh'.indexOf(square[0]);

/** @param {string} uci @param {string} text @param {string} fen @returns {Move} */
const moveOf = (uci, text, fen) =>
  ({uci, text, from: indexOf(uci.slice(0, 2)), to: indexOf(uci.slice(2, 4)), promotion: uci.slice(4), fen});

/** The castling rights whose king and rook stand at home. @param {string} castling @param {string} board */
const possible = (castling, board) => ['K', 'Q', 'k', 'q'].filter(right => {
  const row = right < 'a' ? 56 : 0, king = right < 'a' ? 'K' : 'k', rook = right < 'a' ? 'R' : 'r';
  return castling.includes(right) && board[row + 4] === king && board[row + ('Kk'.includes(right) ? 7 : 0)] === rook;
}).join('') || '-';

/**
 * A pasted FEN or EPD in its four fields, and its two counters; a word about what is wrong with it instead.
 * @param {string} text
 * @returns {{fen: string, halfmove: number, fullmove: number, trouble: ''} | {trouble: string}}
 */
export function readFen(text) {
  const [board = '', side = 'w', castling = '-', passant = '-', halfmove = '', fullmove = ''] = text.trim().split(/\s+/);
  const rows = board.split('/');
  if (!/^[pnbrqkPNBRQK1-8/]+$/.test(board) || rows.length !== 8) return {trouble: NO_FEN};
  if (rows.some(row => boardOf(row).length !== 8)) return {trouble: 'A rank of the board hasn’t eight squares.'};
  if (board.replace(/[^K]/g, '').length !== 1 || board.replace(/[^k]/g, '').length !== 1) return {trouble: NO_KINGS};
  if (/[pP]/.test(rows[0] + rows[7])) return {trouble: 'A pawn can’t stand on the first or last rank.'};
  if (!/^[wb]$/.test(side) || !/^(-|[KQkq]{1,4})$/.test(castling) || !/^(-|[a-h][36])$/.test(passant))
    return {trouble: NO_FEN};
  const counter = (/** @type {string} */ digits, /** @type {number} */ lowest) =>
    /^\d{1,4}$/.test(digits) ? Math.max(lowest, Number(digits)) : lowest;
  return {fen: [board, side, possible(castling, boardOf(board)), passant].join(' '), halfmove: counter(halfmove, 0),
          fullmove: counter(fullmove, 1), trouble: ''};
}

/**
 * What can be shown of a position before the rules have been asked. @param {string} fen
 * @param {string} text of the move that has led there
 * @returns {Position}
 */
export const positionShown = (fen, text = '') =>
  ({fen, board: boardOf(fen), whiteToMove: fen.split(' ')[1] !== 'b', check: /[+#]/.test(text), state: 'play', moves: []});

/**
 * Bytes of a file as what the engine's reader takes: UTF-8. Files from older programs are in another encoding.
 * @param {Uint8Array} bytes
 */
function inUtf8(bytes) {
  try {
    new TextDecoder('utf-8', {fatal: true}).decode(bytes);
    return bytes;
  } catch {
    return new TextDecoder('windows-1252').decode(bytes);
  }
}

/** The tags of lines such as `[White "A. Name"]`. @param {string[]} lines @returns {Record<string, string>} */
function readTags(lines) {
  /** @type {Record<string, string>} */
  const tags = Object.create(null);
  for (const line of lines) {
    const found = /^\s*\[\s*(\w+)\s+(?:"((?:\\.|[^"\\])*)"?|([^\]]*))/.exec(line);
    if (found && !(found[1] in tags))
      tags[found[1]] = found[2] === undefined ? found[3].trim() : found[2].replace(/\\(.)/g, '$1');
  }
  return tags;
}

/** @param {string[]} lines @returns {ReadGame} */
function readGame(lines) {
  /** @type {ReadGame} */
  const game = {tags: {}, fen: '', moves: [], trouble: ''};
  const tagLines = [];
  for (const line of lines) {
    const blank = line.indexOf(' ');
    const rest = line.slice(blank + 1);
    const move = game.moves.at(-1);
    switch (blank < 0 ? line : line.slice(0, blank)) {
      case 'tag': tagLines.push(rest); break;
      case 'position': game.fen = rest; break;
      case 'move': {
        const [uci, text, ...fen] = rest.split(' ');
        game.moves.push({...moveOf(uci, text, fen.join(' ')), doubtful: false});
        break;
      }
      case 'score': if (move) move.before = Number(rest); break;
      case 'eval': if (move) move.after = Number(rest); break;
      case 'doubtful': if (move) move.doubtful = true; break;
      case 'unread': game.trouble = `The game is read up to “${rest.slice(0, 20)}”, which is no move here.`; break;
      case 'foreign': game.trouble = 'The game follows the rules of another variant of chess.'; break;
      case 'cut': game.trouble = `The game is longer than what is read of it: ${rest} plies.`; break;
    }
  }
  game.tags = readTags(tagLines);
  return game;
}

/** @param {string} title @param {string[]} lines */
function squaresBehind(title, lines) {
  const line = lines.find(each => each.startsWith(title));
  return line ? line.slice(title.length).split(' ').filter(Boolean) : [];
}

/** @param {string} fen @param {string[]} lines @returns {Evaluation | null} */
function readEvaluation(fen, lines) {
  const text = lines.join('\n');
  const figures = /eval= (-?\d+), qscore= (-?\d+), stage= (\d+), draw_adj= ([\d.]+)/.exec(text);
  if (!figures) return null;
  const rows = lines.filter(line => /^( [-+A-Za-z]){8} {4}/.test(line));
  const surplus = /\((\w*) :: (\w*)\)/.exec(text);
  const numbers = (/** @type {string[]} */ texts) => texts.map(Number);
  return {
    fen, board: boardOf(fen),
    eval: Number(figures[1]), qscore: Number(figures[2]), stage: Number(figures[3]), draw_adj: figures[4],
    in_check: Number(figures[1]) === IN_CHECK,
    hung: squaresBehind('hung pieces on:', lines),
    pinned: squaresBehind('pinned pieces on :', lines),
    free: squaresBehind('free passed pawns on:', lines),
    terms: [...text.matchAll(/(\w+)= +(-?\d+) +(-?\d+) +(-?\d+)/g)].map(([, name, ...sums]) => [name, ...numbers(sums)]),
    surplus: surplus ? surplus.slice(1) : ['', ''],
    shares: rows.flatMap(row => row.slice(20).match(/-\d+|\d+|-/g) || []).map(share => share === '-' ? null : Number(share)),
    parts: Object.fromEntries([...text.matchAll(/(white|black) (mtl|pos)= +(-?\d+) +(-?\d+)/g)]
      .map(([, side, name, ...values]) => [`${side} ${name}`, numbers(values)])),
  };
}

/**
 * Starts the engine that answers. `start` is the module's startEngine.
 * @param {StartEngine} start
 */
export async function createRules(start) {
  const engine = await start({arguments: ['-c', '-nolog', '-hash', '1'], shared: false});
  let over = false;
  engine.ended.then(() => { over = true; });
  /** @type {Promise<unknown>} */
  let last = Promise.resolve();

  /**
   * Sends lines, and gets what is answered up to the line that ends the last answer.
   * @param {string[]} lines @param {string} end @param {() => Promise<void>} before what goes in front
   */
  function ask(lines, end, before = async () => {}) {
    const answer = last.then(before).then(() => new Promise((resolve, reject) => {
      if (over) return reject(new Error('the engine has ended'));
      /** @type {string[]} */
      const heard = [];
      const stop = engine.listen(line => {
        if (line !== end) return void heard.push(line);
        stop();
        resolve(heard);
      });
      engine.ended.then(() => reject(new Error('the engine has ended')));
      for (const line of lines) engine.send(line);
    }));
    last = answer.catch(() => {});
    return /** @type {Promise<string[]>} */ (answer);
  }

  const rules = {
    /** Why the last call gave null. */
    trouble: '',

    /**
     * The position behind the moves, with its past as the engine's tests for draws need it. Null if the engine takes
     * no such position or one of the moves is against the rules; `trouble` says what is wrong.
     * @param {string} startFen @param {string[]} moves in coordinates
     * @returns {Promise<Position | null>}
     */
    async position(startFen, moves = []) {
      const read = readFen(startFen);
      const wrong = moves.find(move => !/^[a-h][1-8][a-h][1-8][qrbn]?$/.test(move));
      rules.trouble = read.trouble || (wrong === undefined ? '' : `${wrong} is no move.`) ||
        (moves.length > MOST_PLIES ? 'The game is too long.' : '');
      if (rules.trouble || !('fen' in read)) return null;
      const set = `position fen ${read.fen}${moves.length ? ' moves ' + moves.join(' ') : ''}`;
      const lines = await ask([set, 'legal'], 'legal end');
      /** @type {Position} */
      const position = {fen: '', board: '', whiteToMove: true, check: false, state: 'impossible', moves: []};
      for (const line of lines) {
        const [word, first, second, ...fen] = line.split(' ');
        if (word === 'position') position.fen = line.slice(9);
        else if (word === 'state') Object.assign(position, {state: first, check: second === 'check'});
        else if (word === 'legal') position.moves.push(moveOf(first, second, fen.join(' ')));
        else if (line.startsWith('can\'t parse')) rules.trouble = `${line.slice(18, -1)} is against the rules.`;
      }
      position.board = boardOf(position.fen);
      position.whiteToMove = position.fen.split(' ')[1] === 'w';
      if (position.state === 'impossible') rules.trouble = 'The side that isn’t to move stands in check.';
      return rules.trouble ? null : position;
    },

    /**
     * Reads a PGN file: what there is in it. `game` reads one of its games.
     * @param {Uint8Array | string} contents
     * @returns {Promise<GameHead[]>}
     */
    async readGames(contents) {
      const lines = await ask([`games ${GAMES_FILE}`], 'games end', () =>
        engine.writeFile(GAMES_FILE, typeof contents === 'string' ? contents : inUtf8(contents)));
      return lines.filter(line => line.startsWith('game ')).map(line => {
        const [, number, plies, tags] = /** @type {RegExpExecArray} */ (/^game (\d+) (\d+) ?(.*)$/s.exec(line));
        return {number: Number(number), plies: Number(plies), tags: readTags(tags.split('\t'))};
      });
    },

    /**
     * A game of the file that was read last, by its number there.
     * @param {number} number
     * @returns {Promise<ReadGame>}
     */
    async game(number) {
      return readGame(await ask([`games ${GAMES_FILE} ${number}`], 'game end'));
    },

    /**
     * A line of moves from a position, as a game without tags. A move may be in any form, with a score behind it as PGN
     * has it: "e2e4 {+0.35/12}". It ends with the first move that is none.
     * @param {string} startFen @param {string[]} moves @param {string} result on which doubtful moves depend
     * @returns {Promise<ReadGame>}
     */
    async line(startFen, moves, result = '*') {
      const text = `[FEN "${startFen}"]\n[Result "${result}"]\n\n${moves.join('\n')}\n`;
      return readGame(await ask([`games ${LINE_FILE} 1`], 'game end', () => engine.writeFile(LINE_FILE, text)));
    },

    /**
     * The evaluation of a position, null if it has none; `trouble` says why.
     * @param {string} fen
     * @returns {Promise<Evaluation | null>}
     */
    async evaluation(fen) {
      const read = readFen(fen);
      rules.trouble = read.trouble;
      if (!('fen' in read)) return null;
      const lines = await ask([`position fen ${read.fen}`, 'ev', 'parts', 'legal'], 'legal end');
      return readEvaluation(read.fen, lines);
    },

    /** Ends the engine. */
    end: () => engine.end(),
  };
  return rules;
}

/** @typedef {Awaited<ReturnType<typeof createRules>>} Rules */
