// The page: its modes, what they share, and what is said when something can't be had.
import {make} from './board.js';
import {prepare} from './offline.js';
import {createPlay} from './play.js';
import {createRules} from './rules.js';
import {setUpPosition} from './setup.js';

/**
 * A start position, null for the usual one, and moves; the whole game if it is known.
 * @typedef {{start: string | null, moves: string[], game?: import('./game.js').SavedGame}} Line
 */
/** @typedef {{show: (what?: Line) => void, hide: () => void}} Mode */
/**
 * @typedef {object} App
 * @property {Promise<import('./rules.js').Rules>} rules
 * @property {() => void} restartRules after their engine has ended
 * @property {boolean} shared threads can be had
 * @property {(options?: object) => Promise<import('./module/vrel.js').Engine>} startEngine
 * @property {(text: string) => void} announce says it to those who listen to the page
 * @property {(text: string) => void} tell shows a notice; '' takes it away
 * @property {(key: string, otherwise: any) => any} load
 * @property {(key: string, value: any) => void} save
 * @property {(key: string) => string} keyOf where the browser keeps it
 * @property {(mode: string, what?: Line) => void} goTo
 * @property {(fen: string | null) => Promise<string | null>} setUp asks for a position; null if the question was left
 */

const single = new URLSearchParams(location.search).has('single');
const notices = document.getElementById('notices');
const announcer = document.getElementById('announcer');
const main = document.getElementById('main');
const MODES = {
  play: async (host, app) => createPlay(host, app),
  analyse: async (host, app) => (await import('./analyse.js')).createAnalyse(host, app),
};

function tell(text) {
  notices.replaceChildren();
  if (!text) return;
  const notice = make(notices, 'p', text);
  make(notice, 'button', 'Close', {type: 'button'}).addEventListener('click', () => tell(''));
}

// What was said last is said again only if something changes, so a repeated text differs by a space.
function announce(text) {
  announcer.textContent = announcer.textContent === text ? `${text} ` : text;
}

const keyOf = key => `vrel.${key}`;

function load(key, otherwise) {
  try {
    return JSON.parse(localStorage.getItem(keyOf(key))) ?? otherwise;
  } catch {
    return otherwise;
  }
}

function save(key, value) {
  try {
    localStorage.setItem(keyOf(key), JSON.stringify(value));
  } catch {
    // A browser that keeps nothing still plays.
  }
}

// A browser may have shared memory and refuse it all the same, phones above all: then the build without it runs.
async function startEngine(options = {}) {
  const {startEngine: start} = await import('./module/vrel.js');
  if (!app.shared || options.shared === false) return start({...options, shared: false});
  return start(options).catch(error => {
    app.shared = false;
    tell(`This browser gives no shared memory (${error.message}), so Vrel goes on with one thread.`);
    return start({...options, shared: false});
  });
}

// A page that is about to be loaded once more starts no engine.
const staying = (single ? Promise.resolve(false) : prepare()).then(leaves => leaves ? new Promise(() => {}) : undefined);

function startRules() {
  // One build serves the rules and the games, so that a visit loads no more than that.
  const rules = staying.then(() => createRules(options => startEngine({...options, shared: app.shared})));
  rules.catch(error => tell(`The engine can’t be started: ${error.message || error}. Reloading the page may help.`));
  return rules;
}

/** @type {App} */
const app = {
  rules: null, shared: self.crossOriginIsolated && !single, startEngine, announce, tell, load, save, keyOf, goTo,
  restartRules() { app.rules = startRules(); },
  setUp: async fen => setUpPosition(fen, await app.rules, announce),
};
app.restartRules();

/** @type {Record<string, Promise<Mode>>} */
const made = {};
const hosts = {};
let current = '', handed, live = null;  // the mode that is wanted, what it is handed, the one that is shown

function modeOf(name) {
  hosts[name] ||= make(main, 'section', '', {class: 'mode', 'aria-label': name === 'play' ? 'Play' : 'Analyse'});
  made[name] ||= MODES[name](hosts[name], app);
  return made[name];
}

// The mode before stays until the new one is there.
async function showMode(name) {
  const what = handed, before = current;
  handed = undefined;
  current = name;
  const mode = await modeOf(name).catch(error => {
    delete made[name];
    hosts[name].replaceChildren();
    tell(`This part of the page can’t be loaded: ${error.message}.`);
    if (before) location.hash = before;
  });
  if (!mode || current !== name) return;
  const again = live === mode;
  if (!again) live?.hide();
  live = mode;
  for (const [each, host] of Object.entries(hosts)) host.hidden = each !== name;
  for (const link of document.querySelectorAll('nav a'))
    if (link.getAttribute('href') === `#${name}`) link.setAttribute('aria-current', 'page');
    else link.removeAttribute('aria-current');
  save('mode', name);
  if (!again || what) mode.show(what);
}

/** @param {string} mode @param {Line} [what] */
function goTo(mode, what) {
  handed = what;
  if (location.hash === `#${mode}`) showMode(mode);
  else location.hash = mode;
}

function route() {
  const wanted = location.hash.slice(1) || load('mode', 'play');
  showMode(Object.hasOwn(MODES, wanted) ? wanted : 'play');
}

addEventListener('hashchange', route);
addEventListener('pagehide', () => live?.hide());
addEventListener('pageshow', event => { if (event.persisted) live?.show(); });
const wrong = word => tell(`Something went wrong: ${word}. Nothing of the game is lost; reload the page.`);
addEventListener('error', event => wrong(event.message));
addEventListener('unhandledrejection', event => wrong(event.reason?.message || event.reason));
document.getElementById('waiting').remove();
route();
