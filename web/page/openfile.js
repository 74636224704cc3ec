// Positions and games from outside: pasted, dropped, or opened as a file.
import {make} from './board.js';
import {readFen} from './rules.js';
import {answerOf} from './talk.js';

/** @typedef {import('./rules.js').Rules} Rules */
/** @typedef {import('./rules.js').GameHead} GameHead */
/** @typedef {{fen: string} | {game: import('./rules.js').ReadGame}} Opened */

const LARGEST = 64 << 20;  // bytes of a file
const SHOWN = 200;         // games of a list at a time

/** @param {Record<string, string>} tags @param {string} name */
const tag = (tags, name) => tags[name] || '?';

/** @param {GameHead} head */
const titleOf = ({number, plies, tags}) => [`${number}.`, `${tag(tags, 'White')} – ${tag(tags, 'Black')}`, tags.Result || '',
  (tags.Date || '').replace(/\.?\?.*/, ''), `${Math.ceil(plies / 2)} moves`].filter(Boolean).join('  ');

/**
 * Asks which game of a file is wanted.
 * @param {GameHead[]} heads
 * @returns {Promise<number | null>} its number, null if the question was left
 */
function chooseGame(heads) {
  const dialog = make(document.body, 'dialog', '', {class: 'games', 'aria-labelledby': 'games-title'});
  const form = make(dialog, 'form', '', {method: 'dialog'});
  make(form, 'h2', `${heads.length} games`, {id: 'games-title'});
  const filter = make(form, 'input', '', {type: 'search', 'aria-label': 'Find in the list', placeholder: 'Find: a name, an event, a year',
                                          autocomplete: 'off', spellcheck: false});
  const list = make(form, 'select', '', {size: 10, 'aria-label': 'Games'});
  const more = make(form, 'p', '', {class: 'legend', role: 'status'});
  const buttons = make(form, 'div', '', {class: 'row'});
  const cancel = make(buttons, 'button', 'Cancel', {type: 'button', class: 'apart'});
  make(buttons, 'button', 'Open', {class: 'main'});
  const texts = heads.map(head => `${titleOf(head)} ${head.tags.Event || ''}`.toLowerCase());

  function show() {
    const wanted = filter.value.toLowerCase().trim();
    const found = heads.filter((_, i) => texts[i].includes(wanted));
    list.replaceChildren();
    for (const head of found.slice(0, SHOWN)) make(list, 'option', titleOf(head), {value: head.number});
    list.selectedIndex = 0;
    more.textContent = found.length > SHOWN ? `The first ${SHOWN} of ${found.length}; a word above finds others.` : '';
  }

  filter.addEventListener('input', show);
  show();
  dialog.showModal();
  return answerOf(dialog, end => {
    cancel.addEventListener('click', () => end(null));
    list.addEventListener('dblclick', () => form.requestSubmit());
    form.addEventListener('submit', event => {
      event.preventDefault();
      if (list.value) end(Number(list.value));
    });
  });
}

/** True if the text is meant as a position. @param {string} text */
const looksLikeFen = text => /^\s*[pnbrqk1-8]+(\/[pnbrqk1-8]*){3,}(\s|$)/i.test(text) && !text.trim().includes('\n');

/**
 * What a text or the bytes of a file hold; asks, if that is several games. A word about the trouble instead, null if
 * the question was left.
 * @param {string | Uint8Array} contents
 * @param {Rules} rules
 * @returns {Promise<Opened | string | null>}
 */
export async function readContents(contents, rules) {
  if (contents.length > LARGEST) return `That is more than ${LARGEST >> 20} MB: too much for a page.`;
  if (contents.length < 200) {
    const text = typeof contents === 'string' ? contents : new TextDecoder().decode(contents);
    if (!text.trim()) return 'There is nothing in it.';
    if (looksLikeFen(text)) {
      const read = readFen(text);
      if (!('fen' in read) || !await rules.position(text)) return read.trouble || rules.trouble;
      return {fen: `${read.fen} ${read.halfmove} ${read.fullmove}`};
    }
  }
  const heads = await rules.readGames(contents);
  const tagged = heads.filter(head => head.number > 0);
  const offered = tagged.length ? tagged : heads;
  if (!offered.length) return 'No game was found in it: neither tags nor moves.';
  const number = offered.length > 1 ? await chooseGame(offered) : offered[0].number;
  if (number === null) return null;
  const game = await rules.game(number);
  if (game.moves.length === 0 && (game.trouble || !game.tags.FEN)) {
    const trouble = 'trouble' in readFen(game.tags.FEN || game.fen) ? readFen(game.tags.FEN || game.fen).trouble : '';
    return `No game could be read. ${trouble || game.trouble}`.trim();
  }
  return {game};
}

/**
 * Asks for a position or a game: pasted into a field, opened as a file, or set up by hand.
 * @param {Rules} rules
 * @param {() => Promise<string | null>} setUp
 * @returns {Promise<Opened | null>} null if the question was left
 */
export function askForContents(rules, setUp) {
  const dialog = make(document.body, 'dialog', '', {class: 'open', 'aria-labelledby': 'open-title'});
  const form = make(dialog, 'form', '', {method: 'dialog'});
  make(form, 'h2', 'Open', {id: 'open-title'});
  const text = make(form, 'textarea', '', {rows: 8, 'aria-label': 'FEN or PGN', placeholder: 'Paste a position (FEN) or games (PGN), or drop a file',
                                           spellcheck: false, autocomplete: 'off', autocapitalize: 'off'});
  const trouble = make(form, 'p', '', {class: 'trouble', role: 'alert'});
  const buttons = make(form, 'div', '', {class: 'row'});
  const file = make(form, 'input', '', {type: 'file', accept: '.pgn,.fen,.txt,.epd', hidden: '', 'aria-hidden': 'true'});
  const browse = make(buttons, 'button', 'File…', {type: 'button'});
  const byHand = make(buttons, 'button', 'Set up…', {type: 'button'});
  const cancel = make(buttons, 'button', 'Cancel', {type: 'button', class: 'apart'});
  make(buttons, 'button', 'Open', {class: 'main'});
  dialog.showModal();

  return answerOf(dialog, end => {
    /** @param {string | Uint8Array} contents */
    async function take(contents) {
      trouble.textContent = '';
      try {
        const opened = await readContents(contents, rules);
        if (typeof opened === 'string') trouble.textContent = opened;
        else if (opened) end(opened);
      } catch (error) {
        trouble.textContent = `That couldn’t be read: ${error instanceof Error ? error.message : error}.`;
      }
    }
    const takeFile = async (/** @type {File | undefined} */ found) => {
      if (found) take(new Uint8Array(await found.arrayBuffer()));
    };
    file.addEventListener('change', () => takeFile(file.files[0]));
    browse.addEventListener('click', () => file.click());
    dialog.addEventListener('dragover', event => event.preventDefault());
    dialog.addEventListener('drop', event => {
      event.preventDefault();
      event.stopPropagation();
      if (event.dataTransfer.files.length) takeFile(event.dataTransfer.files[0]);
      else take(event.dataTransfer.getData('text'));
    });
    byHand.addEventListener('click', async () => {
      const fen = await setUp();
      if (fen) end({fen});
    });
    cancel.addEventListener('click', () => end(null));
    form.addEventListener('submit', event => {
      event.preventDefault();
      take(text.value);
    });
  });
}
