// Mouse and keys as the controls of the program take them: buttons 1 left, 2 right, 4 middle; Shift 1, Ctrl 2, Alt 4.
const buttonBits = [1, 4, 2];
const shiftBits = (event) => (event.shiftKey ? 1 : 0) + (event.ctrlKey ? 2 : 0) + (event.altKey ? 4 : 0);

function listenToMouse(control) {
  const {element, id} = control;
  const tell = (kind, button) => (event) => {
    const place = element.getBoundingClientRect();
    const x = Math.floor(event.clientX - place.left);
    const y = Math.floor(event.clientY - place.top);
    const isInside = x >= 0 && y >= 0 && x < place.width && y < place.height;
    post(kind, id, [button(event), shiftBits(event), x, y, isInside ? 1 : 0]);
  };
  const pressed = tell('mouseDown', (event) => buttonBits[event.button] || 0);
  element.addEventListener('pointerdown', (event) => {
    event.stopPropagation();
    raiseWindow(windowOf(control));
    if (control.kind === 'PictureBox' || control.kind === 'Label') {
      element.setPointerCapture(event.pointerId);
      if (control.kind === 'PictureBox' && element.tabIndex >= 0) element.focus({preventScroll: true});
      event.preventDefault();
    }
    pressed(event);
  });
  element.addEventListener('pointermove', tell('mouseMove', (event) => event.buttons & 7));
  element.addEventListener('pointerup', tell('mouseUp', (event) => buttonBits[event.button] || 0));
  element.addEventListener('dblclick', tell('doubleClick', () => 1));
}

const isFunctionKey = (event) => /^F([1-9]|10)$/.test(event.key);

function listenToKeys(control) {
  control.element.addEventListener('keydown', (event) => {
    if (event.isComposing) return;
    if (isFunctionKey(event) || event.key === 'Enter' || event.key === 'Escape') event.preventDefault();
    post('keyDown', control.id, [event.keyCode, shiftBits(event)]);
    if (event.altKey || event.metaKey) return;
    const controlKeys = {Enter: 13, Escape: 27, Backspace: 8, Tab: 9};
    const typed = controlKeys[event.key] ? [controlKeys[event.key]] : event.ctrlKey ? [] : toBytes(letterOf(event));
    for (const byte of typed) post('keyPress', control.id, [byte]);
  });
}

const letterOf = (event) => [...event.key].length === 1 ? event.key : '';

// Keys in a window whose focus has no use for them: Enter and Esc answer its buttons, function keys go to the program.
document.addEventListener('keydown', (event) => {
  const form = frontWindow();
  if (!form || event.target.closest('.textbox, .picturebox, dialog')) return;
  const answers = event.key === 'Escape' || (event.key === 'Enter' && event.target.tagName !== 'BUTTON');
  if (answers) post('keyDown', form.id, [event.keyCode, shiftBits(event)]);
  if (answers || isFunctionKey(event)) event.preventDefault();
});
