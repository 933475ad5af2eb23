// Loads the game, or says that this browser can't run it. Any browser can read this.
function showEnd(title, text) {
  document.getElementById('loading').hidden = true;
  var end = document.getElementById('end');
  if (!end.hidden) return;  // the first reason counts
  end.querySelector('h1').textContent = title;
  end.querySelector('p').textContent = text;
  end.hidden = false;
  document.getElementById('desk').inert = true;
}

(function () {
  // The smallest module that needs SIMD: the type of a function that returns a vector.
  var vectors = [0, 97, 115, 109, 1, 0, 0, 0, 1, 5, 1, 96, 0, 1, 123];
  var isAble = window.HTMLDialogElement && 'inert' in HTMLElement.prototype && Array.prototype.findLast &&
      window.TextMetrics && 'fontBoundingBoxAscent' in TextMetrics.prototype &&
      window.WebAssembly && WebAssembly.validate(new Uint8Array(vectors));
  if (!isAble) {
    showEnd('This browser is too old',
      'Kelvora needs WebAssembly with SIMD, and Firefox, Chrome, Edge or Safari from August 2023 on.');
    return;
  }
  function showLoss() { showEnd('Kelvora could not be loaded', 'Reload the page to try again.'); }
  var hasStyle = getComputedStyle(document.documentElement).getPropertyValue('--ground') !== '';
  if (!hasStyle) return showLoss();
  var script = document.createElement('script');
  script.src = 'kelvora.js';
  script.onerror = showLoss;
  document.body.append(script);
})();
