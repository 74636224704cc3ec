// What a game against the engine has beside its moves: sides, strength, clocks, and how it has ended.
import {soundStrength} from './newgame.js';

/** @typedef {import('./rules.js').Position} Position */
/** @typedef {{w: number, b: number}} Times   milliseconds: left with a clock, else spent */
/**
 * @typedef {object} Match
 * @property {string} side the person's, 'w' or 'b'
 * @property {import('./newgame.js').Strength} strength
 * @property {Times[]} times by ply, the start's first
 * @property {Times} now
 * @property {string} flagged the side whose time has run out, or ''
 * @property {boolean} turned the board is seen from the engine's side
 */

export const OTHER = {w: 'b', b: 'w'};
const DRAWS = {stalemate: 'Stalemate: a draw', repetition: 'A draw: the position has been repeated',
               fifty: 'A draw: fifty moves without a capture or a pawn’s move', material: 'A draw: nobody can mate'};

/** @param {string} side @param {import('./newgame.js').Strength} strength @returns {Match} */
export function newMatch(side, strength) {
  const time = strength.way === 'clock' ? strength.minutes * 60000 : 0;
  return {side, strength, times: [{w: time, b: time}], now: {w: time, b: time}, flagged: '', turned: false};
}

const isTimes = times => Number.isFinite(times?.w) && Number.isFinite(times?.b);

/** The match as it was kept with so many plies, with times of its own where those can't be read. @returns {Match} */
export function soundMatch(kept, plies) {
  const match = newMatch(kept?.side === 'b' ? 'b' : 'w', soundStrength(kept?.strength));
  const times = kept?.times;
  const sound = Array.isArray(times) && times.length === plies + 1 && times.every(isTimes) && isTimes(kept.now);
  if (!sound) return {...match, times: Array(plies + 1).fill(match.now)};
  const flagged = Object.hasOwn(OTHER, kept.flagged) ? kept.flagged : '';
  return {...match, times, now: kept.now, flagged, turned: kept.turned === true};
}

// A king alone can't mate, so whoever has no more doesn't win by the clock.
function isAlone(board, side) {
  const king = side === 'w' ? 'K' : 'k';
  return [...board].every(piece => piece === '.' || piece === king ||
                                   (piece === piece.toUpperCase()) !== (side === 'w'));
}

/**
 * How the match has ended: the winner, 'w' or 'b', '' if it is drawn, and what is said of it. Null: it goes on.
 * @param {Match} match @param {Position} position
 */
export function endOf({side, flagged}, {state, whiteToMove, board}) {
  const won = (winner, why) => ({winner, text: `${why}: ${winner === side ? 'you win' : 'Vrel wins'}`});
  if (flagged) {
    const why = flagged === side ? 'Your time is up' : 'Vrel’s time is up';
    return isAlone(board, OTHER[flagged]) ? {winner: '', text: `${why}: a draw, a lone king can’t mate`}
                                          : won(OTHER[flagged], why);
  }
  if (state === 'mate') return won(whiteToMove ? 'b' : 'w', 'Checkmate');
  return state in DRAWS ? {winner: '', text: DRAWS[state]} : null;
}
