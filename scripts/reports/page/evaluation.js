// An evaluation as a picture: what each square is worth, the terms of both sides, what hangs, is pinned, runs free.
import {cornerOf, createBoard, draw, make, squareIndex} from './board.js';

const BAR = 100, FULL = 45;  // half the width of a pair of bars; a share that gets the full colour
const LAST_STAGE = 24;
const WORDS = {mtl: 'material', pos: 'position'};

// Blue for what a piece adds to its side, orange for what it costs.
function colourOf(share) {
  if (!share) return undefined;
  const strength = Math.min(1, Math.abs(share) / FULL) * 0.75 + 0.1;
  return `rgba(var(--${share > 0 ? 'good' : 'bad'}), ${strength.toFixed(2)})`;
}

function drawMarks(svg, evaluation) {
  for (const kind of ['hung', 'pinned'])
    for (const name of evaluation[kind]) {
      const [x, y] = cornerOf(squareIndex(name));
      const inset = kind === 'hung' ? 2 : 5;
      const size = 45 - 2 * inset;
      draw(svg, 'rect', {class: kind, x: x + inset, y: y + inset, width: size, height: size, rx: 4});
    }
  for (const name of evaluation.free) {
    const [x, y] = cornerOf(squareIndex(name));
    const end = evaluation.board[squareIndex(name)] === 'P' ? 12 : 348;
    draw(svg, 'line', {class: 'path', x1: x + 22.5, x2: x + 22.5, y1: y + (end < y ? -4 : 49), y2: end});
  }
  evaluation.shares.forEach((share, i) => {
    const [x, y] = cornerOf(i);
    if (share !== null) draw(svg, 'text', {class: 'share', x: x + 43, y: y + 42}, String(share));
  });
}

// White's bar above black's, each from the middle to the side of its sign.
function drawBars(cell, white, black, longest) {
  const svg = draw(cell, 'svg', {viewBox: `${-BAR - 4} 0 ${2 * BAR + 8} 26`, 'aria-hidden': 'true'});
  svg.setAttribute('preserveAspectRatio', 'none');
  const lines = {'vector-effect': 'non-scaling-stroke'};
  [['white', white, 3], ['black', black, 14]].forEach(([side, value, y]) => {
    const width = Math.abs(value) / longest * BAR;
    draw(svg, 'rect', {class: side, x: Math.min(0, Math.sign(value) * width), y, width, height: 9, ...lines});
  });
  draw(svg, 'line', {class: 'axis', x1: 0, x2: 0, y1: 0, y2: 26, ...lines});
}

function addRow(table, heads, cells) {
  const row = make(table, 'tr');
  heads.forEach(text => make(row, 'th', text, {scope: cells.length ? 'row' : 'col'}));
  return cells.map(text => make(row, 'td', String(text)));
}

// The material, which is larger by far, has a scale of its own.
function showTerms(host, terms) {
  const table = make(host, 'table', '', {class: 'terms'});
  make(table, 'caption', 'Terms in centipawns, white’s bar above black’s');
  addRow(table, ['term', 'white', 'bars', 'black', 'ahead'], []);
  const longest = Math.max(1, ...terms.slice(1).flatMap(([, white, black]) => [Math.abs(white), Math.abs(black)]));
  terms.forEach(([name, white, black, difference], i) => {
    const cells = addRow(table, [WORDS[name] || name], [white, '', black, difference]);
    cells[1].className = 'bars';
    drawBars(cells[1], white, black, i ? longest : Math.max(1, white, black));
  });
}

function showParts(host, parts) {
  const table = make(host, 'table', '', {class: 'parts'});
  make(table, 'caption', 'As an opening, and as an ending');
  addRow(table, ['part', 'opening', 'ending'], []);
  for (const [name, values] of Object.entries(parts))
    addRow(table, [name.replace(/mtl|pos/, word => WORDS[word])], values);
  const both = i => ['mtl', 'pos'].reduce((sum, part) =>
    sum + parts[`white ${part}`][i] - parts[`black ${part}`][i], 0);
  addRow(table, ['white ahead by'], [both(0), both(1)]);
}

function showFigures(host, evaluation) {
  const list = make(host, 'dl');
  const add = (name, text) => { make(list, 'dt', name); return make(list, 'dd', text); };
  const side = evaluation.fen.split(' ')[1] === 'w' ? 'white' : 'black';
  add('evaluation', `${evaluation.eval} centipawns for ${side}, who is to move`);
  add('captures played out', String(evaluation.qscore));
  const stage = add('stage', `${evaluation.stage} of ${LAST_STAGE} from opening to ending `);
  make(stage, 'meter', '', {class: 'stage', min: 0, max: LAST_STAGE, value: evaluation.stage, 'aria-label': 'stage'});
  add('scaled by', evaluation.draw_adj);
  add('hanging', evaluation.hung.join(', ') || 'nothing');
  add('pinned', evaluation.pinned.join(', ') || 'nothing');
  add('free passed pawns', evaluation.free.join(', ') || 'none');
  const [white, black] = evaluation.surplus.map(letters => letters || '-');
  if (white + black !== '--') add('more pieces', `white ${white}, black ${black}`);
}

// Fills two hosts: the board, and the figures beside it.
export function showEvaluation(boardHost, figuresHost, evaluation) {
  boardHost.replaceChildren();
  figuresHost.replaceChildren();
  const svg = createBoard(boardHost).show(evaluation.board, {colours: evaluation.shares.map(colourOf)});
  drawMarks(svg, evaluation);
  make(boardHost, 'p', 'Blue squares add to their side, orange ones cost it, centipawns in the corner. ' +
       'A frame: the piece hangs; dashed: it is pinned; dots: the free path of a passed pawn.', {class: 'legend'});
  if (evaluation.in_check) make(figuresHost, 'p', 'The side to move is in check: such a position isn’t evaluated.');
  showFigures(figuresHost, evaluation);
  showTerms(figuresHost, evaluation.terms);
  showParts(figuresHost, evaluation.parts);
}
