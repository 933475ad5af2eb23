// Windows of the page. The first one fills it. The others are dialogs in front of it, the last raised one on top. A
// modal dialog makes everything below it inert.
const desk = document.getElementById('desk');
let mainWindow = null;

// The smallest desk on which the game can be played. A smaller page shows it scaled down.
const smallestDesk = {width: 640, height: 606};
let deskScale = 1;
let deskWidth = 0;
let deskHeight = 0;

function fitDesk() {
  deskScale = Math.min(1, innerWidth / smallestDesk.width, innerHeight / smallestDesk.height) || 1;
  deskWidth = Math.floor(innerWidth / deskScale);
  deskHeight = Math.floor(innerHeight / deskScale);
  Object.assign(desk.style, {width: deskWidth + 'px', height: deskHeight + 'px', transform: scaleText(deskScale)});
}
const scaleText = (scale) => scale === 1 ? '' : `scale(${scale})`;
fitDesk();

// Shows a dialog in its own size, or smaller if it doesn't fit into the page.
function fitDialog(control) {
  const {element} = control;
  control.scale = Math.min(1 / deskScale, deskWidth / element.offsetWidth, deskHeight / element.offsetHeight) || 1;
  element.style.transform = scaleText(control.scale);
}
const shownWindows = [];

const frontWindow = () => shownWindows[shownWindows.length - 1];

function makeWindow(control) {
  const {element, id} = control;
  element.hidden = true;
  element.dataset.id = id;
  element.classList.add('form');
  control.bar = document.createElement('header');
  control.words = document.createElement('h2');
  const close = document.createElement('button');
  close.type = 'button';
  close.className = 'close';
  close.setAttribute('aria-label', 'Close');
  close.textContent = '\u00d7';
  close.addEventListener('click', () => post('closed', id));
  control.bar.append(control.words, close);
  control.client = document.createElement('div');
  control.client.className = 'client';
  element.append(control.bar, control.client);
  control.words.id = `title${id}`;
  element.setAttribute('aria-labelledby', control.words.id);
  element.addEventListener('pointerdown', (event) => raiseWindow(control, event.pointerType === 'touch'));
  dragByBar(control);
  control.removed = () => leaveDesk(control);
  desk.append(element);
}

function dragByBar(control) {
  let grip = null;
  control.bar.addEventListener('pointerdown', (event) => {
    if (event.button !== 0 || event.target.closest('button')) return;
    const {offsetLeft, offsetTop} = control.element;
    grip = {x: event.clientX / deskScale - offsetLeft, y: event.clientY / deskScale - offsetTop};
    control.bar.setPointerCapture(event.pointerId);
  });
  control.bar.addEventListener('pointermove', (event) => {
    if (!grip) return;
    control.isDragged = true;
    placeWindow(control, event.clientX / deskScale - grip.x, event.clientY / deskScale - grip.y);
  });
  control.bar.addEventListener('lostpointercapture', () => { grip = null; });
}

function placeWindow(control, left, top) {
  const {element, scale} = control;
  const x = Math.round(Math.max(0, Math.min(left, deskWidth - element.offsetWidth * scale)));
  const y = Math.round(Math.max(0, Math.min(top, deskHeight - element.offsetHeight * scale)));
  element.style.left = x + 'px';
  element.style.top = y + 'px';
  post('moved', control.id, [0, 0, x, y]);
}

// In the middle of the page, unless the game has placed it.
function placeFirst(control) {
  control.isDragged = false;
  const {element, scale} = control;
  placeWindow(control, control.left ?? (deskWidth - element.offsetWidth * scale) / 2,
    control.top ?? (deskHeight - element.offsetHeight * scale) / 2);
}

function fillPage(control) {
  post('resized', control.id, [0, 0, deskWidth, deskHeight - control.client.offsetTop]);
}

addEventListener('resize', () => {
  fitDesk();
  if (mainWindow) fillPage(mainWindow);
  for (const control of shownWindows) {
    if (control === mainWindow) continue;
    fitDialog(control);
    if (control.isDragged) {
      placeWindow(control, control.element.offsetLeft, control.element.offsetTop);
    } else {
      placeFirst(control);
    }
  }
});

// A press on something that takes no keys leaves the focus where it is, as on a desktop.
desk.addEventListener('mousedown', (event) => {
  if (!event.target.closest('input, .button, .checkbox, .grid')) event.preventDefault();
});

// The browser's menu opens only over texts, for cutting and pasting.
desk.addEventListener('contextmenu', (event) => { if (!event.target.closest('input')) event.preventDefault(); });

// A finger leaves the focus where it is: a text box that gets it would open the keyboard on the screen.
function raiseWindow(control, isFinger = false) {
  const at = shownWindows.indexOf(control);
  if (at < 0 || control.element.inert) return;
  keepFocus();
  const wasFront = at === shownWindows.length - 1;
  if (control !== mainWindow) shownWindows.push(...shownWindows.splice(at, 1));
  orderWindows();
  if (!wasFront || !control.isActive) post('activated', control.id);
  for (const other of shownWindows) other.isActive = other === control;
  if (!isFinger) takeFocus(control);
}

// Gives a window the keyboard, unless it has it already, as in its menus.
function takeFocus(control) {
  if (!control.element.contains(document.activeElement)) control.focus?.focus({preventScroll: true});
}

// Keeps the focused element for when its window is in front again, or its menus are left. Focus events can't tell it:
// there are none while the browser's own window is inactive.
function keepFocus(element = document.activeElement) {
  const form = element?.closest('.form');
  if (form && !element.closest('.menubar')) controls.get(Number(form.dataset.id)).focus = element;
}

function orderWindows() {
  const lastModal = shownWindows.findLastIndex((other) => other.isModal);
  shownWindows.forEach((other, at) => {
    other.element.style.zIndex = at + 1;
    other.element.inert = at < lastModal;
  });
}

function leaveDesk(control) {
  const at = shownWindows.indexOf(control);
  if (at < 0) return;
  keepFocus();
  shownWindows.splice(at, 1);
  orderWindows();
  const front = frontWindow();
  if (!front) return;
  takeFocus(front);
  post('activated', front.id);
}

function showWindow(control) {
  mainWindow = mainWindow || control;
  if (control === mainWindow) addRecordMenu(control);
  if (control === mainWindow && isWatching) addWatchNote(control);
  control.element.classList.toggle('main', control === mainWindow);
  control.element.hidden = false;
  shownWindows.push(control);
  control.isActive = false;
  if (control === mainWindow) {
    fillPage(control);
  } else {
    control.element.setAttribute('role', 'dialog');
    fitDialog(control);
    placeFirst(control);
  }
  nameFields(control);
  control.client.querySelectorAll('.label').forEach(tightenLine);  // hidden ones had no size
  raiseWindow(control);
  tabOrder(control)[0]?.focus({preventScroll: true});
}

const tabOrder = (control) => [...control.client.querySelectorAll('[tabindex]')]
  .filter((element) => element.tabIndex > 0).sort((a, b) => a.tabIndex - b.tabIndex);

// Until somebody has logged in, watching would look like playing.
function addWatchNote(control) {
  if (control.list.querySelector('.note')) return;
  const note = document.createElement('li');
  note.className = 'note';
  note.setAttribute('role', 'none');
  note.textContent = 'Watching: players don\u2019t see you';
  control.list.append(note);
}

const windowProperties = {
  Caption: (control, value) => {
    control.words.textContent = value;
    if (control === mainWindow || !mainWindow) document.title = isWatching ? `Watching ${value}` : value;
  },
  Left: (control, value) => { control.left = value; if (!control.element.hidden) placeWindow(control, value, control.top || 0); },
  Top: (control, value) => { control.top = value; if (!control.element.hidden) placeWindow(control, control.left || 0, value); },
  Width: (control, value) => { control.client.style.width = value + 'px'; },
  Height: (control, value) => { control.client.style.height = value + 'px'; },
  BackColor: (control, value) => { control.client.style.backgroundColor = colourText(value); },
  SystemColours: (control) => { control.element.classList.add('dialog'); },
  Modal: (control, value) => {
    control.isModal = value !== 0;
    control.element.setAttribute('aria-modal', control.isModal);
  },
  Visible: (control, value) => {
    if (value) return shownWindows.includes(control) ? raiseWindow(control) : showWindow(control);
    control.element.hidden = true;
    leaveDesk(control);
  },
};

// Message boxes are above all windows, the newest on top.
function showBox(id, text) {
  const box = document.createElement('dialog');
  box.tabIndex = -1;  // a click beside the button leaves the focus in the box
  const words = document.createElement('p');
  words.textContent = text;
  words.id = `box${id}`;
  box.setAttribute('role', 'alertdialog');
  box.setAttribute('aria-labelledby', words.id);
  const ok = document.createElement('button');
  ok.type = 'button';
  ok.className = 'button default';
  ok.textContent = 'OK';
  ok.addEventListener('click', () => box.close());
  box.addEventListener('keydown', (event) => {
    if (event.key !== 'Enter') return;
    event.preventDefault();  // the rest of the key would press the button that gets the focus back
    box.close();
  });
  box.addEventListener('close', () => { box.remove(); post('closed', id); });
  box.append(words, ok);
  document.body.append(box);
  box.showModal();
}
