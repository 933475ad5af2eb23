// Queues the browser's events until the program takes them inside DoEvents. Nothing ever calls into the program.
// The kinds are in the same order as PageEventKind in pageEvents.h.
const eventKinds = [
  'none', 'mouseDown', 'mouseMove', 'mouseUp', 'doubleClick', 'click', 'keyDown', 'keyPress', 'edited', 'scrolled',
  'changed', 'ticked', 'cellChosen', 'resized', 'moved', 'closed', 'activated', 'socketOpened', 'socketData',
  'socketClosed', 'socketFailed', 'touched', 'released',
];
const kindNumbers = Object.fromEntries(eventKinds.map((kind, number) => [kind, number]));
const nothing = new Uint8Array(0);
const pendingEvents = [];
const maxPendingEvents = 10000;
let endWait = null;
let hasEnded = false;

function post(kind, id, numbers = [], bytes = nothing) {
  const last = pendingEvents[pendingEvents.length - 1];
  // Of several moves, the last one inside and the last one outside the control count: pictures ignore those outside.
  const isOfSameKind = last && last.kind === kind && last.id === id && last.numbers[4] === numbers[4];
  if (isOfSameKind && (kind === 'mouseMove' || kind === 'resized')) pendingEvents.pop();
  // Reached only if the program has stopped taking events.
  if (pendingEvents.length >= maxPendingEvents && !kind.startsWith('socket')) return;
  pendingEvents.push({kind, id, numbers, bytes});
  if (endWait) endWait();
}

// Resolves on the next event, or after the milliseconds. Messages between ports arrive at once, while browsers round
// timers up to 4 ms. In a hidden tab they slow timers down to one a second or less, except in a worker. So the game goes
// on there, as in a minimised window.
const workerCode = 'onmessage = (event) => setTimeout(() => postMessage(event.data.number), event.data.milliseconds);';
const clock = new Worker(URL.createObjectURL(new Blob([workerCode], {type: 'text/javascript'})));
let clockNumber = 0;
clock.onmessage = (event) => { if (event.data === clockNumber && endWait) endWait(); };
const turn = new MessageChannel();
let nextTurn = null;
turn.port1.onmessage = () => { if (!hasEnded) nextTurn(); };

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
  } else if (!Number.isFinite(milliseconds)) {
    return;
  } else if (document.hidden) {
    clock.postMessage({number: ++clockNumber, milliseconds: Math.floor(milliseconds)});
  } else {
    timer = setTimeout(end, Math.floor(milliseconds));
  }
}
