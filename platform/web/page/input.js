// Turns mouse and key events into the program's. Buttons: 1 left, 2 right, 4 middle. Shift: 1 Shift, 2 Ctrl, 4 Alt.
const buttonBits = [1, 4, 2];
const isMac = navigator.platform.startsWith('Mac');
const shiftBits = (event) => (event.shiftKey ? 1 : 0) + (event.ctrlKey ? 2 : 0) + (event.altKey ? 4 : 0);

// A mouse event's numbers: button, Shift, x and y in pixels of the control, 1 for inside.
function mouseNumbers(element, event, button) {
  const place = element.getBoundingClientRect();
  const scale = place.width / element.offsetWidth || 1;
  const x = Math.floor((event.clientX - place.left) / scale);
  const y = Math.floor((event.clientY - place.top) / scale);
  const isInside = x >= 0 && y >= 0 && x < element.offsetWidth && y < element.offsetHeight;
  return [button, shiftBits(event), x, y, isInside ? 1 : 0];
}

function listenToMouse(control) {
  const {id, kind} = control;
  const element = kind === 'PictureBox' ? control.face : control.element;
  const isCaptor = kind === 'PictureBox' || kind === 'Label';
  // As on a desktop, a control doesn't hear of a press elsewhere, nor of its moves and release.
  const isOwn = (event) => !isCaptor || element.hasPointerCapture(event.pointerId);
  let isCtrlClick = false;
  const known = (bits) => isCtrlClick && bits & 1 ? bits & 6 | 2 : bits & 7;
  const tell = (what, event, bits) => post(what, id, mouseNumbers(element, event, known(bits)));
  element.addEventListener('pointerdown', (event) => {
    event.stopPropagation();
    // On a Mac, Ctrl makes the left button the right one until it is released.
    isCtrlClick = isMac && event.ctrlKey && event.button === 0;
    raiseWindow(windowOf(control), event.pointerType === 'touch');
    if (isCaptor) {
      element.setPointerCapture(event.pointerId);
      if (control.isView) element.focus({preventScroll: true});
      event.preventDefault();
    }
    if (event.pointerType === 'touch' && control.isView) return fingerDown(control, event);
    tell('mouseDown', event, buttonBits[event.button]);
  });
  element.addEventListener('pointermove', (event) => {
    if (fingers.has(event.pointerId) && event.pointerId !== steeringFinger()) return;
    if (event.buttons !== 0 && !isOwn(event)) return;
    // While a button is held, browsers report those of others as moves. Safari names a button in other moves, too.
    const bit = event.buttons ? buttonBits[event.button] : 0;
    if (bit) return tell(event.buttons & bit ? 'mouseDown' : 'mouseUp', event, bit);
    tell('mouseMove', event, fingers.has(event.pointerId) ? 0 : event.buttons);
  });
  element.addEventListener('pointerup', (event) => {
    if (!fingers.has(event.pointerId) && isOwn(event)) tell('mouseUp', event, buttonBits[event.button]);
    fingerUp(control, event);
  });
  element.addEventListener('pointercancel', (event) => fingerUp(control, event));
  element.addEventListener('dblclick', (event) => tell('doubleClick', event, 1));
}

// Safari ends the composition before the Enter that confirms it.
const isComposing = (event) => event.isComposing || event.keyCode === 229;
const isFunctionKey = (event) => /^F([1-9]|10)$/.test(event.key);

function listenToKeys(control) {
  control.face.addEventListener('keydown', (event) => {
    if (isComposing(event)) return;
    const isAnswer = event.key === 'Enter' || event.key === 'Escape';
    const controlKeys = {Enter: 13, Escape: 27, Backspace: 8};
    // On a Mac, Option makes characters, as AltGr does elsewhere.
    const hasAlt = event.metaKey || (event.altKey && !isMac);
    const letters = hasAlt || event.ctrlKey ? [] : toBytes(letterOf(event));
    const typed = hasAlt ? [] : controlKeys[event.key] ? [controlKeys[event.key]] : letters;
    // Keys behind moved ones, or behind one that may change the line, must not overtake them. A browser would search the
    // page for letters on a picture.
    const isMoved = pendingEvents.some((other) => other.id === control.id && (other.isMoved || changesLine(other)));
    const isUnused = control.kind === 'PictureBox' && letters.length > 0;
    if (isMoved || isUnused || isAnswer || isFunctionKey(event)) event.preventDefault();
    const first = pendingEvents.length;
    post('keyDown', control.id, [event.keyCode, shiftBits(event)]);
    for (const byte of typed) post('keyPress', control.id, [byte]);
    for (const key of pendingEvents.slice(first)) key.isMoved = isMoved;
  });
}

// Password managers send keydown events without a key.
const letterOf = ({key = ''}) => [...key].length === 1 ? key : '';
const isKey = (event) => event.kind === 'keyDown' || event.kind === 'keyPress';
// The chat line clears itself at Enter. Up and Down replace it by a line sent before.
const changesLine = ({kind, numbers: [key]}) =>
  (kind === 'keyPress' && key === 13) || (kind === 'keyDown' && (key === 38 || key === 40));

// Moves the keys that wait for the program from one control to another.
function markMoved(from, to) {
  for (const event of pendingEvents) {
    if (event.id === from.id && isKey(event)) Object.assign(event, {id: to.id, isMoved: true});
  }
}

// Keys go to the control that has the focus when the program takes them, as on a desktop. It may move the focus between
// two keys: the first letter of a chat line moves it from the view to the line.
function moveKeys(to) {
  const from = [...controls.values()].find((control) => control.face === document.activeElement);
  if (from && from !== to) markMoved(from, to);
}

// The browser hasn't typed a moved letter into its text box, nor deleted one by a moved Backspace.
function typeMoved(event) {
  const control = controls.get(event.id);
  const [byte] = event.numbers;
  const isBackspace = byte === 8;
  if (!event.isMoved || event.kind !== 'keyPress' || !(byte >= 32 || isBackspace) || control?.kind !== 'TextBox') return;
  const input = control.element;
  const {selectionStart: start, selectionEnd: end} = input;
  if (isBackspace) {
    input.setRangeText('', start < end ? start : Math.max(start - 1, 0), end, 'end');
  } else {
    input.setRangeText(toText(Uint8Array.of(byte)), start, end, 'end');
  }
  const edited = {kind: 'edited', id: event.id, numbers: [input.selectionStart], bytes: toBytes(input.value)};
  pendingEvents.splice(1, 0, edited);
}

// Tab goes round in a dialog and its title bar, and doesn't leave it for the windows behind it. Some browsers would pass
// over buttons.
document.addEventListener('keydown', (event) => {
  const isTab = event.key === 'Tab' && !isComposing(event);
  const form = isTab && event.target.closest('.form:not(.main)');
  if (!form) return;
  const control = controls.get(Number(form.dataset.id));
  const order = [...tabOrder(control), control.bar.querySelector('.close')];
  const next = order.at((order.indexOf(event.target) + (event.shiftKey ? -1 : 1)) % order.length);
  event.preventDefault();
  next.focus();
  next.select?.();
});

// Keys in a window whose focus has no use for them: Enter and Esc answer its buttons. The browser gets none of the
// function keys.
document.addEventListener('keydown', (event) => {
  const form = frontWindow();
  if (!form || event.target.closest('.textbox, canvas, dialog')) return;
  const answers = event.key === 'Escape' || (event.key === 'Enter' && event.target.tagName !== 'BUTTON');
  if (answers) post('keyDown', form.id, [event.keyCode, shiftBits(event)]);
  if (answers || isFunctionKey(event)) event.preventDefault();
});
