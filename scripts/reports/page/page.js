// The page of a report: games to step through, or an evaluation.
import {applyChanges, changedSquares, createBoard, make} from './board.js';
import {createCurve, scoreText} from './curve.js';
import {showEvaluation} from './evaluation.js';

// The boards of a game, from its start on.
function boardsOf(game) {
  const boards = [game.board];
  for (const move of game.moves) boards.push(applyChanges(boards.at(-1), move.changes));
  return boards;
}

function announce(game, ply) {
  if (!ply) return 'Start';
  const move = game.moves[ply - 1];
  const score = move.score === undefined ? '' : `, ${scoreText(move.score)}`;
  return `${move.number} ${move.text}${score}${move.doubtful ? ', doubtful' : ''}`;
}

function addMove(list, move, ply, go) {
  const number = move.number.endsWith('...') && ply > 1 ? '' : `${move.number} `;
  const button = make(make(list, 'li'), 'button', number + move.text, {type: 'button', tabindex: -1});
  if (move.doubtful) make(button, 'span', ' ?', {class: 'doubtful', title: 'doubtful', 'aria-label': 'doubtful'});
  if (move.score !== undefined) make(button, 'span', scoreText(move.score), {class: 'score'});
  button.addEventListener('click', () => go(ply));
  return button;
}

// One game: board, curve and moves, and the ply that is shown.
function createPlayer(left, right) {
  let game = null, boards = [], buttons = [], ply = 0;
  const title = make(left, 'h2');
  const board = createBoard(left);
  const now = make(left, 'p', '', {class: 'now', role: 'status', 'aria-live': 'polite'});
  const steps = make(left, 'div', '', {class: 'steps', role: 'group', 'aria-label': 'Step through the game'});
  const curve = createCurve(right, go);
  const list = make(right, 'ol', '', {class: 'moves', 'aria-label': 'Moves'});
  const tags = make(make(right, 'details'), 'dl');
  tags.before(Object.assign(document.createElement('summary'), {textContent: 'Tags of the game'}));

  function go(target) {
    const inList = list.contains(document.activeElement);
    buttons[ply - 1]?.removeAttribute('aria-current');
    buttons[ply - 1]?.setAttribute('tabindex', -1);
    ply = Math.max(0, Math.min(boards.length - 1, target));
    board.show(boards[ply], {marked: ply ? changedSquares(game.moves[ply - 1].changes) : []});
    curve.mark(ply);
    now.textContent = announce(game, ply);
    const button = buttons[Math.max(ply - 1, 0)];
    button.setAttribute('tabindex', 0);
    if (ply) button.setAttribute('aria-current', 'true');
    if (inList) button.focus({preventScroll: true});
    list.scrollTop = button.offsetTop - list.clientHeight / 2;
  }

  const moves = {ArrowLeft: () => go(ply - 1), ArrowRight: () => go(ply + 1),
                 Home: () => go(0), End: () => go(boards.length - 1)};
  const add = (text, label, key) => {
    const button = make(steps, 'button', text, {type: 'button', 'aria-label': label, 'aria-keyshortcuts': key});
    button.addEventListener('click', moves[key]);
  };
  add('|◀\ufe0e', 'Start', 'Home');
  add('◀\ufe0e', 'Move back', 'ArrowLeft');
  add('▶\ufe0e', 'Move on', 'ArrowRight');
  add('▶\ufe0e|', 'End', 'End');
  document.addEventListener('keydown', event => {
    const inSelect = event.target.tagName === 'SELECT' && !event.key.startsWith('Arrow');
    if (!moves[event.key] || inSelect || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    moves[event.key]();
  });

  return {
    show(newGame) {
      game = newGame;
      boards = boardsOf(game);
      ply = 0;
      title.textContent = game.title;
      list.replaceChildren();
      buttons = game.moves.map((move, i) => addMove(list, move, i + 1, go));
      tags.replaceChildren();
      for (const [name, value] of game.tags) { make(tags, 'dt', name); make(tags, 'dd', value); }
      curve.show(game.moves);
      go(0);
    },
  };
}

function columns(main) {
  const both = make(main, 'div', '', {class: 'columns'});
  return [make(both, 'div', '', {class: 'column'}), make(both, 'div', '', {class: 'column'})];
}

function showGames(main, data) {
  make(main, 'label', 'Game', {for: 'games'});
  const select = make(main, 'select', '', {id: 'games', size: Math.min(data.games.length, innerWidth < 700 ? 1 : 6)});
  data.games.forEach((game, i) => make(select, 'option', `${i + 1}. ${game.title}`, {value: i}));
  const player = createPlayer(...columns(main));
  select.addEventListener('change', () => player.show(data.games[select.value]));
  select.selectedIndex = data.chosen;
  player.show(data.games[data.chosen]);
}

const data = JSON.parse(document.getElementById('data').textContent);
const main = document.getElementById('main');
make(main, 'h1', data.name);
const report = make(main, 'details');
make(report, 'summary', 'Report as text');
make(report, 'pre', data.report.join('\n'), {tabindex: 0});
if (data.games) showGames(main, data);
else showEvaluation(...columns(main), data.evaluation);
