// A game against the engine.
import {make} from './board.js';
import {createInput} from './boardinput.js';
import {createClocks} from './clock.js';
import {createGame} from './game.js';
import {endOf, newMatch, OTHER, soundMatch} from './match.js';
import {askForGame, strengthText} from './newgame.js';
import {createOpponent} from './opponent.js';
import {positionShown, START_FEN} from './rules.js';
import {createClaim} from './tabs.js';
import {clockText, movesTyped, spoken} from './words.js';

/** @typedef {import('./rules.js').Move} Move */
/** @typedef {import('./rules.js').Position} Position */

const KEY = 'play';

/**
 * @param {HTMLElement} host
 * @param {import('./app.js').App} app
 */
export function createPlay(host, app) {
  const game = createGame();
  let match = restored();
  let position = shownPly();  // of the game's last ply
  let turnNumber = 0;         // answers to questions of earlier turns are dropped
  let shown = false, thinking = 0, trouble = '';
  const opponent = createOpponent(app);
  const clocks = createClocks(showTimes, side => { match.flagged = side; settle(); });
  const claim = createClaim('vrel-play', claimChanged);

  const columns = make(host, 'div', '', {class: 'columns'});
  const left = make(columns, 'div', '', {class: 'column of-board'});
  const right = make(columns, 'div', '', {class: 'column of-text'});
  const above = make(left, 'div', '', {class: 'player'});
  const board = createInput(left, {move: played, refuse: app.announce});
  const below = make(left, 'div', '', {class: 'player'});
  const players = [above, below].map(line =>
    ({name: make(line, 'span'), clock: make(line, 'span', '', {class: 'clock', role: 'timer'})}));
  const state = make(right, 'p', '', {class: 'state'});
  const elsewhere = make(right, 'div', '', {class: 'panel', hidden: ''});
  const list = make(right, 'ol', '', {class: 'moves', 'aria-label': 'Moves'});
  const typed = make(right, 'form', '', {class: 'typed'});
  const field = make(typed, 'input', '', {'aria-label': 'Type a move', placeholder: 'Type a move: e4, Nf3, e2e4',
    enterkeyhint: 'go', autocomplete: 'off', autocapitalize: 'off', spellcheck: false});
  const actions = make(right, 'div', '', {class: 'actions', role: 'group', 'aria-label': 'Game'});
  const buttons = {
    game: button('New game', () => ask()),
    back: button('Take back', takeBack),
    flip: button('Flip', () => { match.turned = !match.turned; save(); render(); }),
    analyse: button('Analyse', () => app.goTo('analyse', {start: game.fullFen(0), moves: allMoves(), game: game.save()})),
  };
  make(elsewhere, 'p', 'This game is being played in another tab.');
  make(elsewhere, 'button', 'Play here', {type: 'button', class: 'main'}).addEventListener('click', () => claim.take());

  function button(text, act) {
    const made = make(actions, 'button', text, {type: 'button'});
    made.addEventListener('click', act);
    return made;
  }

  function stateButton(text, act) {
    make(state, 'button', text, {type: 'button'}).addEventListener('click', act);
  }

  // The game and the match as they were kept, new ones if that can't be read.
  function restored() {
    const kept = app.load(KEY, null);
    if (!game.restore(kept?.game)) {
      game.setPosition();
      return soundMatch({side: kept?.side, strength: kept?.strength}, 0);
    }
    game.go(game.moves.length);
    return soundMatch(kept, game.moves.length);
  }

  // The position of the ply that is shown, as far as it is known without the rules.
  function shownPly() {
    return positionShown(game.fen(), game.moves[game.ply - 1]?.text);
  }

  const allMoves = () => game.uciMoves(game.moves.length);
  const turn = () => position.whiteToMove ? 'w' : 'b';
  const known = () => position.moves.length > 0 || position.state !== 'play';
  const over = () => endOf(match, position) !== null;
  const live = () => game.ply === game.moves.length;
  const bottom = () => match.turned ? OTHER[match.side] : match.side;
  const moverOf = ply => game.whiteToMove(ply - 1) ? 'w' : 'b';
  const canTakeBack = () => game.moves.length > 1 || game.moves.length > 0 && moverOf(1) === match.side;

  function save() {
    if (claim.held()) app.save(KEY, {...match, now: clocks.now(), game: game.save()});
  }

  function stateText() {
    if (trouble) return trouble;
    if (!live()) return game.ply ? `After ${game.numberText(game.ply)} ${game.moves[game.ply - 1].text}` : 'Start';
    if (over()) return endOf(match, position).text;
    if (!known()) return 'One moment';
    if (turn() === match.side) return position.check ? 'Check. Your move' : 'Your move';
    return `Vrel is thinking${thinking ? `, depth ${thinking}` : ''}`;
  }

  function showTimes(times) {
    const sides = [OTHER[bottom()], bottom()];
    players.forEach(({clock}, i) => {
      const text = clockText(times[sides[i]], match.strength.way === 'clock');
      if (clock.textContent !== text) clock.textContent = text;
    });
  }

  function showMoves() {
    while (list.children.length > game.moves.length) list.lastChild.remove();
    game.moves.forEach((move, i) => {
      const text = (game.whiteToMove(i) || i === 0 ? `${game.numberText(i + 1)} ` : '') + move.text;
      const item = list.children[i] || make(list, 'li');
      const knob = /** @type {HTMLElement} */ (item.firstChild || make(item, 'button', '', {type: 'button'}));
      if (knob.textContent !== text) {
        knob.textContent = text;
        knob.onclick = () => look(i + 1);
      }
      if (i + 1 === game.ply) knob.setAttribute('aria-current', 'true');
      else knob.removeAttribute('aria-current');
    });
    const current = /** @type {HTMLElement} */ (list.querySelector('[aria-current]'));
    if (current) list.scrollTo(current.offsetLeft - list.clientWidth / 2, current.offsetTop - list.clientHeight / 2);
    list.hidden = !game.moves.length;
  }

  function render(animate = false) {
    const move = game.moves[game.ply - 1];
    const mine = shown && claim.held() && live() && !over() && turn() === match.side;
    const last = move ? [move.from, move.to] : [];
    board.show(live() ? position : shownPly(), {last, side: mine ? match.side : '', flipped: bottom() === 'b', animate});
    players.forEach(({name}, i) => {
      const side = i ? bottom() : OTHER[bottom()];
      name.textContent = side === match.side ? 'You' : `Vrel, ${strengthText(match.strength)}`;
      name.parentElement.classList.toggle('on-move', !over() && turn() === side);
    });
    showTimes(clocks.now());
    state.textContent = stateText();
    if (!live()) stateButton('Back to the game', () => look(game.moves.length));
    state.classList.toggle('over', over() && live());
    elsewhere.hidden = !claim.lost();
    for (const made of [buttons.game, buttons.back, field]) made.disabled = !claim.held();
    buttons.back.disabled ||= !canTakeBack();
    showMoves();
  }

  function look(ply) {
    game.go(ply);
    render(true);
    app.announce(stateText());
  }

  // Asks the rules what the position is, then lets the side on move go on.
  async function settle() {
    const mine = ++turnNumber;
    opponent.abandon();
    thinking = 0;
    render();
    try {
      const found = await (await app.rules).position(game.fullFen(0), allMoves());
      if (mine !== turnNumber) return;
      if (!found) return recover();
      position = found;
    } catch (error) {
      if (mine === turnNumber) failed(error, app.restartRules);
      return;
    }
    const end = endOf(match, position);
    if (end) {
      clocks.stop();
      game.setTag('Result', {w: '1-0', b: '0-1'}[end.winner] || '1/2-1/2');
      app.announce(end.text);
    }
    save();
    render();
    goOn();
  }

  // What was kept can't be played to its end: goes back to where it can.
  function recover() {
    if (game.moves.length) game.takeBack();
    else game.setPosition();
    match.times.length = game.moves.length + 1;
    app.tell('The game that was kept can’t be played on from its last position; it goes on from an earlier one.');
    position = shownPly();
    settle();
  }

  function goOn() {
    if (!shown || !claim.held() || over() || !known()) return;
    if (turn() !== match.side) think();
    else if (game.moves.length) clocks.run(match.side);
  }

  function limits(times) {
    const {way, seconds, depth, increment} = match.strength;
    if (way === 'depth') return `depth ${depth}`;
    if (way === 'time') return `movetime ${Math.round(seconds * 1000)}`;
    const [white, black] = [times.w, times.b].map(time => Math.max(1, Math.round(time)));
    return `wtime ${white} btime ${black} winc ${increment * 1000} binc ${increment * 1000}`;
  }

  async function think() {
    const mine = turnNumber;
    trouble = '';
    const moves = allMoves();
    clocks.run(turn());
    try {
      const line = `position fen ${game.fullFen(0)}${moves.length ? ` moves ${moves.join(' ')}` : ''}`;
      const answer = await opponent.think(line, limits(clocks.now()), depth => {
        if (mine !== turnNumber || depth === thinking) return;
        thinking = depth;
        if (live()) state.textContent = stateText();
      });
      if (!answer || mine !== turnNumber) return;
      const move = position.moves.find(each => each.uci === answer.uci);
      if (!move) throw new Error(`it answers “${answer.uci}”`);
      add(move, answer);
    } catch (error) {
      if (mine === turnNumber) failed(error);
    }
  }

  function failed(error, mend = () => {}) {
    clocks.stop();
    trouble = `The engine can’t go on: ${error instanceof Error ? error.message : error}. `;
    render();
    stateButton('Try again', () => {
      trouble = '';
      mend();
      settle();
    });
    app.announce(trouble);
  }

  /** @param {Move} move @param {{score?: number, depth?: number}} answer the score as the engine sees it */
  function add(move, {score, depth} = {}) {
    const mover = turn();
    match.times.push(clocks.running ? clocks.moved() : clocks.now());
    if (score !== undefined) game.setScore(game.moves.length, {centipawns: mover === 'w' ? score : -score, depth});
    game.go(game.moves.length);
    game.play(move);
    position = shownPly();
    app.announce(`${mover === match.side ? 'You' : 'Vrel'}: ${spoken(move.text)}`);
    settle();
    render(true);
  }

  /** @param {Move} move */
  function played(move) {
    if (over() || turn() !== match.side || !position.moves.includes(move) || !claim.held()) return render();
    add(move);
  }

  function takeBack() {
    if (!canTakeBack() || !claim.held()) return;
    game.takeBack(moverOf(game.moves.length) === match.side ? 1 : 2);
    match.times.length = game.moves.length + 1;
    match.now = match.times.at(-1);
    match.flagged = trouble = '';
    setClocks();
    position = shownPly();
    const last = game.moves.at(-1);
    app.announce(`Taken back. ${last ? `Last move: ${spoken(last.text)}` : 'Start of the game'}`);
    settle();
    render(true);
  }

  function begin({side, strength, start}) {
    // A limit of depth would stay with the engine.
    opponent.end();
    game.setPosition(start || START_FEN);
    match = newMatch(side, strength);
    game.setTag(side === 'w' ? 'Black' : 'White', 'Vrel');
    trouble = '';
    setClocks();
    position = shownPly();
    app.announce(`New game. You play ${side === 'w' ? 'white' : 'black'}.`);
    settle();
  }

  /** @param {string | null} from a position that is offered first */
  async function ask(from = null) {
    const here = game.fullFen(game.ply);
    const wish = await askForGame({side: from ? from.split(' ')[1] : match.side, strength: match.strength, start: from},
                                  here === START_FEN ? null : here, app.setUp);
    if (wish) begin(wish);
  }

  function setClocks() {
    clocks.set(match.now, match.strength.way === 'clock', match.strength.increment * 1000);
  }

  // Another tab has taken the game, or this one has.
  function claimChanged() {
    if (!shown) return;
    reread();
  }

  function reread() {
    match = restored();
    setClocks();
    position = shownPly();
    settle();
  }

  typed.addEventListener('submit', event => {
    event.preventDefault();
    const mine = live() && !over() && turn() === match.side;
    const found = mine ? movesTyped(field.value, position.moves) : [];
    const one = found.length === 1, promotions = new Set(found.map(move => move.from * 64 + move.to)).size === 1;
    field.setCustomValidity('');
    if (found.length && (one || promotions)) {
      field.value = '';
      return one ? played(found[0]) : board.choose(found);
    }
    const word = !mine ? 'It isn’t your move.' : !found.length ? `“${field.value}” is no move here.`
      : `“${field.value}” may mean ${found.map(move => move.text).join(' or ')}.`;
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
      claim.ask();
      if (!what) return;
      const from = await (await app.rules).position(what.start || START_FEN, what.moves);
      if (from) ask(from.fen);
    },
    hide() {
      clocks.stop();
      match.now = clocks.now();
      save();
      shown = false;
      ++turnNumber;
      opponent.end();
    },
  };
}
