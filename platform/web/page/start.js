// Loads the program and starts it, or says why it doesn't run.
const progress = document.getElementById('progress');

// Reports an error of the page, which would otherwise just stand still.
function showStop(what) {
  showEnd('Kelvora has stopped', `The page can't go on: ${what}. Reload it to play again.`);
  endGame();
}

// Leaves the arena, silences everything and gives the program no turn any more.
function endGame() {
  hasEnded = true;
  leaveArena();
  stopMusic();
  for (const id of sounds.keys()) stopSound(id);
}

// Extensions, and browsers inside other apps, run scripts of their own in pages. Their mistakes are none of the game's.
const isOwn = (place) => /\/kelvora\.(js|wasm)/.test(place);
addEventListener('error', (event) => { if (isOwn(event.filename)) showStop(event.message); });
addEventListener('unhandledrejection', ({reason}) => { if (isOwn(reason?.stack)) showStop(reason); });

var Module = {
  noInitialRun: true,
  setStatus: (text) => {
    const parts = /\((\d+)\/(\d+)\)/.exec(text);
    if (parts) progress.value = Number(parts[1]) / Number(parts[2]);
  },
  onRuntimeInitialized: () => {
    const fonts = ['11px "MS Sans Serif"', '12px "Comic Sans MS"', 'bold 12px "Comic Sans MS"', '12px "Kristen ITC"'];
    Promise.all(fonts.map((font) => document.fonts.load(font))).catch(() => {}).then(() => {
      document.getElementById('loading').hidden = true;
      Module.callMain([]);
    });
  },
  onAbort: showStop,
};
