// The question what game is to be played.
import {make} from './board.js';
import {answerOf} from './talk.js';

/** @typedef {{way: string, seconds: number, depth: number, minutes: number, increment: number}} Strength */
/** @typedef {{side: string, strength: Strength, start: string | null}} Wish   side 'w' or 'b', the person's */

/** @type {Strength} */
export const STRENGTH = {way: 'time', seconds: 1, depth: 6, minutes: 5, increment: 3};
const BOUNDS = {seconds: [0.1, 3600, 0.1], depth: [1, 66, 1], minutes: [0.5, 180, 0.5], increment: [0, 60, 1]};

/** A strength with every figure within its bounds, whatever was kept. @returns {Strength} */
export function soundStrength(kept) {
  const sound = {...STRENGTH};
  if (kept && ['time', 'depth', 'clock'].includes(kept.way)) sound.way = kept.way;
  for (const [name, [low, high]] of Object.entries(BOUNDS)) {
    const value = Number(kept?.[name]);
    if (kept && kept[name] !== '' && Number.isFinite(value)) sound[name] = Math.min(high, Math.max(low, value));
  }
  sound.depth = Math.round(sound.depth);
  return sound;
}

/** @param {Strength} strength */
export function strengthText({way, seconds, depth, minutes, increment}) {
  if (way === 'depth') return `depth ${depth}`;
  if (way === 'clock') return `${minutes} min + ${increment} s`;
  return `${seconds} s a move`;
}

function radio(parent, name, value, text, checked) {
  const label = make(parent, 'label', '', {class: 'choice'});
  const input = make(label, 'input', '', {type: 'radio', name, value});
  input.checked = checked;
  make(label, 'span', text);
  return input;
}

function group(form, title) {
  const set = make(form, 'fieldset');
  make(set, 'legend', title);
  return make(set, 'div', '', {class: 'choices'});
}

function figure(parent, name, text, value) {
  const [min, max, step] = BOUNDS[name];
  const label = make(parent, 'label', text, {class: 'figure'});
  const input = make(label, 'input', '', {type: 'number', inputmode: 'decimal', name, min, max, step});
  input.value = String(value);
  return label;
}

/**
 * @param {Wish} last what was wished before
 * @param {string | null} here the position on the board; null if it is the start position
 * @param {(fen: string | null) => Promise<string | null>} setUp asks for a position
 * @returns {Promise<Wish | null>} null if the question was left
 */
export function askForGame(last, here, setUp) {
  const dialog = make(document.body, 'dialog', '', {class: 'newgame', 'aria-labelledby': 'newgame-title'});
  const form = make(dialog, 'form', '', {method: 'dialog'});
  make(form, 'h2', 'New game', {id: 'newgame-title'});

  const colours = group(form, 'You play');
  radio(colours, 'side', 'w', 'White', last.side !== 'b');
  radio(colours, 'side', 'b', 'Black', last.side === 'b');

  const ways = group(form, 'Vrel’s strength by');
  for (const [way, text] of [['time', 'time a move'], ['depth', 'depth'], ['clock', 'clock']])
    radio(ways, 'way', way, text, last.strength.way === way);
  const figures = make(ways.parentElement, 'div', '', {class: 'figures'});
  const shown = {time: [figure(figures, 'seconds', 'seconds', last.strength.seconds)],
                 depth: [figure(figures, 'depth', 'plies', last.strength.depth)],
                 clock: [figure(figures, 'minutes', 'minutes', last.strength.minutes),
                         figure(figures, 'increment', 'seconds more a move', last.strength.increment)]};

  const places = group(form, 'From');
  radio(places, 'place', 'start', 'start position', !last.start);
  const kept = radio(places, 'place', 'here', 'this position', Boolean(last.start));
  let fen = last.start || here;
  kept.disabled = !fen;
  const setUpButton = make(places, 'button', 'Set up…', {type: 'button'});
  setUpButton.addEventListener('click', async () => {
    const found = await setUp(fen);
    if (!found) return;
    fen = found;
    kept.disabled = false;
    kept.checked = true;
  });

  const buttons = make(form, 'div', '', {class: 'row'});
  const cancel = make(buttons, 'button', 'Cancel', {type: 'button', class: 'apart'});
  make(buttons, 'button', 'Start', {class: 'main'});

  const showFigures = () => {
    const way = new FormData(form).get('way');
    for (const [name, labels] of Object.entries(shown))
      for (const label of labels) {
        label.hidden = name !== way;
        label.querySelector('input').disabled = name !== way;
      }
  };
  form.addEventListener('change', showFigures);
  showFigures();
  dialog.showModal();

  return answerOf(dialog, end => {
    cancel.addEventListener('click', () => end(null));
    form.addEventListener('submit', event => {
      event.preventDefault();
      const given = Object.fromEntries(new FormData(form));
      const strength = soundStrength({...last.strength, ...given});
      end({side: given.side === 'b' ? 'b' : 'w', strength, start: given.place === 'here' ? fen : null});
    });
  });
}
