// One element a control, found by its number. A control is made, gets its properties one by one, and is removed.
const controls = new Map();

const elementNames = {
  Form: 'section', Label: 'div', TextBox: 'input', Button: 'button', Frame: 'div', Image: 'canvas', Shape: 'div',
  Slider: 'input', PictureBox: 'canvas', CheckBox: 'label', Grid: 'div',
};

function createControl(id, parentId, kind) {
  const element = document.createElement(elementNames[kind]);
  element.classList.add(kind.toLowerCase());
  const control = {id, kind, element, client: element, place: {}};
  controls.set(id, control);
  const make = makers[kind];
  if (make) make(control);
  if (kind !== 'Form') controls.get(parentId).client.append(element);
  if (kind !== 'Form') listenToMouse(control);
}

function removeControl(id) {
  const control = controls.get(id);
  controls.delete(id);
  control.element.remove();
  if (control.removed) control.removed();
}

const makers = {
  Form: (control) => makeWindow(control),
  TextBox: (control) => {
    control.element.type = 'text';
    control.element.autocomplete = 'off';
    control.element.spellcheck = false;
    control.element.addEventListener('input', () => {
      const input = control.element;
      const bytes = toBytes(input.value);
      const clean = toText(bytes);
      if (clean !== input.value) {
        const caret = toBytes(input.value.slice(0, input.selectionStart)).length;
        input.value = clean;
        input.setSelectionRange(caret, caret);
      }
      post('edited', control.id, [input.selectionStart], bytes);
    });
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
    control.element.append(control.box, control.words);
    control.box.addEventListener('change', () => post('ticked', control.id, [control.box.checked ? 1 : 0]));
  },
  Grid: (control) => makeGrid(control),
  PictureBox: (control) => {
    control.element.addEventListener('contextmenu', (event) => event.preventDefault());
    listenToKeys(control);
  },
};

const colourText = (value) => `rgb(${value >> 16 & 255} ${value >> 8 & 255} ${value & 255})`;

// What all controls understand; a kind's own understanding comes first.
const commonProperties = {
  Left: (control, value) => { control.element.style.left = value + 'px'; },
  Top: (control, value) => { control.element.style.top = value + 'px'; },
  Width: (control, value) => { control.element.style.width = value + 'px'; },
  Height: (control, value) => { control.element.style.height = value + 'px'; fitLine(control); },
  Visible: (control, value) => { control.element.hidden = !value; },
  ToolTipText: (control, value) => { control.element.title = value; },
  Caption: (control, value) => { (control.words || control.title || control.element).textContent = value; },
  ForeColor: (control, value) => { control.element.style.color = colourText(value); },
  BackColor: (control, value) => { control.element.style.backgroundColor = colourText(value); },
  BorderStyle: (control, value) => { control.element.classList.toggle('bordered', value !== 0); },
  Font: (control, value) => { control.element.style.font = value; fitLine(control); },
  Alignment: (control, value) => { control.element.style.textAlign = value; },
  TabIndex: (control, value) => { (control.box || control.element).tabIndex = value; },
  Default: (control) => { control.element.classList.add('default'); },
  AccessibleName: (control, value) => { control.element.setAttribute('aria-label', value); },
};

const ownProperties = {
  TextBox: {
    Text: (control, value) => { if (control.element.value !== value) control.element.value = value; },
    SelStart: (control, value) => { control.element.setSelectionRange(value, value); },
  },
  Slider: {
    Min: (control, value) => { control.element.min = value; },
    Max: (control, value) => { control.element.max = value; },
    Value: (control, value) => { control.element.value = value; },
  },
  CheckBox: {Value: (control, value) => { control.box.checked = value !== 0; }},
  PictureBox: {MousePointer: (control, value) => { control.element.style.cursor = value === 99 ? 'none' : ''; }},
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

// A single line stands in the middle of its label.
function fitLine(control) {
  if (control.kind !== 'Label') return;
  const style = control.element.style;
  const size = parseFloat(style.fontSize) || 11;
  const height = parseFloat(style.height);
  control.element.classList.toggle('line', height < 2.3 * size);
  style.lineHeight = height < 2.3 * size ? height + 'px' : '';
}

function focusControl(id) {
  const control = controls.get(id);
  raiseWindow(windowOf(control));
  if (control.kind !== 'Form') (control.box || control.element).focus({preventScroll: true});
}

const windowOf = (control) => controls.get(Number(control.element.closest('.form').dataset.id));

// Shows rows of a picture: pixels as the canvas wants them, from the program's memory.
function showPixels(id, pixels, width, height, firstRow, rows) {
  const {element} = controls.get(id);
  if (element.width !== width || element.height !== height) {
    element.width = width;
    element.height = height;
  }
  if (width === 0 || rows === 0) return;
  const context = element.getContext('2d', {alpha: false});
  context.putImageData(new ImageData(pixels, width, rows), 0, firstRow);
}
