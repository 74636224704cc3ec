// Analysis: a position or a game, the engine's lines, the score curve, doubtful moves, the evaluation as a picture.
import {createAnalyser} from './analyser.js';
import {make} from './board.js';
import {createInput} from './boardinput.js';
import {createCurve} from './curve.js';
import {showEvaluation} from './evaluation.js';
import {createGame} from './game.js';
import {runGame} from './gamerun.js';
import {drawingText, offer} from './keep.js';
import {createBar, createLines, scoreShown, scoreSpoken} from './lines.js';
import {askForContents, readContents} from './openfile.js';
import {positionShown, START_FEN} from './rules.js';
import {createClaim} from './tabs.js';
import {spoken} from './words.js';

/** @typedef {import('./rules.js').Move} Move */
/** @typedef {import('./analyser.js').Found} Found */
/** @typedef {import('./openfile.js').Opened} Opened */

const KEY = 'analyse';
const SETTINGS = 'analyse.settings';
const REFRESH = 120;      // milliseconds between looks at new lines
const LONGEST_LINE = 14;  // plies that are shown of a line
const HASHES = [1, 4, 16, 64, 128, 256, 512, 1024];
const MOST_LINES = 20;
const LIMITS = {'depth 8': 'depth 8', 'depth 10': 'depth 10', 'depth 12': 'depth 12', 'depth 14': 'depth 14', 'depth 16': 'depth 16',
                'depth 66 movetime 200': '0.2 s', 'depth 66 movetime 1000': '1 s', 'depth 66 movetime 5000': '5 s'};
const STATES = {mate: 'Checkmate', stalemate: 'Stalemate', repetition: 'Repeated: a draw may be claimed',
                fifty: 'Fifty moves without a capture: a draw may be claimed', material: 'Nobody can mate: a draw'};

/** Settings within what there is, whatever was kept. @param {any} kept @param {boolean} shared */
function soundSettings(kept, shared) {
  const most = shared ? Math.min(64, navigator.hardwareConcurrency || 1) : 1;
  const whole = (/** @type {any} */ value, /** @type {number} */ otherwise, /** @type {number} */ highest) =>
    Number.isInteger(value) && value >= 1 ? Math.min(value, highest) : otherwise;
  return {threads: whole(kept?.threads, Math.max(1, Math.min(4, most - 1)), most), lines: whole(kept?.lines, 2, MOST_LINES),
          hash: HASHES.includes(kept?.hash) ? kept.hash : 16, limits: LIMITS[kept?.limits] ? kept.limits : 'depth 12', on: kept?.on !== false};
}

/** @param {HTMLElement} parent @param {string} text @param {() => void} act @param {object} attributes */
function addButton(parent, text, act, attributes = {}) {
  const button = make(parent, 'button', text, {type: 'button', ...attributes});
  button.addEventListener('click', act);
  return button;
}

/** @param {HTMLElement} parent @param {string} text @param {[any, string][]} choices @param {any} value @param {(value: string) => void} act */
function addChoice(parent, text, choices, value, act) {
  const select = make(make(parent, 'label', text), 'select');
  for (const [each, shown] of choices) make(select, 'option', shown, {value: each});
  select.value = String(value);
  select.addEventListener('change', () => act(select.value));
  return select;
}

/** @param {number} highest @returns {[number, string][]} */
const upTo = highest => [...Array(highest).keys()].map(i => [i + 1, String(i + 1)]);

/**
 * @param {HTMLElement} host
 * @param {import('./app.js').App} app
 */
export function createAnalyse(host, app) {
  const game = createGame();
  const analyser = createAnalyser(app.startEngine);
  const claim = createClaim('vrel-analyse', () => { if (shown) showClaim(); });
  let settings = soundSettings(app.load(SETTINGS, null), app.shared);
  let position = positionShown(START_FEN);
  /** @type {Map<number, Found>} */
  let found = new Map();
  /** @type {import('./lines.js').Line[]} */
  let lines = [];
  let shown = false, flipped = false, turn = 0, refreshing = 0, saving = 0, trouble = '';
  /** @type {{done: number, all: number} | null} */
  let run = null;
  /** @type {import('./game.js').SavedGame | null} */
  let before = null;
  /** @type {import('./rules.js').Evaluation | null} */
  let evaluation = null;

  const columns = make(host, 'div', '', {class: 'columns'});
  const left = make(columns, 'div', '', {class: 'column of-board'});
  const right = make(columns, 'div', '', {class: 'column of-text'});
  const bar = createBar(left);
  const board = createInput(left, {move: played, refuse: app.announce});
  const steps = make(left, 'div', '', {class: 'steps', role: 'group', 'aria-label': 'Step through the game'});
  const heading = make(right, 'div', '', {class: 'row heading'});
  const title = make(heading, 'h2');
  const back = addButton(heading, 'Game before', giveBack, {class: 'apart'});
  const state = make(right, 'p', '', {class: 'state', role: 'status'});
  const engineRow = make(right, 'div', '', {class: 'row engine'});
  const toggle = addButton(engineRow, 'Engine', () => change({on: !settings.on}), {'aria-pressed': 'false'});
  addChoice(engineRow, 'Lines', upTo(MOST_LINES), settings.lines, value => change({lines: Number(value)}));
  const threads = addChoice(engineRow, 'Threads', [], settings.threads, value => change({threads: Number(value)}));
  const hash = addChoice(engineRow, 'Hash', HASHES.map(each => [each, `${each} MB`]), settings.hash, value => change({hash: Number(value)}));
  const lineView = createLines(right, playLine);
  const runRow = make(right, 'div', '', {class: 'row run'});
  const runButton = addButton(runRow, 'Analyse the game', toggleRun);
  addChoice(runRow, 'each to', Object.entries(LIMITS), settings.limits, value => change({limits: value}));
  const progress = make(runRow, 'progress', '', {max: 1, value: 0, hidden: '', 'aria-label': 'Positions analysed'});
  const curveHost = make(right, 'div', '', {class: 'curve-host'});
  const curve = createCurve(curveHost, ply => go(ply));
  const list = make(right, 'ol', '', {class: 'moves', 'aria-label': 'Moves'});
  const actions = make(right, 'div', '', {class: 'actions', role: 'group', 'aria-label': 'Game'});
  addButton(actions, 'Open', open);
  addButton(actions, 'Copy, save', keep);
  addButton(actions, 'Flip', () => { flipped = !flipped; showBoard(false); showBar(); });
  addButton(actions, 'Play', () => app.goTo('play', {start: game.fullFen(0), moves: game.uciMoves()}));
  const picture = make(host, 'details', '', {class: 'evaluation'});
  make(picture, 'summary', 'Evaluation');
  const pictures = make(picture, 'div', '', {class: 'columns'});
  const pictureBoard = make(pictures, 'div', '', {class: 'column'});
  const pictureFigures = make(pictures, 'div', '', {class: 'column'});
  picture.addEventListener('toggle', showPicture);

  const MOVES = {ArrowLeft: () => go(game.ply - 1), ArrowRight: () => go(game.ply + 1), Home: () => go(0), End: () => go(game.moves.length)};
  for (const [text, label, key] of [['|◀\ufe0e', 'Start', 'Home'], ['◀\ufe0e', 'Move back', 'ArrowLeft'],
                                    ['▶\ufe0e', 'Move on', 'ArrowRight'], ['▶\ufe0e|', 'End', 'End']])
    addButton(steps, text, MOVES[key], {'aria-label': label, 'aria-keyshortcuts': key});
  document.addEventListener('keydown', event => {
    const target = /** @type {HTMLElement} */ (event.target);
    if (!shown || !MOVES[event.key] || event.altKey || event.ctrlKey || event.metaKey || target.closest('input, select, textarea, dialog')) return;
    event.preventDefault();
    MOVES[event.key]();
  });

  /** @type {HTMLButtonElement[]} */
  let buttons = [];

  // ---- What is shown ----

  function entryOf(/** @type {number} */ ply) {
    const score = game.scores[ply];
    return {number: game.numberText(ply), text: game.moves[ply - 1].text, score: score?.centipawns, doubtful: game.doubtful.has(ply)};
  }

  // The scores of a move stand beside it, and change while a game is analysed.
  function showMove(/** @type {number} */ ply) {
    const {number, text, score, doubtful} = entryOf(ply), button = buttons[ply - 1];
    button.textContent = (number.endsWith('...') && ply > 1 ? '' : `${number} `) + text;
    if (doubtful) make(button, 'span', ' ?', {class: 'doubtful', title: 'doubtful', 'aria-label': 'doubtful'});
    if (score !== undefined) make(button, 'span', scoreShown(score), {class: 'score'});
  }

  function showMoves() {
    list.replaceChildren();
    list.hidden = !game.moves.length;
    buttons = game.moves.map((_, i) => addButton(make(list, 'li'), '', () => go(i + 1), {tabindex: -1}));
    for (let ply = 1; ply <= buttons.length; ++ply) showMove(ply);
  }

  function showCurve() {
    curveHost.hidden = !game.scores.some(Boolean);
    if (curveHost.hidden) return;
    curve.show(game.moves.map((_, i) => entryOf(i + 1)));
    curve.mark(game.ply);
  }

  function showPly() {
    const inList = list.contains(document.activeElement);
    buttons.forEach(button => { button.removeAttribute('aria-current'); button.tabIndex = -1; });
    const button = buttons[Math.max(game.ply - 1, 0)];
    if (!button) return;
    button.tabIndex = 0;
    if (game.ply) button.setAttribute('aria-current', 'true');
    if (inList) button.focus({preventScroll: true});
    list.scrollTop = button.offsetTop - list.clientHeight / 2;
    list.scrollLeft = button.offsetLeft - list.clientWidth / 2;
    if (!curveHost.hidden) curve.mark(game.ply);
  }

  function showBoard(animate = true) {
    const move = game.moves[game.ply - 1];
    board.show(position, {side: 'both', flipped, animate, last: move ? [move.from, move.to] : []});
  }

  function showBar() {
    const score = position.state === 'mate' ? (position.whiteToMove ? -10000 : 10000) : lines[0]?.score ?? game.scores[game.ply]?.centipawns;
    bar.show(score ?? null, flipped);
  }

  function showState() {
    title.textContent = game.title();
    title.hidden = !title.textContent;
    back.hidden = !before;
    heading.hidden = title.hidden && back.hidden;
    state.textContent = trouble || STATES[position.state] || '';
    state.hidden = !state.textContent;
    toggle.setAttribute('aria-pressed', String(settings.on));
    runButton.textContent = run ? 'Stop' : 'Analyse the game';
    runButton.disabled = !game.moves.length;
    progress.hidden = !run;
    if (run) Object.assign(progress, {max: run.all, value: run.done});
  }

  function showClaim() {
    if (!claim.lost()) return;
    app.tell('The analysis is open in another tab, too; what is done here isn’t kept.');
  }

  async function showPicture() {
    if (!picture.open || !shown) return;
    const mine = turn, rules = await app.rules;
    const shownNow = await rules.evaluation(game.fen());
    if (mine !== turn || !shown) return;
    evaluation = shownNow;
    if (evaluation) showEvaluation(pictureBoard, pictureFigures, evaluation);
  }

  // ---- The engine ----

  const positionText = () => {
    const moves = game.uciMoves();
    return `fen ${game.fullFen(0)}${moves.length ? ` moves ${moves.join(' ')}` : ''}`;
  };

  // Lines come faster than anybody reads; their moves are asked of the rules from time to time.
  function lineFound(/** @type {Found} */ line) {
    found.set(line.rank, line);
    refreshing ||= window.setTimeout(refresh, REFRESH);
  }

  async function refresh() {
    const mine = turn, start = game.fen(), sign = game.whiteToMove() ? 1 : -1, first = game.ply;
    // A line of an earlier depth may begin with what is a better one now.
    const ranks = [...found.values()].filter(each => each.rank < settings.lines).sort((a, b) => a.rank - b.rank)
      .filter((each, i, all) => all.findIndex(other => other.moves[0] === each.moves[0]) === i);
    try {
      const rules = await app.rules;
      const read = [];
      for (const each of ranks) read.push(await rules.line(start, each.moves.slice(0, LONGEST_LINE)));
      if (mine !== turn || !shown) return;
      const number = (/** @type {number} */ i) => {
        const white = whiteMoves(first + i);
        return i && !white ? '' : `${game.moveNumber(first + i + 1)}${white ? '.' : '...'} `;
      };
      lines = ranks.map((each, i) => ({score: sign * each.score, depth: each.depth, moves: read[i].moves,
                                       numbers: read[i].moves.map((_, j) => number(j))}));
      lineView.show(lines, Math.max(0, ...ranks.map(each => each.nps)));
      showBar();
    } finally {
      refreshing = 0;
    }
  }

  const whiteMoves = (/** @type {number} */ ply) => (ply % 2 === 0) === game.whiteToMove(0);

  async function search() {
    found = new Map();
    lines = [];
    const over = position.moves.length === 0 && position.state !== 'play';
    lineView.show([], 0, run ? '' : undefined);
    showBar();
    if (!shown || run) return;
    if (!settings.on || over) return analyser.stop();
    await attempt(() => analyser.search(positionText(), 'infinite', settings, lineFound));
  }

  // Without the memory that was asked for, the least is tried.
  async function attempt(/** @type {() => Promise<boolean>} */ act) {
    try {
      return await act();
    } catch (error) {
      const most = settings.hash > 1 || settings.threads > 1;
      const word = error instanceof Error ? error.message : String(error);
      app.tell(most ? `${word} It goes on with one thread and 1 MB.` : `${word} The engine is off.`);
      run = null;
      change(most ? {hash: 1, threads: 1} : {on: false});
      return false;
    }
  }

  /** @param {Partial<typeof settings>} what */
  function change(what) {
    settings = soundSettings({...settings, ...what}, app.shared);
    app.save(SETTINGS, settings);
    hash.value = String(settings.hash);
    threads.value = String(settings.threads);
    showState();
    if (!('limits' in what)) search();
  }

  function toggleRun() {
    if (run) {
      run = null;
      analyser.stop();
      showState();
      search();
    } else {
      startRun();
    }
  }

  async function startRun() {
    const depth = Number((/^depth (\d+)$/.exec(settings.limits) || [])[1] || 0);
    const done = game.scores.filter(score => depth && (score?.depth ?? 0) >= depth).length;
    if (!done || done > game.moves.length) game.clearScores();
    const mine = run = {done: 0, all: game.moves.length + 1};
    showState();
    lineView.show([], 0, '');
    const ended = await attempt(() => runGame(game, app.rules, analyser, settings, (number, all) => {
      if (run !== mine) return;
      Object.assign(mine, {done: number, all});
      showState();
    }));
    if (run !== mine || !shown) return;
    run = null;
    showState();
    if (ended) {
      const doubtful = [...game.doubtful].map(ply => `${game.numberText(ply)} ${game.moves[ply - 1].text}`);
      app.announce(`The game is analysed. ${doubtful.length ? `Doubtful: ${doubtful.join(', ')}` : 'No doubtful moves'}`);
    }
    search();
  }

  // ---- The game ----

  function go(/** @type {number} */ ply) {
    const from = game.ply;
    game.go(ply);
    if (game.ply === from) return;
    const move = game.moves[game.ply - 1], score = game.scores[game.ply];
    app.announce(move ? `${game.numberText(game.ply)} ${spoken(move.text)}${score ? `, ${scoreSpoken(score.centipawns)}` : ''}` : 'Start');
  }

  function played(/** @type {Move} */ move) {
    trouble = '';
    game.play(move);
    app.announce(spoken(move.text));
  }

  function playLine(/** @type {Move[]} */ moves) {
    moves.forEach(move => game.play(move));
  }

  /** The position of the ply shown: at once as far as the game knows it, then with what the rules say. */
  async function settle() {
    const mine = ++turn;
    position = positionShown(game.fen(), game.moves[game.ply - 1]?.text);
    showBoard();
    showState();
    search();
    showPicture();
    const rules = await app.rules;
    const read = await rules.position(game.fullFen(0), game.uciMoves());
    if (mine !== turn || !read) return;
    position = read;
    showBoard(false);
    showState();
    if (!read.moves.length) search();
  }

  function save() {
    window.clearTimeout(saving);
    saving = 0;
    if (claim.held()) app.save(KEY, game.save());
  }

  game.subscribe(what => {
    if (what === 'game' || what === 'moves') {
      if (run) analyser.stop();
      run = null;
      showMoves();
    }
    if (what === 'scores') game.moves.forEach((_, i) => showMove(i + 1));
    if (what !== 'ply') showCurve();
    if (what === 'scores') showBar();
    else showPly();
    if (what !== 'scores' && what !== 'tags') settle();
    saving ||= window.setTimeout(save, 500);
  });

  /** @param {Opened} opened */
  function take(opened) {
    before = game.moves.length ? game.save() : before;
    trouble = 'game' in opened ? opened.game.trouble : '';
    if ('fen' in opened) game.setPosition(opened.fen);
    else game.setGame(opened.game);
    app.tell('');
    app.announce(`Opened: ${game.title() || 'a position'}, ${game.moves.length} plies. ${trouble}`);
  }

  // A game from elsewhere on the page, with what is known of it besides its moves.
  async function takeOver(/** @type {import('./app.js').Line} */ what) {
    const kept = game.moves.length ? game.save() : before;
    trouble = '';
    if (what.game && game.restore(what.game)) before = kept;
    else take({game: {...await (await app.rules).line(what.start || START_FEN, what.moves), trouble: ''}});
  }

  function giveBack() {
    const kept = before;
    before = game.moves.length ? game.save() : null;
    trouble = '';
    game.restore(kept);
  }

  async function open() {
    const opened = await askForContents(await app.rules, () => app.setUp(game.fullFen()));
    if (opened) take(opened);
  }

  /** @param {string | Uint8Array} contents */
  async function openContents(contents) {
    const opened = await readContents(contents, await app.rules).catch(error => `That couldn’t be read: ${error.message}.`);
    if (typeof opened === 'string') app.tell(opened);
    else if (opened) take(opened);
  }

  const busy = (/** @type {Event} */ event) =>
    !shown || document.querySelector('dialog[open]') || /** @type {HTMLElement} */ (event.target).closest?.('input, textarea');
  document.addEventListener('paste', event => {
    const text = event.clipboardData?.getData('text');
    if (busy(event) || !text) return;
    event.preventDefault();
    openContents(text);
  });
  document.addEventListener('dragover', event => { if (!busy(event)) event.preventDefault(); });
  document.addEventListener('drop', async event => {
    if (busy(event)) return;
    event.preventDefault();
    const file = event.dataTransfer.files[0];
    openContents(file ? new Uint8Array(await file.arrayBuffer()) : event.dataTransfer.getData('text'));
  });

  function keep() {
    const name = (game.title() || 'vrel').replace(/[^\p{L}\p{N}]+/gu, '-').replace(/^-|-$/g, '').slice(0, 60) || 'vrel';
    const drawing = (/** @type {ParentNode} */ from) => drawingText(from.querySelector('svg'));
    const entries = [
      {title: 'Position (FEN)', text: () => game.fullFen()},
      {title: 'Game (PGN)', text: () => game.toPgn(), file: {name: `${name}.pgn`, type: 'application/x-chess-pgn', text: () => game.toPgn()}},
      {title: 'Board (SVG)', file: {name: `${name}-board.svg`, type: 'image/svg+xml', text: () => drawing(left.querySelector('.input-board'))}},
    ];
    if (!curveHost.hidden)
      entries.push({title: 'Score curve (SVG)', file: {name: `${name}-scores.svg`, type: 'image/svg+xml', text: () => drawing(curveHost)}});
    if (picture.open && evaluation)
      entries.push({title: 'Evaluation (SVG)', file: {name: `${name}-evaluation.svg`, type: 'image/svg+xml', text: () => drawing(pictureBoard)}});
    offer(entries, app.announce);
  }

  // What was kept, as far as it follows the rules.
  async function restore() {
    const kept = app.load(KEY, null);
    if (!kept || !game.restore(kept)) return game.setPosition();
    const read = await (await app.rules).line(game.fullFen(0), game.uciMoves(game.moves.length));
    if (read.moves.length === game.moves.length) return;
    trouble = 'The game that was kept is read up to a move against the rules.';
    game.cut(read.moves.length);
    game.go(read.moves.length);
    showMoves();
    settle();
  }

  let restored = false;
  return {
    /** @param {import('./app.js').Line} [what] */
    async show(what) {
      shown = true;
      const most = soundSettings({threads: 64}, app.shared).threads;
      threads.replaceChildren();
      for (const [each, text] of upTo(most)) make(threads, 'option', text, {value: each});
      settings = soundSettings(settings, app.shared);
      threads.value = String(settings.threads);
      claim.ask();
      if (!restored) await restore();
      restored = true;
      if (what) {
        await takeOver(what);
        game.go(game.moves.length);
      } else {
        const again = run;
        run = null;
        settle();
        if (again) startRun();
      }
    },
    hide() {
      save();
      shown = false;
      ++turn;
      analyser.end();
    },
  };
}
