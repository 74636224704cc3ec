// A game is played in one tab at a time; the others look on until they take it over.

const PATIENCE = 400;  // milliseconds that a page which is being left may still hold its claim

/**
 * @param {string} name of what is claimed
 * @param {() => void} changed called when the claim is got or lost, or another tab turns out to have it
 */
export function createClaim(name, changed) {
  let held = false, asked = false, late = false;

  // Holds the lock until another tab takes it away or this one goes.
  function request(options) {
    const got = () => {
      held = true;
      changed();
      return new Promise(() => {});
    };
    navigator.locks.request(name, options, got).catch(() => {
      held = false;
      changed();
      request({});
    });
  }

  if (!navigator.locks) return {held: () => true, lost: () => false, ask: changed, take: () => {}};
  return {
    held: () => held,
    /** True if another tab has it. */
    lost: () => late && !held,
    /** Claims it as soon as nobody else holds it. */
    ask() {
      if (asked) return changed();
      asked = true;
      request({});
      setTimeout(() => {
        late = true;
        if (!held) changed();
      }, PATIENCE);
    },
    /** Claims it from whoever holds it. */
    take: () => { if (!held) request({steal: true}); },
  };
}
