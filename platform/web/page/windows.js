// Windows of the page. The first one that is shown fills it; the others are dialogs in front of it, the last raised on
// top. A modal one makes all below it inert.
const desk = document.getElementById('desk');
let mainWindow = null;
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
  element.addEventListener('pointerdown', () => raiseWindow(control));
  dragByBar(control);
  control.removed = () => leaveDesk(control);
  desk.append(element);
}

function dragByBar(control) {
  let grip = null;
  control.bar.addEventListener('pointerdown', (event) => {
    if (event.target.closest('button')) return;
    grip = {x: event.clientX - control.element.offsetLeft, y: event.clientY - control.element.offsetTop};
    control.bar.setPointerCapture(event.pointerId);
  });
  control.bar.addEventListener('pointermove', (event) => {
    if (grip) placeWindow(control, event.clientX - grip.x, event.clientY - grip.y);
  });
  control.bar.addEventListener('pointerup', () => { grip = null; });
}

function placeWindow(control, left, top) {
  const {element} = control;
  const x = Math.round(Math.max(0, Math.min(left, innerWidth - element.offsetWidth)));
  const y = Math.round(Math.max(0, Math.min(top, innerHeight - element.offsetHeight)));
  element.style.left = x + 'px';
  element.style.top = y + 'px';
  post('moved', control.id, [x, y]);
}

function fillPage(control) {
  const height = innerHeight - control.client.offsetTop;
  post('resized', control.id, [innerWidth, height]);
}

addEventListener('resize', () => { if (mainWindow) fillPage(mainWindow); });

function raiseWindow(control) {
  const at = shownWindows.indexOf(control);
  if (at < 0 || control.element.inert) return;
  const wasFront = at === shownWindows.length - 1;
  if (control !== mainWindow) shownWindows.push(...shownWindows.splice(at, 1));
  orderWindows();
  if (!wasFront || !control.isActive) post('activated', control.id);
  for (const other of shownWindows) other.isActive = other === control;
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
  shownWindows.splice(at, 1);
  orderWindows();
  const front = frontWindow();
  if (!front) return;
  if (front.focus) front.focus.focus({preventScroll: true});
  post('activated', front.id);
}

function showWindow(control) {
  mainWindow = mainWindow || control;
  control.element.classList.toggle('main', control === mainWindow);
  control.element.hidden = false;
  if (!shownWindows.includes(control)) shownWindows.push(control);
  control.isActive = false;
  if (control === mainWindow) {
    fillPage(control);
  } else {
    const left = control.left === undefined ? (innerWidth - control.element.offsetWidth) / 2 : control.left;
    const top = control.top === undefined ? (innerHeight - control.element.offsetHeight) / 2 : control.top;
    placeWindow(control, left, top);
  }
  raiseWindow(control);
  const first = [...control.client.querySelectorAll('[tabindex]')]
    .filter((element) => element.tabIndex > 0).sort((a, b) => a.tabIndex - b.tabIndex)[0];
  if (first) first.focus({preventScroll: true});
}

addEventListener('focusin', (event) => {
  const form = event.target.closest('.form');
  if (form) controls.get(Number(form.dataset.id)).focus = event.target;
});

const windowProperties = {
  Caption: (control, value) => {
    control.words.textContent = value;
    if (control === mainWindow || !mainWindow) document.title = value;
  },
  Left: (control, value) => { control.left = value; if (!control.element.hidden) placeWindow(control, value, control.top || 0); },
  Top: (control, value) => { control.top = value; if (!control.element.hidden) placeWindow(control, control.left || 0, value); },
  Width: (control, value) => { control.client.style.width = value + 'px'; },
  Height: (control, value) => { control.client.style.height = value + 'px'; },
  BackColor: (control, value) => { control.client.style.backgroundColor = colourText(value); },
  SystemColours: (control) => { control.element.classList.add('dialog'); },
  Modal: (control, value) => { control.isModal = value !== 0; },
  Visible: (control, value) => {
    if (value) return showWindow(control);
    control.element.hidden = true;
    leaveDesk(control);
  },
};

// Message boxes stand over everything, the newest on top.
function showBox(id, text) {
  const box = document.createElement('dialog');
  const words = document.createElement('p');
  words.textContent = text;
  const ok = document.createElement('button');
  ok.type = 'button';
  ok.className = 'button default';
  ok.textContent = 'OK';
  ok.addEventListener('click', () => box.close());
  box.addEventListener('close', () => { box.remove(); post('closed', id); });
  box.append(words, ok);
  document.body.append(box);
  box.showModal();
}

// The program is over; what it drew stays behind the words.
function showEnd(title, text) {
  const end = document.getElementById('end');
  end.querySelector('h1').textContent = title;
  end.querySelector('p').textContent = text;
  end.hidden = false;
  desk.inert = true;
}
