// The scores of a game as a curve, centipawns as white sees them.
import {draw} from './board.js';

const WIDTH = 600, HEIGHT = 180, LEFT = 34, RIGHT = 8, MIDDLE = HEIGHT / 2;
const TICKS = [-900, -300, -100, 0, 100, 300, 900];

// Scores near zero, where games are decided, get most of the height.
const heightOf = score => MIDDLE * (1 - 0.92 * Math.atan(score / 300) / (Math.PI / 2));
export const scoreText = score => `${score < 0 ? '−' : '+'}${(Math.abs(score) / 100).toFixed(2)}`;

function labelOf(moves) {
  const scored = moves.filter(move => move.score !== undefined);
  if (!scored.length) return 'Score curve: the game has no scores';
  const doubtful = moves.filter(move => move.doubtful).map(move => `${move.number} ${move.text}`);
  const [from, to] = [scored[0], scored.at(-1)].map(move => scoreText(move.score));
  return `Score curve of ${moves.length} plies, from ${from} to ${to}; ` +
    (doubtful.length ? `doubtful: ${doubtful.join(', ')}` : 'no doubtful moves');
}

// A line through the plies that have scores.
function drawLine(svg, moves, xOf) {
  const points = moves.map((move, i) => [xOf(i + 1), move.score]).filter(([, score]) => score !== undefined)
    .map(([x, score]) => `${x.toFixed(1)},${heightOf(score).toFixed(1)}`);
  draw(svg, 'polyline', {class: 'line', points: points.join(' ')});
  if (!points.length) draw(svg, 'text', {x: WIDTH / 2 - 40, y: MIDDLE - 8}, 'no scores');
}

// Draws curves into the host; `pick` is called with the ply that is clicked at, 0 for the start.
export function createCurve(host, pick) {
  const svg = draw(host, 'svg', {class: 'curve', viewBox: `0 0 ${WIDTH} ${HEIGHT}`, role: 'img'});
  let moves = [], here = null;
  const xOf = ply => LEFT + (WIDTH - LEFT - RIGHT) * ply / Math.max(moves.length, 1);
  svg.addEventListener('click', event => {
    const box = svg.getBoundingClientRect();
    const x = (event.clientX - box.left) / box.width * WIDTH;
    const ply = Math.round((x - LEFT) / (WIDTH - LEFT - RIGHT) * moves.length);
    pick(Math.max(0, Math.min(moves.length, ply)));
  });
  return {
    show(newMoves) {
      moves = newMoves;
      svg.replaceChildren();
      svg.setAttribute('aria-label', labelOf(moves));
      for (const tick of TICKS) {
        const y = heightOf(tick);
        draw(svg, 'line', {class: tick ? 'grid' : 'zero', x1: LEFT, x2: WIDTH - RIGHT, y1: y, y2: y});
        const sign = tick > 0 ? '+' : tick < 0 ? '−' : '';
        const rank = Math.abs(tick) === 100 ? 'minor' : 'major';
        draw(svg, 'text', {class: rank, x: 4, y: y + 4}, sign + Math.abs(tick / 100));
      }
      drawLine(svg, moves, xOf);
      moves.forEach((move, i) => {
        const place = {cx: xOf(i + 1), cy: heightOf(move.score ?? 0)};
        if (move.doubtful) draw(svg, 'circle', {class: 'doubtful', ...place, r: 5});
      });
      here = draw(svg, 'line', {class: 'here', y1: 0, y2: HEIGHT});
      this.mark(0);
    },
    mark(ply) {
      here.setAttribute('x1', xOf(ply));
      here.setAttribute('x2', xOf(ply));
    },
  };
}
