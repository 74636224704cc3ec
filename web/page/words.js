// Moves as people say and type them.

const SPOKEN = {N: 'knight ', B: 'bishop ', R: 'rook ', Q: 'queen ', K: 'king '};

/** A move's text for the ear: "Nxf3+" is "knight takes f3, check". @param {string} text */
export function spoken(text) {
  const castling = text.startsWith('O-O-O') ? 'castles queenside' : text.startsWith('O-O') ? 'castles kingside' : '';
  const said = castling || text.replace(/[+#]/g, '')
    .replace(/=(.)/, (_, piece) => ` promotes to ${SPOKEN[piece].trim()}`)
    .replace(/^[NBRQK]/, piece => SPOKEN[piece]).replace('x', ' takes ').replace(/ {2}/g, ' ');
  return said + (text.includes('#') ? ', checkmate' : text.includes('+') ? ', check' : '');
}

/** @param {string} text */
const plain = text => text.replace(/0/g, 'O').replace(/[^A-Za-z1-8]/g, '');

/** All ways in which a move may be typed, without its signs. @param {import('./rules.js').Move} move */
function formsOf(move) {
  const short = plain(move.text), from = move.uci.slice(0, 2), to = move.uci.slice(2, 4);
  const forms = [short, move.uci, move.uci.slice(0, 4), short.replace(/[QRBN]$/, '')];
  if (/^[NBRQK]/.test(short)) for (const part of [from[0], from[1], from]) forms.push(short[0] + part + to);
  return forms;
}

/**
 * The moves that a typed text may mean: none, one, or the promotions of a pawn if it doesn't say to what.
 * @param {string} text @param {import('./rules.js').Move[]} moves
 */
export function movesTyped(text, moves) {
  const typed = plain(text);
  if (!typed) return [];
  const exact = moves.filter(move => [plain(move.text), move.uci].includes(typed));
  if (exact.length) return exact;
  const found = moves.filter(move => formsOf(move).includes(typed));
  if (found.length) return found;
  return moves.filter(move => formsOf(move).some(form => form.toLowerCase() === typed.toLowerCase()));
}

/** @param {number} milliseconds "1:05", and "0:09.3" below ten seconds. */
export function clockText(milliseconds, tenths = true) {
  const left = Math.max(0, milliseconds);
  const seconds = tenths && left < 10000 ? Math.floor(left / 100) / 10 : Math.floor(left / 1000);
  const rest = seconds % 60;
  const hours = Math.floor(seconds / 3600), minutes = Math.floor(seconds / 60) % 60;
  const end = (tenths && left < 10000 ? rest.toFixed(1) : String(rest)).padStart(tenths && left < 10000 ? 4 : 2, '0');
  return hours ? `${hours}:${String(minutes).padStart(2, '0')}:${end}` : `${minutes}:${end}`;
}
