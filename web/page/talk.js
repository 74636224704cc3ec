// Waiting for an answer: of the engine, of the person in front of the page.

/**
 * The engine's next line that begins so; null if it ends before. `act` is handed each line up to there.
 * @param {import('./module/vrel.js').Engine} engine @param {string} word @param {(line: string) => void} act
 * @returns {Promise<string | null>}
 */
export function lineOf(engine, word, act = () => {}) {
  return new Promise(resolve => {
    const quit = engine.listen(line => {
      act(line);
      if (!line.startsWith(word)) return;
      quit();
      resolve(line);
    });
    engine.ended.then(() => { quit(); resolve(null); });
  });
}

/**
 * What a dialog is answered with; null if it is left. It goes with the answer, which `begin` is handed the giver of.
 * @template T
 * @param {HTMLDialogElement} dialog @param {(end: (answer: T | null) => void) => void} begin
 * @returns {Promise<T | null>}
 */
export function answerOf(dialog, begin) {
  return new Promise(resolve => {
    const end = (/** @type {T | null} */ answer) => {
      dialog.remove();
      resolve(answer);
    };
    dialog.addEventListener('cancel', () => end(null));
    begin(end);
  });
}
