// A whole game looked at position by position, each to the same depth or for the same time.

/** @typedef {import('./game.js').Game} Game */
/** @typedef {import('./rules.js').Rules} Rules */

/** A score, as white sees it, for a position in which the game is over; null for others. */
const FINAL = {mate: 10000, stalemate: 0, material: 0};

/**
 * Gives the positions of the game their scores, and its moves the marks that the scanner would give them. What has a
 * score of the depth wanted already is left, so that a run can be taken up again. True if it came to the end.
 * @param {Game} game
 * @param {Promise<Rules>} rulesPromise
 * @param {ReturnType<typeof import('./analyser.js').createAnalyser>} analyser
 * @param {{limits: string, threads: number, hash: number}} settings limits as behind `go`
 * @param {(done: number, all: number) => void} progress
 */
export async function runGame(game, rulesPromise, analyser, {limits, threads, hash}, progress) {
  const rules = await rulesPromise;
  const start = game.fullFen(0), moves = game.uciMoves(game.moves.length), plies = moves.length;
  const depth = Number((/^depth (\d+)/.exec(limits) || [])[1] || 0);
  const same = () => game.fullFen(0) === start && game.uciMoves(game.moves.length).join() === moves.join();
  const known = ply => depth > 0 && (game.scores[ply]?.depth ?? 0) >= depth;
  let afresh = true;
  for (let ply = 0; ply <= plies; ++ply) {
    progress(ply, plies + 1);
    if (known(ply)) continue;
    const last = ply === plies ? await rules.position(start, moves) : null;
    let score = last && FINAL[last.state] !== undefined ? {centipawns: last.whiteToMove ? -FINAL[last.state] : FINAL[last.state], depth: 0} : null;
    if (!score) {
      const sign = game.whiteToMove(ply) ? 1 : -1;
      const played = moves.slice(0, ply);
      const text = `fen ${start}${played.length ? ` moves ${played.join(' ')}` : ''}`;
      const ended = await analyser.search(text, limits, {threads, hash, lines: 1}, found => {
        if (found.rank === 0) score = {centipawns: sign * found.score, depth: found.depth};
      }, afresh);
      if (!ended || !same()) return false;
      afresh = false;
    }
    if (score) game.setScore(ply, score);
    if (ply % 4 === 0 || ply === plies) await markDoubtful(game, rules);
  }
  progress(plies + 1, plies + 1);
  return true;
}

/** Doubtful moves by the scores that there are, as the engine's scanner sees them. @param {Game} game @param {Rules} rules */
async function markDoubtful(game, rules) {
  const read = await rules.line(game.fullFen(0), game.scoredMoves(), game.result());
  const same = read.moves.length === game.moves.length && read.moves.every((move, i) => move.uci === game.moves[i].uci);
  if (same) game.setDoubtful(read.moves.flatMap((move, i) => move.doubtful ? [i + 1] : []));
}
