// Loading, and the two ends of it: the program runs, or the page says why it doesn't.
const progress = document.getElementById('progress');

// A page that can't go on says so instead of standing still.
function showStop(what) {
  showEnd('Kelvora has stopped', `The page can't go on: ${what}. Reload it to play again.`);
}
addEventListener('error', (event) => showStop(event.message));
addEventListener('unhandledrejection', (event) => showStop(event.reason));

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
