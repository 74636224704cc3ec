// A game against the engine.
import {make} from './board.js';
import {createInput} from './boardinput.js';
import {createClocks} from './clock.js';
import {askForGame, soundStrength, strengthText} from './newgame.js';
import {createOpponent} from './opponent.js';
import {boardOf, START_FEN} from './setup.js';
import {createClaim} from './tabs.js';
import {clockText, movesTyped, spoken} from './words.js';

/** @typedef {import('./rules.js').Move} Move */
/** @typedef {import('./rules.js').Position} Position */
/** @typedef {{w: number, b: number}} Times   milliseconds: left with a clock, else spent */
/** @typedef {{uci: string, text: string, fen: string, times: Times, score?: number, depth?: number}} Ply */
/**
 * @typedef {object} Game
 * @property {string | null} start null for the start position
 * @property {string} side the person's, 'w' or 'b'
 * @property {import('./newgame.js').Strength} strength
 * @property {Ply[]} plies
 * @property {Times} times
 * @property {string} flagged the side whose time has run out, or ''
 * @property {boolean} turned the board is seen from the engine's side
 */

const KEY = 'play';
const OTHER = {w: 'b', b: 'w'};
const DRAWS = {stalemate: 'Stalemate: a draw', repetition: 'A draw: the position has been repeated',
               fifty: 'A draw: fifty moves without a capture or a pawn’s move', material: 'A draw: nobody can mate'};

/** @returns {Times} */
function timesAtStart(strength) {
  const time = strength.way === 'clock' ? strength.minutes * 60000 : 0;
  return {w: time, b: time};
}

/** @returns {Game} */
function newGame(side, strength, start) {
  return {start, side, strength, plies: [], times: timesAtStart(strength), flagged: '', turned: false};
}

const isTimes = times => Number.isFinite(times?.w) && Number.isFinite(times?.b);
const isPly = ply => typeof ply?.uci === 'string' && typeof ply.text === 'string' && boardOf(String(ply.fen)) && isTimes(ply.times);

/** The game as it was kept, a new one if that can't be read. @returns {Game} */
function soundGame(kept) {
  const sound = kept && (kept.start === null || boardOf(String(kept.start))) && Array.isArray(kept.plies) &&
                kept.plies.every(isPly) && isTimes(kept.times);
  const game = newGame(kept?.side === 'b' ? 'b' : 'w', soundStrength(kept?.strength), null);
  if (!sound) return game;
  const {start, plies, times} = kept;
  return {...game, start, plies, times, flagged: OTHER[kept.flagged] ? kept.flagged : '', turned: kept.turned === true};
}

/** A position known by its FEN alone: what can be shown before the rules have been asked. @returns {Position} */
function positionShown(fen, text = '') {
  return {fen, board: boardOf(fen), whiteToMove: fen.split(' ')[1] !== 'b', check: /[+#]/.test(text), state: 'play', moves: []};
}

const squaresOf = uci => [uci.slice(0, 2), uci.slice(2, 4)].map(name => (8 - Number(name[1])) * 8 + name.charCodeAt(0) - 97);

/**
 * @param {HTMLElement} host
 * @param {import('./app.js').App} app
 */
export function createPlay(host, app) {
  let game = soundGame(app.load(KEY, null));
  let seen = -1;            // the ply that is looked at, -1 for the game itself
  let position = latest();
  let turnNumber = 0;       // answers to questions of earlier turns are dropped
  let shown = false, thinking = 0, trouble = '';
  const opponent = createOpponent(app);
  const clocks = createClocks(showTimes, side => { game.flagged = side; settle(); });
  const claim = createClaim('vrel-play', claimChanged);

  const columns = make(host, 'div', '', {class: 'columns'});
  const left = make(columns, 'div', '', {class: 'column of-board'});
  const right = make(columns, 'div', '', {class: 'column of-text'});
  const above = make(left, 'div', '', {class: 'player'});
  const board = createInput(left, {move: played, refuse: app.announce});
  const below = make(left, 'div', '', {class: 'player'});
  const players = [above, below].map(line => ({name: make(line, 'span'), clock: make(line, 'span', '', {class: 'clock', role: 'timer'})}));
  const state = make(right, 'p', '', {class: 'state'});
  const elsewhere = make(right, 'div', '', {class: 'panel', hidden: ''});
  const list = make(right, 'ol', '', {class: 'moves', 'aria-label': 'Moves'});
  const typed = make(right, 'form', '', {class: 'typed'});
  const field = make(typed, 'input', '', {'aria-label': 'Type a move', placeholder: 'Type a move: e4, Nf3, e2e4', enterkeyhint: 'go',
                                          autocomplete: 'off', autocapitalize: 'off', spellcheck: false});
  const actions = make(right, 'div', '', {class: 'actions', role: 'group', 'aria-label': 'Game'});
  const buttons = {
    game: button('New game', () => ask()),
    back: button('Take back', takeBack),
    flip: button('Flip', () => { game.turned = !game.turned; save(); render(); }),
    analyse: button('Analyse', () => app.goTo('analyse', {start: game.start, moves: game.plies.map(ply => ply.uci)})),
  };
  make(elsewhere, 'p', 'This game is being played in another tab.');
  make(elsewhere, 'button', 'Play here', {type: 'button', class: 'main'}).addEventListener('click', () => claim.take());

  function button(text, act) {
    const made = make(actions, 'button', text, {type: 'button'});
    made.addEventListener('click', act);
    return made;
  }

  // The position of the game, or the one that is looked at, as far as it is known without the rules.
  function latest() {
    const ply = game.plies[seen >= 0 ? seen : game.plies.length - 1];
    return ply ? positionShown(ply.fen, ply.text) : positionShown(game.start || START_FEN);
  }

  const turn = () => position.whiteToMove ? 'w' : 'b';
  const known = () => position.moves.length > 0 || position.state !== 'play';
  const over = () => game.flagged !== '' || position.state !== 'play';
  const bottom = () => game.turned ? OTHER[game.side] : game.side;
  const canTakeBack = () => game.plies.some((ply, i) => moverOf(i) === game.side);

  // The side that made a ply.
  function moverOf(i) {
    const first = (game.start || START_FEN).split(' ')[1] === 'b' ? 'b' : 'w';
    return i % 2 ? OTHER[first] : first;
  }

  function save() {
    if (claim.held()) app.save(KEY, {...game, times: clocks.now()});
  }

  function resultText() {
    const person = winner => winner === game.side ? 'you win' : 'Vrel wins';
    if (game.flagged) {
      const winner = OTHER[game.flagged];
      const bare = !/[PNBRQ]/i.test([...position.board].filter(piece => (piece === piece.toUpperCase()) === (winner === 'w')).join(''));
      const whose = game.flagged === game.side ? 'Your time is up' : 'Vrel’s time is up';
      return `${whose}: ${bare ? 'a draw, a lone king can’t mate' : person(winner)}`;
    }
    return position.state === 'mate' ? `Checkmate: ${person(OTHER[turn()])}` : DRAWS[position.state] || '';
  }

  function stateText() {
    if (trouble) return trouble;
    if (seen >= 0) return `After ${numberOf(seen)} ${game.plies[seen].text}`;
    if (over()) return resultText();
    if (turn() === game.side) return position.check ? 'Check. Your move' : 'Your move';
    return `Vrel is thinking${thinking ? `, depth ${thinking}` : ''}`;
  }

  function numberOf(i) {
    const first = moverOf(0) === 'b' ? 1 : 0;
    const start = Number((game.start || START_FEN).split(' ')[5]) || 1;
    return `${start + Math.floor((i + first) / 2)}${moverOf(i) === 'w' ? '.' : '…'}`;
  }

  function showTimes(times) {
    const sides = [OTHER[bottom()], bottom()];
    players.forEach(({clock}, i) => {
      const text = clockText(times[sides[i]], game.strength.way === 'clock');
      if (clock.textContent !== text) clock.textContent = text;
    });
  }

  function showMoves() {
    while (list.children.length > game.plies.length) list.lastChild.remove();
    game.plies.forEach((ply, i) => {
      const text = (moverOf(i) === 'w' || i === 0 ? `${numberOf(i)} ` : '') + ply.text;
      const item = list.children[i] || make(list, 'li');
      const knob = item.firstChild || make(item, 'button', '', {type: 'button'});
      if (knob.textContent !== text) {
        knob.textContent = text;
        knob.onclick = () => look(i);
      }
      if (i === (seen >= 0 ? seen : game.plies.length - 1)) knob.setAttribute('aria-current', 'true');
      else knob.removeAttribute('aria-current');
    });
    const current = list.querySelector('[aria-current]');
    if (current) list.scrollTo({top: current.offsetTop - list.clientHeight / 2, left: current.offsetLeft - list.clientWidth / 2});
    list.hidden = !game.plies.length;
  }

  function render(animate = false) {
    const ply = game.plies[seen >= 0 ? seen : game.plies.length - 1];
    const view = seen >= 0 ? latest() : position;
    const mine = shown && claim.held() && seen < 0 && !over() && turn() === game.side;
    board.show(view, {last: ply ? squaresOf(ply.uci) : [], side: mine ? game.side : '', flipped: bottom() === 'b', animate});
    players.forEach(({name}, i) => {
      const side = i ? bottom() : OTHER[bottom()];
      name.textContent = side === game.side ? 'You' : `Vrel, ${strengthText(game.strength)}`;
      name.parentElement.classList.toggle('on-move', !over() && turn() === side);
    });
    showTimes(clocks.now());
    state.textContent = stateText();
    state.classList.toggle('over', over() && seen < 0);
    elsewhere.hidden = claim.held() || !shown;
    for (const made of [buttons.game, buttons.back, field]) made.disabled = !claim.held();
    buttons.back.disabled ||= !canTakeBack();
    showMoves();
  }

  function look(i) {
    seen = i === game.plies.length - 1 ? -1 : i;
    render(true);
    app.announce(stateText());
  }

  // Asks the rules what the position is, then lets the side on move go on.
  async function settle() {
    const mine = ++turnNumber;
    opponent.abandon();
    thinking = 0;
    render();
    const rules = await app.rules.catch(() => null);
    const moves = game.plies.map(ply => ply.uci);
    const found = await rules?.position(game.start, moves);
    if (mine !== turnNumber) return;
    if (found === null) return recover();
    if (!found) return;
    position = found;
    if (over()) {
      clocks.stop();
      app.announce(resultText());
    }
    save();
    render();
    goOn();
  }

  // What was kept can't be played to its end: goes back to where it can.
  function recover() {
    if (game.plies.length) game.plies.pop();
    else game.start = null;
    app.tell('The game that was kept can’t be played on from its last position; it goes on from an earlier one.');
    position = latest();
    settle();
  }

  function goOn() {
    if (!shown || !claim.held() || over() || !known()) return;
    if (turn() !== game.side) think();
    else if (game.plies.length) clocks.run(game.side);
  }

  function limits(times) {
    const {way, seconds, depth, increment} = game.strength;
    if (way === 'depth') return `depth ${depth}`;
    // A depth given before would stay, so it is lifted by the greatest.
    if (way === 'time') return `depth 66 movetime ${Math.round(seconds * 1000)}`;
    const [white, black] = [times.w, times.b].map(time => Math.max(1, Math.round(time)));
    return `depth 66 wtime ${white} btime ${black} winc ${increment * 1000} binc ${increment * 1000}`;
  }

  async function think() {
    const mine = turnNumber;
    trouble = '';
    const moves = game.plies.map(ply => ply.uci).join(' ');
    clocks.run(turn());
    try {
      const answer = await opponent.think(`position ${game.start ? `fen ${game.start}` : 'startpos'}${moves ? ` moves ${moves}` : ''}`,
        limits(clocks.now()), depth => {
          if (mine !== turnNumber || depth === thinking) return;
          thinking = depth;
          if (seen < 0) state.textContent = stateText();
        });
      if (!answer || mine !== turnNumber) return;
      const move = position.moves.find(each => each.uci === answer.uci);
      if (!move) throw new Error(`it answers “${answer.uci}”`);
      add(move, answer);
    } catch (error) {
      if (mine === turnNumber) failed(error);
    }
  }

  function failed(error) {
    clocks.stop();
    trouble = `The engine can’t go on: ${error instanceof Error ? error.message : error}. `;
    render();
    const again = make(state, 'button', 'Try again', {type: 'button'});
    again.addEventListener('click', () => { trouble = ''; settle(); });
    app.announce(trouble);
  }

  /** @param {Move} move @param {{score?: number, depth?: number}} answer */
  function add(move, {score, depth} = {}) {
    const mover = turn();
    const times = clocks.running ? clocks.moved() : clocks.now();
    game.plies.push({uci: move.uci, text: move.text, fen: move.fen, times, ...(score !== undefined && {score, depth})});
    position = positionShown(move.fen, move.text);
    app.announce(mover === game.side ? `You: ${spoken(move.text)}` : `Vrel: ${spoken(move.text)}`);
    const next = settle();
    render(true);
    return next;
  }

  /** @param {Move} move */
  function played(move) {
    if (over() || turn() !== game.side || !position.moves.includes(move) || !claim.held()) return render();
    add(move);
  }

  function takeBack() {
    if (!canTakeBack() || !claim.held()) return;
    for (let mover = ''; mover !== game.side;) {
      mover = moverOf(game.plies.length - 1);
      game.plies.pop();
    }
    const ply = game.plies.at(-1);
    game.flagged = trouble = '';
    clocks.set(ply ? ply.times : timesAtStart(game.strength), game.strength.way === 'clock', game.strength.increment * 1000);
    seen = -1;
    position = latest();
    app.announce(`Taken back. ${ply ? `Last move: ${spoken(ply.text)}` : 'Start of the game'}`);
    const next = settle();
    render(true);
    return next;
  }

  function begin({side, strength, start}) {
    opponent.abandon();
    game = newGame(side, strength, start === START_FEN ? null : start);
    seen = -1;
    trouble = '';
    clocks.set(game.times, strength.way === 'clock', strength.increment * 1000);
    position = latest();
    opponent.newGame();
    app.announce(`New game. You play ${side === 'w' ? 'white' : 'black'}.`);
    settle();
  }

  /** @param {string | null} from a position that is offered first */
  async function ask(from = null) {
    const here = game.plies.length ? position.fen : game.start;
    const wish = await askForGame({side: from ? from.split(' ')[1] : game.side, strength: game.strength, start: from}, here, app.setUp);
    if (wish) begin(wish);
  }

  function setClocks() {
    clocks.set(game.times, game.strength.way === 'clock', game.strength.increment * 1000);
  }

  // Another tab has taken the game, or this one has.
  function claimChanged() {
    if (!shown) return;
    reread();
  }

  function reread() {
    game = soundGame(app.load(KEY, null));
    seen = -1;
    setClocks();
    position = latest();
    settle();
  }

  typed.addEventListener('submit', event => {
    event.preventDefault();
    const mine = seen < 0 && !over() && turn() === game.side;
    const found = mine ? movesTyped(field.value, position.moves) : [];
    const one = found.length === 1, promotions = new Set(found.map(move => move.from * 64 + move.to)).size === 1;
    field.setCustomValidity('');
    if (found.length && (one || promotions)) {
      field.value = '';
      return one ? played(found[0]) : board.choose(found);
    }
    const word = !mine ? 'It isn’t your move.' : found.length ? `“${field.value}” may mean ${found.map(move => move.text).join(' or ')}.`
                                                              : `“${field.value}” is no move here.`;
    app.announce(word);
    field.setCustomValidity(word);
    field.reportValidity();
  });
  field.addEventListener('input', () => field.setCustomValidity(''));
  addEventListener('storage', event => {
    if (shown && !claim.held() && event.key === app.keyOf(KEY)) reread();
  });
  setClocks();
  render();

  return {
    /** @param {{start: string | null, moves: string[]}} [what] a position to play from */
    async show(what) {
      shown = true;
      render();
      await claim.ask();
      reread();
      if (!what) return;
      const from = await (await app.rules).position(what.start, what.moves);
      if (from) ask(from.fen);
    },
    hide() {
      clocks.stop();
      game.times = clocks.now();
      save();
      shown = false;
      ++turnNumber;
      opponent.end();
    },
  };
}
