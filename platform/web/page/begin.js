// Says so where the browser can't run the game; loads it where it can.
(function () {
  var isAble = window.WebAssembly && window.HTMLDialogElement && Array.prototype.findLast;
  var script = document.createElement('script');
  script.src = 'kelvora.js';
  script.onerror = function () { say('Kelvora could not be loaded', 'Reload the page to try again.'); };
  function say(title, text) {
    document.getElementById('loading').hidden = true;
    var end = document.getElementById('end');
    end.querySelector('h1').textContent = title;
    end.querySelector('p').textContent = text;
    end.hidden = false;
  }
  if (isAble) {
    document.body.append(script);
  } else {
    say('This browser is too old', 'Kelvora needs WebAssembly. Firefox, Chrome, Edge and Safari from 2023 on have it.');
  }
})();
