// Loading, and the two ends of it: the program runs, or the page says why it doesn't.
const progress = document.getElementById('progress');

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
  onAbort: (what) => showEnd('Kelvora has stopped', `The page can't go on: ${what}. Reload it to play again.`),
};
