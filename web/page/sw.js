// Keeps the page for use without a network, and answers with the headers that shared memory needs, which hosts that
// send nothing but files can't give. The build fills in the files and a sum of their contents, so that a changed site
// is fetched anew as a whole. A file that few need is kept once it has been asked for.
const VERSION = '{{VERSION}}';
const FILES = '{{FILES}}'.split(' ');
const OURS = `vrel ${self.registration.scope} `;
const CACHE = OURS + VERSION;
const ISOLATION = {'Cross-Origin-Opener-Policy': 'same-origin', 'Cross-Origin-Embedder-Policy': 'require-corp'};

async function fill() {
  const cache = await caches.open(CACHE);
  await cache.addAll(['./', ...FILES].map(file => new Request(file, {cache: 'no-cache'})));
}

async function takeOver() {
  const old = (await caches.keys()).filter(name => name.startsWith(OURS) && name !== CACHE);
  await Promise.all(old.map(name => caches.delete(name)));
  await self.clients.claim();
}

/** @param {Request} request */
async function answer(request) {
  const cache = await caches.open(CACHE);
  let response = await cache.match(request, {ignoreSearch: true});
  if (!response) {
    response = await fetch(request);
    if (response.ok && request.url.startsWith(self.registration.scope)) await cache.put(request, response.clone());
  }
  if (response.type === 'opaque' || response.type === 'error') return response;
  const headers = new Headers(response.headers);
  for (const [name, value] of Object.entries(ISOLATION)) headers.set(name, value);
  const {status, statusText} = response;
  return new Response([204, 304].includes(status) ? null : response.body, {status, statusText, headers});
}

self.addEventListener('install', event => event.waitUntil(fill()));
self.addEventListener('activate', event => event.waitUntil(takeOver()));
self.addEventListener('fetch', event => {
  const own = new URL(event.request.url).origin === self.location.origin;
  if (own && event.request.method === 'GET') event.respondWith(answer(event.request));
});
