// A position set up by hand: pieces are taken from two rows and put on the board, or the FEN is typed.
import {createBoard, draw, drawPiece, make, squareName} from './board.js';
import {holdPiece, makeCells, pieceName, squareAt} from './boardinput.js';
import {boardOf, readFen, START_FEN} from './rules.js';
import {answerOf} from './talk.js';

const EMPTY = '8/8/8/8/8/8/8/8 w - - 0 1';
const RIGHTS = [['K', 'White O-O', 'e1K h1R'], ['Q', 'White O-O-O', 'e1K a1R'],
                ['k', 'Black O-O', 'e8k h8r'], ['q', 'Black O-O-O', 'e8k a8r']];

/** The letters of a FEN's squares, null if they aren't 64 of pieces. @param {string} fen */
function readBoard(fen) {
  const board = boardOf(fen.trim());
  return /^[.pnbrqkPNBRQK]{64}$/.test(board) ? board : null;
}

const rowsOf = board => board.match(/.{8}/g).map(row => row.replace(/\.+/g, dots => String(dots.length))).join('/');

const has = (board, places) => places.split(' ').every(place =>
  board[[...Array(64).keys()].find(i => squareName(i) === place.slice(0, 2))] === place[2]);

function pieceButton(parent, piece, label) {
  const button = make(parent, 'button', '', {type: 'button', 'aria-label': label, 'aria-pressed': 'false'});
  const svg = draw(button, 'svg', {viewBox: '0 0 45 45', 'aria-hidden': 'true'});
  if (piece === '.') draw(svg, 'path', {class: 'eraser', d: 'M13 13L32 32M32 13L13 32'});
  else drawPiece(svg, piece, 0, 0);
  return button;
}

/**
 * Asks for a position.
 * @param {string | null} fen where to begin
 * @param {import('./rules.js').Rules} rules
 * @param {(text: string) => void} announce
 * @returns {Promise<string | null>} the position in six fields, null if the dialog was left
 */
export function setUpPosition(fen, rules, announce) {
  const dialog = make(document.body, 'dialog', '', {class: 'setup', 'aria-labelledby': 'setup-title'});
  const form = make(dialog, 'form', '', {method: 'dialog'});
  make(form, 'h2', 'Set up a position', {id: 'setup-title'});
  const frame = make(form, 'div', '', {class: 'input-board'});
  const drawing = createBoard(frame, {inside: true});
  const {grid, cells} = makeCells(frame);
  const pieces = make(form, 'div', '', {class: 'pieces', role: 'group', 'aria-label': 'Piece to put down'});
  const settings = make(form, 'div', '', {class: 'settings'});
  const white = make(make(settings, 'label', 'White to move'), 'input', '', {type: 'radio', name: 'turn'});
  const black = make(make(settings, 'label', 'Black to move'), 'input', '', {type: 'radio', name: 'turn'});
  const rights = RIGHTS.map(([, text]) => make(make(settings, 'label', text), 'input', '', {type: 'checkbox'}));
  const field = make(make(form, 'label', 'FEN', {class: 'wide'}), 'input', '',
    {spellcheck: false, autocomplete: 'off', name: 'fen'});
  const trouble = make(form, 'p', '', {class: 'trouble', role: 'alert'});
  const buttons = make(form, 'div', '', {class: 'row'});
  let board = boardOf(START_FEN), chosen = '.', rest = '- 0 1', svg = drawing.show(board);

  const add = (text, act, attributes = {}) =>
    make(buttons, 'button', text, {type: 'button', ...attributes}).addEventListener('click', act);

  function show() {
    svg = drawing.show(board);
    svg.setAttribute('aria-hidden', 'true');
    cells.forEach((cell, i) => cell.setAttribute('aria-label',
      board[i] === '.' ? squareName(i) : `${squareName(i)}, ${pieceName(board[i])}`));
    RIGHTS.forEach(([, , places], i) => {
      rights[i].disabled = !has(board, places);
      if (rights[i].disabled) rights[i].checked = false;
    });
  }

  function write() {
    const castling = RIGHTS.map(([letter], i) => rights[i].checked ? letter : '').join('') || '-';
    field.value = `${rowsOf(board)} ${white.checked ? 'w' : 'b'} ${castling} ${rest}`;
    trouble.textContent = '';
  }

  // Takes what can be taken of a FEN; the engine looks at the rest when it is used.
  function read(text) {
    const words = text.trim().split(/\s+/), found = readBoard(text);
    if (!found) return;
    board = found;
    (words[1] === 'b' ? black : white).checked = true;
    RIGHTS.forEach(([letter], i) => { rights[i].checked = (words[2] || '').includes(letter); });
    rest = [words[3] || '-', words[4] || '0', words[5] || '1'].join(' ');
    show();
  }

  function put(square, piece) {
    if (square < 0) return;
    board = board.slice(0, square) + piece + board.slice(square + 1);
    rest = '- 0 1';
    show();
    write();
  }

  function choose(piece) {
    chosen = piece;
    for (const button of pieces.querySelectorAll('button'))
      button.setAttribute('aria-pressed', String(button.dataset.piece === piece));
  }

  // A piece goes down where there is none of its kind; where it stands already, it goes.
  function press(square) {
    const piece = board[square] === chosen ? '.' : chosen;
    put(square, piece);
    announce(`${squareName(square)}: ${piece === '.' ? 'empty' : pieceName(piece)}`);
  }

  // Drags a piece from the rows or from a square; off the board it is taken away.
  function dragFrom(host, start, square, piece) {
    let group = null;
    const move = event => {
      if (!group && Math.hypot(event.clientX - start.clientX, event.clientY - start.clientY) < 5) return;
      if (!group && square >= 0) put(square, '.');
      group ||= drawPiece(svg, piece, 0, 0);
      holdPiece(svg, group, event);
    };
    const end = event => {
      host.removeEventListener('pointermove', move);
      host.removeEventListener('pointerup', end);
      host.removeEventListener('pointercancel', end);
      const to = squareAt(grid, false, event.clientX, event.clientY);
      if (group && event.type === 'pointerup') put(to, piece);
      if (group && to < 0) show();
      if (!group && square >= 0 && event.type === 'pointerup') press(square);
    };
    host.setPointerCapture(start.pointerId);
    host.addEventListener('pointermove', move);
    host.addEventListener('pointerup', end);
    host.addEventListener('pointercancel', end);
  }

  for (const piece of 'KQRBNP.kqrbnp') {
    const button = pieceButton(pieces, piece, piece === '.' ? 'nothing' : pieceName(piece));
    button.dataset.piece = piece;
    button.addEventListener('click', () => choose(piece));
    button.addEventListener('pointerdown', event => {
      if (piece !== '.' && event.isPrimary && event.button === 0) dragFrom(button, event, -1, piece);
    });
  }
  grid.addEventListener('pointerdown', event => {
    const square = squareAt(grid, false, event.clientX, event.clientY);
    if (!event.isPrimary || event.button !== 0 || square < 0) return;
    event.preventDefault();
    dragFrom(grid, event, square, board[square]);
  });
  grid.addEventListener('keydown', event => {
    if (event.key !== 'Enter' && event.key !== ' ') return;
    event.preventDefault();
    press(cells.indexOf(document.activeElement));
  });
  settings.addEventListener('change', write);
  field.addEventListener('input', () => read(field.value));

  return answerOf(dialog, end => {
    form.addEventListener('submit', async event => {
      event.preventDefault();
      const position = await rules.position(field.value.trim(), []);
      // The engine's form of the position, with the counters that were typed.
      const read = readFen(field.value);
      if (position && 'fen' in read) return end(`${position.fen} ${read.halfmove} ${read.fullmove}`);
      trouble.textContent = `This position can’t be used: ${rules.trouble || 'the engine doesn’t take it.'}`;
    });
    add('Empty board', () => { read(EMPTY); write(); });
    add('Start position', () => { read(START_FEN); write(); });
    add('Cancel', () => end(null), {class: 'apart'});
    make(buttons, 'button', 'Use it', {class: 'main'});
    choose('.');
    read(START_FEN);
    read(fen || START_FEN);
    write();
    if (fen) field.value = fen;
    dialog.showModal();
  });
}
