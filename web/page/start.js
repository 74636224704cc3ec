// What can be said where the page's modules don't run: opened from a file, or in a browser that is too old.
(function () {
  var fromFile = location.protocol === 'file:';
  function say() {
    var waiting = document.getElementById('waiting');
    if (!waiting) return;
    waiting.hidden = false;
    waiting.textContent = fromFile
      ? 'This page was opened from a file, where browsers start no engine. ' +
        'Serve its folder instead, for example by “npx http-server” or “python3 -m http.server” inside of it, ' +
        'and open the address that is printed.'
      : 'The page’s scripts haven’t started. Reload it; if this stays, the browser is too old for Vrel.';
  }
  if (fromFile) say();
  else setTimeout(say, 8000);
})();
