// A game is played in one tab at a time; the others look on until they take it over.

/**
 * @param {string} name of what is claimed
 * @param {() => void} changed called when the claim is got or lost
 */
export function createClaim(name, changed) {
  let held = false;

  // Holds the lock until another tab takes it away or this one goes.
  function ask(options) {
    return new Promise(resolve => {
      const got = lock => {
        held = lock !== null;
        resolve(held);
        if (!held) return undefined;
        changed();
        return new Promise(() => {});
      };
      navigator.locks.request(name, options, got).catch(() => {
        held = false;
        changed();
        resolve(false);
      });
    });
  }

  if (!navigator.locks) return {held: () => true, ask: async () => true, take: async () => true};
  return {
    held: () => held,
    /** Claims what nobody else holds. */
    ask: () => held ? Promise.resolve(true) : ask({ifAvailable: true}),
    /** Claims it from whoever holds it. */
    take: () => held ? Promise.resolve(true) : ask({steal: true}),
  };
}
