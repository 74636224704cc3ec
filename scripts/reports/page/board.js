// A board: 64 letters, a8 first, "." for an empty square, as a drawing with a text for those who don't see it.

const SVG = 'http://www.w3.org/2000/svg';
const FILES = 'abcdefgh';
export const SIZE = 45;  // of a square
const MARGIN = 12;       // of the board in the drawing

export const NAMES = {p: 'pawn', n: 'knight', b: 'bishop', r: 'rook', q: 'queen', k: 'king'};

// Outlines in a square of 45.
const PIECES = {
  p: 'M22.5 9a5.5 5.5 0 0 1 4 9.3c3 1.8 4.4 4.6 4.4 7.6 0 2-.8 3.8-2 5.1 4 1.5 6.6 4.5 6.6 8.5h-26c0-4 2.6-7 6.6-8.5a7.5 7.5 0 0 1-2-5.1c0-3 1.4-5.8 4.4-7.6A5.5 5.5 0 0 1 22.5 9z',
  n: 'M22 10c10 1 15.5 8 15 29.5H14.5c0-9 9-9 8-17-3 2-6 2.5-8.5 5-1.5 2-3.5 2.5-5.5 1.5s-2-3.5-.5-6c2-4 4-9.5 7.5-12V6.5L19 9l3-3z',
  b: 'M22.5 5.5a3 3 0 0 1 2 5.2c5 3.3 8 7.3 8 11.8 0 3.5-1.5 6-4 8h-12c-2.5-2-4-4.5-4-8 0-4.5 3-8.5 8-11.8a3 3 0 0 1 2-5.2zM16 33h13v2.5c4 .5 6.5 1.5 8 4h-29c1.5-2.5 4-3.5 7.5-4z',
  r: 'M11 9h5v4h4V9h5v4h4V9h5v8l-4 3.5v10.5l3 3v5.5H12v-5.5l3-3V20.5L11 17z',
  q: 'M6 13.5a2.5 2.5 0 1 1 4 2l4.5 8.5 1-12.5a2.5 2.5 0 1 1 3.5 0l3.5 11.5 3.5-11.5a2.5 2.5 0 1 1 3.5 0l1 12.5 4.5-8.5a2.5 2.5 0 1 1 4 2L35 29l-1.5 4 1 6.5h-24l1-6.5L10 29z',
  k: 'M21 5h3v3.5h3.5v3H24V15c1 1 1.5 2 1.5 3.5 7-4.5 13 0 12 5.5-.5 3-2.5 5-4.5 7v8.5H12V31c-2-2-4-4-4.5-7-1-5.5 5-10 12-5.5 0-1.5.5-2.5 1.5-3.5v-3.5h-3.5v-3H21z',
};

// Lines within the outlines.
const LINES = {
  p: '',
  n: 'M19 15a.8.8 0 1 0 .1 0zM12.6 26.6l1.4-1.4',
  b: 'M22.5 15.5v6M19.5 18.5h6M17.5 27.5c3-1 7-1 10 0',
  r: 'M15 20.5h15M15 31h15',
  q: 'M11 30.5c7-1.5 16-1.5 23 0M12 35.5c7-1.5 14-1.5 21 0',
  k: 'M12 31.5c6-2 15-2 21 0M12 35.5c6-2 15-2 21 0',
};

// An element of a drawing, with its attributes.
export function draw(parent, name, attributes = {}, text = '') {
  const element = document.createElementNS(SVG, name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  element.textContent = text;
  parent.append(element);
  return element;
}

// An element of the page; whatever the text holds, it is shown as text.
export function make(parent, name, text = '', attributes = {}) {
  const element = document.createElement(name);
  element.textContent = text;
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  parent.append(element);
  return element;
}

export const squareName = index => FILES[index % 8] + (8 - Math.floor(index / 8));
export const squareIndex = name => (8 - name[1]) * 8 + FILES.indexOf(name[0]);

// The squares of changes such as "e2.e4P", and the board after them.
export const changedSquares = changes => (changes.match(/.../g) || []).map(squareIndex);
export function applyChanges(board, changes) {
  const squares = [...board];
  for (const change of changes.match(/.../g) || []) squares[squareIndex(change)] = change[2];
  return squares.join('');
}

export const isWhite = piece => piece !== piece.toLowerCase();

export function describe(board) {
  const side = white => [...board].map((piece, i) => [piece, i])
    .filter(([piece]) => piece !== '.' && isWhite(piece) === white)
    .map(([piece, i]) => `${NAMES[piece.toLowerCase()]} ${squareName(i)}`).join(', ');
  return `White: ${side(true) || 'nothing'}. Black: ${side(false) || 'nothing'}.`;
}

// The corner of a square in the drawing; black sits below if it is flipped.
export function cornerOf(index, flipped = false) {
  const seen = flipped ? 63 - index : index;
  return [seen % 8 * SIZE + MARGIN, Math.floor(seen / 8) * SIZE];
}

const isDark = index => (index + Math.floor(index / 8)) % 2 === 1;

// A piece with its upper left corner at the place.
export function drawPiece(svg, piece, x, y) {
  const side = isWhite(piece) ? 'white' : 'black';
  const group = draw(svg, 'g', {class: `piece ${side}`, transform: `translate(${x} ${y})`});
  draw(group, 'path', {d: PIECES[piece.toLowerCase()]});
  draw(group, 'path', {d: LINES[piece.toLowerCase()], class: 'lines'});
  return group;
}

// A square with what is marked on it, all but its piece.
function drawSquare(svg, index, piece, look) {
  const [x, y] = cornerOf(index, look.flipped);
  const place = {x, y, width: SIZE, height: SIZE};
  const middle = {cx: x + SIZE / 2, cy: y + SIZE / 2};
  draw(svg, 'rect', {...place, class: isDark(index) ? 'dark' : 'light'});
  if (look.colours[index]) draw(svg, 'rect', {...place, fill: look.colours[index]});
  if (look.marked.includes(index)) draw(svg, 'rect', {...place, class: 'mark'});
  if (look.selected === index) draw(svg, 'rect', {...place, class: 'selected'});
  if (look.check === index) draw(svg, 'circle', {...middle, r: SIZE / 2 - 1, class: 'check'});
  if (!look.targets.includes(index)) return;
  if (piece === '.') draw(svg, 'circle', {...middle, r: 7, class: 'target'});
  else draw(svg, 'circle', {...middle, r: SIZE / 2 - 2.5, class: 'target taken'});
}

// Ranks and files, beside the board or in the corners of its squares.
function drawNames(svg, inside, flipped) {
  for (let i = 0; i < 8; ++i) {
    const rank = String(flipped ? i + 1 : 8 - i), file = FILES[flipped ? 7 - i : i];
    const dark = isDark(i * 8);
    draw(svg, 'text', inside ? {x: MARGIN + 1.5, y: i * SIZE + 8, class: dark ? 'on-dark' : 'on-light'}
                             : {x: 2, y: i * SIZE + 26}, rank);
    draw(svg, 'text', inside ? {x: i * SIZE + MARGIN + 39.5, y: 358, class: dark ? 'on-light' : 'on-dark'}
                             : {x: i * SIZE + 32, y: 371}, file);
  }
}

// Draws boards into the host; `inside` leaves no margin for the names of ranks and files.
// `marked` and `targets` hold indices of squares, `selected` and `check` are one, `colours` has a colour or nothing for
// each square. The result is the drawing, for what comes on top of it; a piece there has its square as data-square.
export function createBoard(host, {inside = false} = {}) {
  const svg = draw(host, 'svg', {class: 'board', viewBox: inside ? `${MARGIN} 0 360 360` : '0 0 372 374', role: 'img'});
  return {
    show(board, {flipped = false, marked = [], targets = [], selected = -1, check = -1, colours = []} = {}) {
      const look = {flipped, marked, targets, selected, check, colours};
      svg.replaceChildren();
      svg.setAttribute('aria-label', describe(board));
      [...board].forEach((piece, i) => drawSquare(svg, i, piece, look));
      drawNames(svg, inside, flipped);
      [...board].forEach((piece, i) => {
        if (piece !== '.') drawPiece(svg, piece, ...cornerOf(i, flipped)).dataset.square = i;
      });
      return svg;
    },
  };
}
