// What the browser tells waits here until the program asks for it inside DoEvents. Nothing ever calls into the program.
const eventKinds = [
  'none', 'mouseDown', 'mouseMove', 'mouseUp', 'doubleClick', 'click', 'keyDown', 'keyPress', 'edited', 'scrolled',
  'changed', 'ticked', 'cellChosen', 'resized', 'moved', 'closed', 'activated', 'socketOpened', 'socketData',
  'socketClosed', 'socketFailed',
];
const kindNumbers = Object.fromEntries(eventKinds.map((kind, number) => [kind, number]));
const nothing = new Uint8Array(0);
const pendingEvents = [];
const maximumPendingEvents = 10000;
let endWait = null;

function post(kind, id, numbers = [], bytes = nothing) {
  const last = pendingEvents[pendingEvents.length - 1];
  const replaces = last && last.kind === kind && last.id === id && (kind === 'mouseMove' || kind === 'resized');
  if (replaces) pendingEvents.pop();
  // Only a program that has stopped asking gets here.
  if (pendingEvents.length >= maximumPendingEvents && !kind.startsWith('socket')) return;
  pendingEvents.push({kind, id, numbers, bytes});
  if (endWait) endWait();
}

// Comes back with the next event, or after the milliseconds. A browser rounds its timers up to 4 ms and slows them down
// in hidden tabs; messages between ports come at once.
const turn = new MessageChannel();
let nextTurn = null;
turn.port1.onmessage = () => nextTurn();

function waitForEvents(milliseconds, wakeUp) {
  let timer = 0;
  const end = () => {
    if (endWait !== end) return;
    endWait = null;
    clearTimeout(timer);
    nextTurn = wakeUp;
    turn.port2.postMessage(0);
  };
  endWait = end;
  if (pendingEvents.length > 0 || milliseconds < 1) {
    end();
  } else if (Number.isFinite(milliseconds)) {
    timer = setTimeout(end, Math.floor(milliseconds));
  }
}
