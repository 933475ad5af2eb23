// Menus: a bar of buttons, each with a list below it, whose items may have lists beside them. Arrow keys walk through.
let openMenus = [];

function createMenu(id, parentId, isSeparator) {
  const parent = controls.get(parentId);
  if (isSeparator) {
    const line = document.createElement('li');
    line.setAttribute('role', 'separator');
    menuList(parent).append(line);
    return;
  }
  const element = document.createElement('li');
  element.setAttribute('role', 'none');
  const button = document.createElement('button');
  button.type = 'button';
  button.setAttribute('role', 'menuitem');
  element.append(button);
  const control = {id, kind: 'Menu', element, words: button, client: element};
  controls.set(id, control);
  menuList(parent).append(element);
  button.addEventListener('click', (event) => {
    event.stopPropagation();
    // The mouse has already opened a list beside another one.
    if (control.list) return depthOf(control) === 0 ? toggleMenu(control) : openMenu(control);
    leaveMenus();
    post('click', id);
  });
  element.addEventListener('pointerenter', (event) => {
    if (event.pointerType !== 'mouse' || openMenus.length === 0) return;
    closeMenus(depthOf(control));
    if (control.list) openMenu(control);
  });
  element.addEventListener('keydown', (event) => walkMenu(control, event));
}

// The list that a form's menus or a menu's items stand in.
function menuList(parent) {
  if (parent.list) return parent.list;
  parent.list = document.createElement('ul');
  if (parent.kind === 'Form') {
    parent.list.className = 'menubar';
    parent.list.setAttribute('role', 'menubar');
    parent.client.before(parent.list);
    parent.list.addEventListener('focusin', ({relatedTarget}) => keepFocus(relatedTarget));
    parent.list.addEventListener('focusout', ({relatedTarget}) => {
      if (relatedTarget && !parent.list.contains(relatedTarget)) closeMenus();
    });
    // Not every browser gives a pressed button the focus. Fingers leave it: giving it back to a text box would open the
    // keyboard on the screen.
    parent.list.addEventListener('pointerdown', (event) => {
      if (event.pointerType !== 'touch') event.target.closest('button:enabled')?.focus();
    });
  } else {
    parent.list.setAttribute('role', 'menu');
    parent.list.hidden = true;
    parent.words.setAttribute('aria-haspopup', 'true');
    parent.element.append(parent.list);
  }
  return parent.list;
}

function depthOf(control) {
  let depth = 0;
  for (let list = control.element.parentElement; list.closest('[role=menu]'); list = list.parentElement.closest('ul')) ++depth;
  return depth;
}

function openMenu(control) {
  closeMenus(depthOf(control));
  openMenus.push(control);
  control.list.hidden = false;
  keepInPage(control);
  control.words.setAttribute('aria-expanded', 'true');
}

// Moves a list that would end beyond the page's right edge, in front of the one that it belongs to.
function keepInPage({list}) {
  list.style.marginLeft = '';
  const excess = list.getBoundingClientRect().right - innerWidth;
  if (excess > 0) list.style.marginLeft = -excess / deskScale + 'px';
}

function toggleMenu(control) {
  if (openMenus.includes(control)) return leaveMenus();
  openMenu(control);
}

function closeMenus(depth = 0) {
  for (const control of openMenus.splice(depth)) {
    control.list.hidden = true;
    control.words.setAttribute('aria-expanded', 'false');
  }
}

// Closes the menus, and gives the focus back to where it was.
function leaveMenus() {
  closeMenus();
  if (document.activeElement?.closest('.menubar')) mainWindow.focus?.focus({preventScroll: true});
}

document.addEventListener('pointerdown', (event) => { if (!event.target.closest('.menubar')) leaveMenus(); }, true);

function walkMenu(control, event) {
  event.stopPropagation();
  const inBar = depthOf(control) === 0;
  const canTake = (item) => item.querySelector(':scope > button:enabled');
  const step = (item) => item && item.querySelector(':scope > button').focus();
  const neighbour = (direction) => {
    let item = control.element[direction];
    while (item && !canTake(item)) item = item[direction];
    return item;
  };
  const moves = {
    [inBar ? 'ArrowRight' : 'ArrowDown']: () => step(neighbour('nextElementSibling')),
    [inBar ? 'ArrowLeft' : 'ArrowUp']: () => step(neighbour('previousElementSibling')),
    [inBar ? 'ArrowDown' : 'ArrowRight']: () => {
      if (!control.list) return;
      openMenu(control);
      step([...control.list.children].find(canTake));
    },
    Escape: () => {
      const above = openMenus[openMenus.length - 1];
      closeMenus(Math.max(0, openMenus.length - 1));
      above ? above.words.focus() : leaveMenus();
    },
  };
  if (!inBar) moves.ArrowLeft = moves.Escape;
  if (!moves[event.key]) return;
  event.preventDefault();
  moves[event.key]();
}

const menuProperties = {
  Checked: (control, value) => {
    control.words.setAttribute('role', value ? 'menuitemcheckbox' : 'menuitem');
    value ? control.words.setAttribute('aria-checked', 'true') : control.words.removeAttribute('aria-checked');
  },
  Enabled: (control, value) => { control.words.disabled = !value; },
};
