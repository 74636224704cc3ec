// The page without a network, and shared memory on hosts that send no headers for it: both are the service worker's.

const RELOADED = 'vrel.reloaded';
const PATIENCE = 4000;  // milliseconds that a first visit waits for its worker

/** Whether this visit has been loaded once more already; true where that can't be kept. */
function reloadedBefore() {
  try {
    const before = sessionStorage.getItem(RELOADED) !== null;
    sessionStorage.setItem(RELOADED, '1');
    return before;
  } catch {
    return true;
  }
}

/**
 * Starts the service worker. True if the page is about to be loaded once more, since it gets shared memory by that;
 * where that takes too long the next visit will have it.
 */
export async function prepare() {
  if (!navigator.serviceWorker) return false;
  const registered = navigator.serviceWorker.register('sw.js').then(() => true, () => false);
  if (self.crossOriginIsolated || reloadedBefore()) return false;
  const active = registered.then(found => found ? navigator.serviceWorker.ready.then(() => true) : false);
  const late = new Promise(resolve => { setTimeout(() => resolve(false), PATIENCE); });
  if (!await Promise.race([active, late])) return false;
  location.reload();
  return true;
}
