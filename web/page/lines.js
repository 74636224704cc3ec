// What the engine says of a position: a bar for who is ahead, and its best lines.
import {make} from './board.js';

/** @typedef {import('./rules.js').Move} Move */
/** @typedef {{score: number, depth: number, moves: Move[], numbers: string[]}} Line   the score as white sees it */

const MATE = 9900;  // scores beyond it are mates, 10000 less the plies up to there

/** Plies to a mate, as moves; 0 if the score is none. @param {number} score */
const movesToMate = score => Math.abs(score) > MATE ? Math.max(1, Math.ceil((10000 - Math.abs(score)) / 2)) : 0;

/** "+0.35", "−1.20", "#3" for a mate by white, "−#3" by black. @param {number} score centipawns as white sees it */
export function scoreShown(score) {
  const sign = score < 0 ? '−' : '+', mate = movesToMate(score);
  if (mate) return `${score < 0 ? '−' : ''}#${mate}`;
  return sign + (Math.abs(score) / 100).toFixed(2);
}

/** The same for the ear. @param {number} score */
export function scoreSpoken(score) {
  const side = score < 0 ? 'black' : 'white', mate = movesToMate(score);
  if (mate) return `${side} mates in ${mate}`;
  return score ? `${side} is ahead by ${(Math.abs(score) / 100).toFixed(2)}` : 'equal';
}

/** A bar in the host; `show` takes a score as white sees it, null if there is none. @param {HTMLElement} host */
export function createBar(host) {
  const bar = make(host, 'div', '', {class: 'bar', role: 'img', 'aria-label': 'No score yet'});
  const white = make(bar, 'div', '', {class: 'white'});
  const text = make(bar, 'span');
  return {
    /** @param {number | null} score @param {boolean} flipped */
    show(score, flipped) {
      const share = score === null ? 50 : 50 + 100 / Math.PI * Math.atan(score / 300);
      white.style.setProperty('--share', `${share.toFixed(1)}%`);
      bar.classList.toggle('flipped', flipped);
      bar.classList.toggle('behind', score !== null && score < 0);
      text.textContent = score === null ? '' : scoreShown(score);
      bar.setAttribute('aria-label', score === null ? 'No score yet' : `Score: ${scoreSpoken(score)}`);
    },
  };
}

/** Nodes a second in words. @param {number} nps */
const speedText = nps => nps >= 1e6 ? `${(nps / 1e6).toFixed(1)} million nodes/s` : `${Math.round(nps / 1000)} thousand nodes/s`;

/**
 * The lines in the host; `choose` is called with the moves of a line up to that which is clicked at.
 * @param {HTMLElement} host @param {(moves: Move[]) => void} choose
 */
export function createLines(host, choose) {
  const told = make(host, 'p', '', {class: 'depth'});
  const list = make(host, 'ol', '', {class: 'lines', 'aria-label': 'Lines of the engine'});
  // Under a finger that is down nothing moves: what is pressed is still there when it is let go.
  let held = false;
  list.addEventListener('pointerdown', () => { held = true; });
  for (const type of ['pointerup', 'pointercancel']) addEventListener(type, () => { held = false; });

  /** @param {Line} line */
  function add(line) {
    const item = make(list, 'li');
    make(item, 'span', scoreShown(line.score), {class: line.score < 0 ? 'score behind' : 'score', title: `depth ${line.depth}`});
    const moves = make(item, 'span', '', {class: 'line'});
    line.moves.forEach((move, i) => {
      const button = make(moves, 'button', line.numbers[i] + move.text, {type: 'button', tabindex: i ? -1 : 0});
      button.addEventListener('click', () => choose(line.moves.slice(0, i + 1)));
      moves.append(' ');
    });
  }

  return {
    /** @param {Line[]} lines @param {number} nps @param {string} [word] in place of depth and speed */
    show(lines, nps, word) {
      if (held) return;
      const depth = lines.length ? `Depth ${Math.max(...lines.map(line => line.depth))}` : '';
      told.textContent = word ?? [depth, nps ? speedText(nps) : ''].filter(Boolean).join(', ');
      const at = [...list.querySelectorAll('button')].indexOf(/** @type {HTMLButtonElement} */ (document.activeElement));
      list.replaceChildren();
      for (const line of lines) add(line);
      if (at >= 0) list.querySelectorAll('button')[at]?.focus({preventScroll: true});
    },
  };
}
