// A board that takes moves: by dragging, by two clicks or taps, and by the keyboard. It knows the squares and the
// moves that it is given, and nothing of chess.
import {createBoard, cornerOf, draw, drawPiece, isWhite, make, NAMES, SIZE, squareName} from './board.js';

/** @typedef {import('./rules.js').Move} Move */
/** @typedef {import('./rules.js').Position} Position */
/** @typedef {{last?: number[], side?: string, flipped?: boolean, animate?: boolean}} Look */

const DRAGGED = 5;  // pixels that the pointer goes before a press is a drag
const ORDER = 'qnrb';
const KEYS = {ArrowLeft: [0, -1], ArrowRight: [0, 1], ArrowUp: [-1, 0], ArrowDown: [1, 0], Home: [0, -8], End: [0, 8]};

/** @param {string} piece */
export const pieceName = piece => `${isWhite(piece) ? 'white' : 'black'} ${NAMES[piece.toLowerCase()]}`;

/** The cells that lie over the drawing, in rows from the top. @param {HTMLElement} host */
export function makeCells(host) {
  const grid = make(host, 'div', '', {class: 'squares', role: 'grid', 'aria-label': 'Board'});
  const cells = [];
  for (let rank = 0; rank < 8; ++rank) {
    const row = make(grid, 'div', '', {role: 'row'});
    for (let file = 0; file < 8; ++file) cells.push(make(row, 'div', '', {role: 'gridcell', tabindex: -1}));
  }
  cells[0].tabIndex = 0;
  // The arrows go over the squares; nothing else on the page hears them.
  grid.addEventListener('pointerdown', () => grid.classList.add('pointed'));
  grid.addEventListener('keydown', event => {
    grid.classList.remove('pointed');
    const step = KEYS[event.key], at = cells.indexOf(document.activeElement);
    if (!step || at < 0 || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    event.stopPropagation();
    const [rank, file] = [Math.floor(at / 8) + step[0], at % 8 + step[1]].map(n => Math.max(0, Math.min(7, n)));
    focusCell(cells, rank * 8 + file);
  });
  return {grid, cells};
}

/** @param {HTMLElement[]} cells @param {number} at */
function focusCell(cells, at) {
  for (const cell of cells) cell.tabIndex = -1;
  cells[at].tabIndex = 0;
  cells[at].focus({preventScroll: true});
}

/** The square under a point of the page, -1 for none. @param {HTMLElement} grid */
export function squareAt(grid, flipped, x, y) {
  const box = grid.getBoundingClientRect();
  const file = Math.floor((x - box.left) / box.width * 8), rank = Math.floor((y - box.top) / box.height * 8);
  if (file < 0 || file > 7 || rank < 0 || rank > 7) return -1;
  return flipped ? 63 - rank * 8 - file : rank * 8 + file;
}

/** Puts a drawn piece under a pointer, larger where a finger hides it. @param {PointerEvent} event */
export function holdPiece(svg, group, event) {
  const box = svg.getBoundingClientRect(), unit = 360 / box.width, finger = event.pointerType === 'touch';
  const scale = finger ? 1.8 : 1.1;
  const [left, top] = cornerOf(0);
  const x = left + (event.clientX - box.left) * unit - SIZE * scale / 2;
  const y = top + (event.clientY - box.top) * unit - SIZE * scale * (finger ? 0.75 : 0.5);
  group.classList.add('held');
  if (group !== svg.lastElementChild) svg.append(group);
  group.setAttribute('transform', `translate(${x} ${y}) scale(${scale})`);
}

/** Squares where a piece has come from and gone to, between two boards. */
function travels(before, after) {
  const gone = [], come = [];
  for (let i = 0; i < 64; ++i) {
    if (before[i] === after[i]) continue;
    if (before[i] !== '.') gone.push(i);
    if (after[i] !== '.') come.push(i);
  }
  if (come.length > 2) return [];
  return come.map(to => [gone.find(from => before[from] === after[to]), to]).filter(([from]) => from !== undefined);
}

const calm = matchMedia('(prefers-reduced-motion: reduce)');

function slide(svg, before, after, flipped, dropped) {
  if (calm.matches) return;
  for (const [from, to] of travels(before, after)) {
    if (to === dropped) continue;
    const frames = [from, to].map(square => ({transform: `translate(${cornerOf(square, flipped).join('px, ')}px)`}));
    svg.querySelector(`[data-square="${to}"]`)?.animate(frames, {duration: 160, easing: 'ease-out'});
  }
}

/** Asks what a pawn becomes; the answer goes to `chosen`, null if the question was left. */
function askPromotion(host, moves, white, place, chosen) {
  const dialog = make(host, 'div', '',
    {class: 'promotion', role: 'dialog', 'aria-modal': 'true', 'aria-label': 'Promote to'});
  dialog.style.left = `${place.file * 12.5}%`;
  if (place.down) dialog.style.top = '0';
  else dialog.style.bottom = '0';
  const end = move => {
    dialog.remove();
    document.removeEventListener('pointerdown', leave, true);
    chosen(move);
  };
  const leave = event => {
    if (dialog.contains(event.target)) return;
    event.stopPropagation();
    event.preventDefault();
    end(null);
  };
  const buttons = [...moves].sort((a, b) => ORDER.indexOf(a.promotion) - ORDER.indexOf(b.promotion)).map(move => {
    const button = make(dialog, 'button', '', {type: 'button', 'aria-label': NAMES[move.promotion]});
    const piece = white ? move.promotion.toUpperCase() : move.promotion;
    drawPiece(draw(button, 'svg', {viewBox: '0 0 45 45', 'aria-hidden': 'true'}), piece, 0, 0);
    button.addEventListener('click', () => end(move));
    return button;
  });
  dialog.addEventListener('keydown', event => {
    const step = {ArrowDown: 1, ArrowRight: 1, ArrowUp: -1, ArrowLeft: -1, Tab: event.shiftKey ? -1 : 1}[event.key];
    event.stopPropagation();
    if (event.key === 'Escape') end(null);
    if (!step) return;
    event.preventDefault();
    buttons[(buttons.indexOf(document.activeElement) + step + buttons.length) % buttons.length].focus();
  });
  document.addEventListener('pointerdown', leave, true);
  buttons[0].focus();
}

/**
 * A board in the host that calls `move` with the move that a person makes; `refuse`, if given, with a word where a
 * key press leads to none.
 * @param {HTMLElement} host
 * @param {{move: (move: Move) => void, refuse?: (text: string) => void}} calls
 */
export function createInput(host, {move, refuse = () => {}}) {
  const frame = make(host, 'div', '', {class: 'input-board'});
  const drawing = createBoard(frame, {inside: true});
  const {grid, cells} = makeCells(frame);
  /** @type {Position} */
  let position = {fen: '', board: '.'.repeat(64), whiteToMove: true, check: false, state: 'play', moves: []};
  /** @type {Look} */
  let look = {};
  let selected = -1, dropped = -1, asking = false;
  /** @type {{square: number, x: number, y: number, moved: boolean, wasSelected: boolean, id: number} | null} */
  let drag = null;
  let svg = drawing.show(position.board);
  svg.setAttribute('aria-hidden', 'true');

  const cellOf = square => cells[look.flipped ? 63 - square : square];
  const squareOf = cell => { const at = cells.indexOf(cell); return look.flipped ? 63 - at : at; };
  const mayMove = () => look.side === 'both' || look.side === (position.whiteToMove ? 'w' : 'b');
  const movesFrom = square => mayMove() ? position.moves.filter(each => each.from === square) : [];

  function redraw() {
    const targets = movesFrom(selected).map(each => each.to);
    const king = position.check ? position.board.indexOf(position.whiteToMove ? 'K' : 'k') : -1;
    const marked = look.last || [];
    svg = drawing.show(position.board, {flipped: look.flipped, marked, targets, selected, check: king});
    cells.forEach((cell, at) => {
      const square = look.flipped ? 63 - at : at, piece = position.board[square];
      const words = [squareName(square), piece === '.' ? '' : pieceName(piece), square === king ? 'in check' : '',
                     targets.includes(square) ? 'can be moved to' : ''];
      cell.setAttribute('aria-label', words.filter(Boolean).join(', '));
      cell.setAttribute('aria-selected', String(square === selected));
      cell.classList.remove('over');
      cell.classList.toggle('movable', movesFrom(square).length > 0 || targets.includes(square));
    });
  }

  function select(square) {
    selected = square;
    redraw();
  }

  function makeMove(from, to) {
    const found = movesFrom(from).filter(each => each.to === to);
    if (!found.length) return false;
    if (found.length > 1) choose(found);
    else finish(found[0]);
    return true;
  }

  function finish(found) {
    selected = -1;
    if (found) move(found);
    else redraw();
  }

  /** Asks for a promotion among the moves. @param {Move[]} moves */
  function choose(moves) {
    const back = document.activeElement;
    const to = look.flipped ? 63 - moves[0].to : moves[0].to;
    asking = true;
    askPromotion(frame, moves, position.whiteToMove, {file: to % 8, down: to < 8}, found => {
      asking = false;
      if (back instanceof HTMLElement) back.focus({preventScroll: true});
      finish(found);
    });
  }

  // A press without a drag: takes up a piece, or puts down the one that is taken up.
  function press(square) {
    if (selected >= 0 && makeMove(selected, square)) return;
    if (square !== selected && movesFrom(square).length) return select(square);
    const tried = selected;
    select(-1);
    if (!mayMove()) refuse('It isn’t your move');
    else if (tried >= 0 && tried !== square) refuse(`No move from ${squareName(tried)} to ${squareName(square)}`);
    else if (tried < 0) refuse(`No move from ${squareName(square)}`);
  }

  grid.addEventListener('keydown', event => {
    if (event.key === 'Escape' && selected >= 0) select(-1);
    if (event.key !== 'Enter' && event.key !== ' ') return;
    event.preventDefault();
    press(squareOf(document.activeElement));
    if (selected >= 0) refuse(`${cellOf(selected).getAttribute('aria-label')}: taken up`);
  });
  // What assistive programs send for a press has no pointer.
  grid.addEventListener('click', event => {
    if (event.detail === 0) press(squareOf(event.target));
  });

  grid.addEventListener('pointerdown', event => {
    if (!event.isPrimary || event.button !== 0 || asking) return;
    const square = squareAt(grid, look.flipped, event.clientX, event.clientY);
    if (square < 0) return;
    focusCell(cells, cells.indexOf(cellOf(square)));
    event.preventDefault();
    dropped = -1;
    if (selected >= 0 && selected !== square && makeMove(selected, square)) return;
    if (!movesFrom(square).length) return select(-1);
    const {clientX: x, clientY: y, pointerId: id} = event;
    drag = {square, x, y, id, moved: false, wasSelected: selected === square};
    select(square);
    grid.setPointerCapture(event.pointerId);
  });
  grid.addEventListener('pointermove', event => {
    if (!drag || event.pointerId !== drag.id) return;
    drag.moved ||= Math.hypot(event.clientX - drag.x, event.clientY - drag.y) > DRAGGED;
    const group = svg.querySelector(`[data-square="${drag.square}"]`);
    if (!drag.moved || !group) return;
    const over = squareAt(grid, look.flipped, event.clientX, event.clientY);
    cells.forEach((cell, at) => cell.classList.toggle('over', over >= 0 && at === (look.flipped ? 63 - over : over)));
    holdPiece(svg, group, event);
  });
  grid.addEventListener('pointerup', event => {
    if (!drag || event.pointerId !== drag.id) return;
    const {square, moved, wasSelected} = drag;
    drag = null;
    const to = squareAt(grid, look.flipped, event.clientX, event.clientY);
    if (!moved) return wasSelected ? select(-1) : undefined;
    dropped = to;
    if (to === square || !makeMove(square, to)) redraw();
  });
  grid.addEventListener('pointercancel', () => {
    drag = null;
    redraw();
  });

  redraw();
  return {
    /** Shows a position; in another one what was taken up is put down. @param {Position} newPosition @param {Look} newLook */
    show(newPosition, newLook = {}) {
      const before = position.board, same = look.flipped === newLook.flipped;
      if (newPosition.fen !== position.fen || !newPosition.moves.length) {
        selected = -1;
        drag = null;
      }
      const focused = cells.includes(document.activeElement) ? squareOf(document.activeElement) : -1;
      position = newPosition;
      look = newLook;
      redraw();
      if (!same && focused >= 0) focusCell(cells, cells.indexOf(cellOf(focused)));
      if (look.animate && same) slide(svg, before, position.board, look.flipped, dropped);
      dropped = -1;
    },
    choose,
    focus: () => cells.find(cell => cell.tabIndex === 0).focus({preventScroll: true}),
  };
}
