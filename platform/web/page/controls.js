// The elements of controls, by id. A control is created, gets its properties one by one, and is removed.
const controls = new Map();

const elementNames = {
  Form: 'section', Label: 'div', TextBox: 'input', Button: 'button', Frame: 'div', Image: 'canvas', Shape: 'div',
  Slider: 'input', PictureBox: 'div', CheckBox: 'label', Grid: 'div',
};

function createControl(id, parentId, kind) {
  const element = document.createElement(elementNames[kind]);
  element.classList.add(kind.toLowerCase());
  // `face` receives focus, mouse and keys.
  const control = {id, kind, element, client: element, face: element};
  controls.set(id, control);
  const make = makers[kind];
  if (make) make(control);
  if (kind !== 'Form') controls.get(parentId).client.append(element);
  if (kind !== 'Form') listenToMouse(control);
}

function removeControl(id) {
  const control = controls.get(id);
  controls.delete(id);
  stalePictures.delete(id);
  control.element.remove();
  if (control.removed) control.removed();
}

const makers = {
  Form: (control) => makeWindow(control),
  TextBox: (control) => {
    control.element.type = 'text';
    control.element.autocomplete = 'off';
    control.element.spellcheck = false;
    control.element.autocapitalize = 'none';  // for passwords
    control.element.setAttribute('autocorrect', 'off');
    const read = (event) => {
      const input = control.element;
      const bytes = lineBytes(input.value);
      const caret = bytes.length - toBytes(input.value.slice(input.selectionStart)).length;
      const clean = toText(bytes);
      // A new value would end the composition of a letter.
      if (clean !== input.value && !event.isComposing) {
        input.value = clean;
        input.setSelectionRange(caret, caret);
      }
      post('edited', control.id, [caret], bytes);
    };
    control.element.addEventListener('input', read);
    control.element.addEventListener('compositionend', read);
    listenToKeys(control);
  },
  Button: (control) => {
    control.element.type = 'button';
    control.element.addEventListener('click', () => post('click', control.id));
  },
  Frame: (control) => {
    control.title = document.createElement('span');
    control.title.className = 'title';
    control.element.append(control.title);
  },
  Slider: (control) => {
    control.element.type = 'range';
    control.element.step = 1;
    control.element.addEventListener('input', () => post('scrolled', control.id, [control.element.valueAsNumber]));
    control.element.addEventListener('change', () => post('changed', control.id, [control.element.valueAsNumber]));
  },
  CheckBox: (control) => {
    control.box = document.createElement('input');
    control.box.type = 'checkbox';
    control.words = document.createElement('span');
    control.face = control.box;
    control.element.append(control.box, control.words);
    control.box.addEventListener('change', () => post('ticked', control.id, [control.box.checked ? 1 : 0]));
  },
  Grid: (control) => makeGrid(control),
  PictureBox: (control) => {
    control.face = document.createElement('canvas');
    control.client = document.createElement('div');
    control.client.className = 'front';
    control.element.append(control.face, control.client);
    listenToKeys(control);
  },
};

const colourText = (value) => `rgb(${value >> 16 & 255} ${value >> 8 & 255} ${value & 255})`;

// The properties of all controls. A kind may override them.
const commonProperties = {
  Left: (control, value) => { control.element.style.left = value + 'px'; },
  Top: (control, value) => { control.element.style.top = value + 'px'; },
  Width: (control, value) => { control.element.style.width = value + 'px'; },
  Height: (control, value) => { control.element.style.height = value + 'px'; fitLine(control); },
  Visible: (control, value) => { control.element.hidden = !value; },
  ToolTipText: (control, value) => { control.element.title = value; },
  Caption: (control, value) => { (control.words || control.title || control.element).textContent = value; fitLine(control); },
  ForeColor: (control, value) => { control.element.style.color = colourText(value); },
  BackColor: (control, value) => { control.element.style.backgroundColor = colourText(value); },
  BorderStyle: (control, value) => { control.element.classList.toggle('bordered', value !== 0); },
  Font: (control, value) => { control.element.style.font = value; fitLine(control); },
  Alignment: (control, value) => { control.element.style.textAlign = value; },
  TabIndex: (control, value) => { control.face.tabIndex = value; },
  Default: (control) => { control.element.classList.add('default'); },
};

const ownProperties = {
  TextBox: {
    Text: (control, value) => { control.element.value = value; control.element.setSelectionRange(0, 0); },
    SelStart: (control, value) => { control.element.setSelectionRange(value, value); },
  },
  Slider: {
    Min: (control, value) => { control.element.min = value; },
    Max: (control, value) => {
      control.element.max = value;
      control.element.style.setProperty('--steps', value - control.element.min);
    },
    Value: (control, value) => { control.element.value = value; },
  },
  CheckBox: {Value: (control, value) => { control.box.checked = value !== 0; }},
  PictureBox: {
    Width: (control, value) => { commonProperties.Width(control, control.width = value); fitFront(control); },
    Height: (control, value) => { commonProperties.Height(control, control.height = value); fitFront(control); },
    MousePointer: (control, value) => { control.face.style.cursor = value === 99 ? 'none' : ''; },
    // Only pictures that are buttons have names. Keys press them as they press a real one.
    Name: (control, value) => {
      control.face.setAttribute('role', 'button');
      control.face.setAttribute('aria-label', value);
      control.face.tabIndex = 0;
      control.face.addEventListener('keydown', (event) => {
        if (event.key === 'Enter' || event.key === ' ') for (const kind of ['mouseDown', 'mouseUp']) post(kind, control.id, [1, 0, 0, 0, 1]);
      });
    },
    View: (control) => {
      control.isView = true;
      control.face.tabIndex = 0;
      control.face.setAttribute('role', 'application');  // screen readers leave it all keys
      control.face.setAttribute('aria-label', 'Game');
    },
    FrontWidth: (control, value) => { control.frontWidth = value; fitFront(control); },
    FrontHeight: (control, value) => { control.frontHeight = value; fitFront(control); },
  },
  Shape: {
    BorderColor: (control, value) => { control.element.style.borderColor = colourText(value); },
    BorderStyle: (control, value) => { control.element.style.borderStyle = value === 3 ? 'dotted' : 'solid'; },
    BorderWidth: (control, value) => { control.element.style.borderWidth = value + 'px'; },
  },
  Form: windowProperties,
  Menu: menuProperties,
  Grid: gridProperties,
};

function setProperty(id, name, value) {
  const control = controls.get(id);
  const own = ownProperties[control.kind];
  ((own && own[name]) || commonProperties[name])(control, value);
}

// Centres a single line in its label vertically.
function fitLine(control) {
  if (control.kind !== 'Label') return;
  const style = control.element.style;
  const size = parseFloat(style.fontSize) || 11;
  const height = parseFloat(style.height);
  control.element.classList.toggle('line', height < 2.3 * size);
  style.lineHeight = height < 2.3 * size ? height + 'px' : '';
  tightenLine(control.element);
}

// Browsers' letters are up to a pixel wider than the design's. Moves the letters of a line together if it is cut off.
function tightenLine(element) {
  element.style.letterSpacing = '';
  const excess = element.scrollWidth - element.clientWidth;
  const isLine = element.classList.contains('line') && element.clientWidth > 0;
  if (isLine && excess > 0 && excess < 20) element.style.letterSpacing = -(excess + 1) / element.textContent.length + 'px';
}

// Scales what is in front of a picture box until its picture fits, and centres it. The box's own picture is hidden then.
function fitFront({element, client, width, height, frontWidth, frontHeight}) {
  element.classList.toggle('fitted', Boolean(frontWidth && frontHeight));
  if (!frontWidth || !frontHeight) return client.removeAttribute('style');
  const scale = Math.min(width / frontWidth, height / frontHeight);
  const left = (width - frontWidth * scale) / 2;
  const top = (height - frontHeight * scale) / 2;
  Object.assign(client.style, {width: frontWidth + 'px', height: frontHeight + 'px',
    transform: `translate(${left}px, ${top}px) scale(${scale})`});
}

function focusControl(id) {
  const control = controls.get(id);
  raiseWindow(windowOf(control));
  if (control.kind === 'Form') return;
  moveKeys(control);
  control.face.focus({preventScroll: true});
}

// Names text boxes and sliders after the label on their left, for screen readers.
function nameFields(form) {
  const labels = [...form.client.querySelectorAll('.label')];
  for (const field of form.client.querySelectorAll('.textbox, .slider')) {
    const {left, top, bottom} = field.getBoundingClientRect();
    const isBeside = (place) => place.width > 0 && place.right <= left + 1 && place.top < bottom && place.bottom > top;
    const label = labels.filter((one) => isBeside(one.getBoundingClientRect()))
      .sort((a, b) => b.getBoundingClientRect().right - a.getBoundingClientRect().right)[0];
    if (!label) continue;
    label.id = label.id || `label${++lastLabel}`;
    field.setAttribute('aria-labelledby', label.id);
  }
}
let lastLabel = 0;

const windowOf = (control) => controls.get(Number(control.element.closest('.form').dataset.id));
