// Fingers on the game's view. The first one steers like a mouse without a button, or taps a powerup's icon. Another one
// toggles the brakes, and so does a button for players with one hand free.
const fingers = new Set();
const steeringFinger = () => fingers.values().next().value;

function fingerDown(control, event) {
  const isFirst = fingers.size === 0;
  fingers.add(event.pointerId);
  if (!isFirst) return toggleBrakes(control);
  const numbers = mouseNumbers(control.face, event, 0);
  post('touched', control.id, numbers);
  post('mouseMove', control.id, numbers);
}

function fingerUp(control, event) {
  const wasSteering = event.pointerId === steeringFinger();
  if (!fingers.delete(event.pointerId)) return;
  if (wasSteering) post('released', control.id);
}

// As a press of the right mouse button.
function toggleBrakes(control) {
  for (const kind of ['mouseDown', 'mouseUp']) post(kind, control.id, [2, 0, 0, 0, 0]);
}

// The first touch shows the button, which people with a mouse don't need.
function showBrakes() {
  const view = [...controls.values()].find((one) => one.isView);
  if (!view || document.getElementById('brakes')) return;
  const button = document.createElement('button');
  button.id = 'brakes';
  button.type = 'button';
  button.textContent = 'Brakes';
  button.addEventListener('pointerdown', (event) => {
    event.preventDefault();
    event.stopPropagation();
    toggleBrakes(view);
  });
  button.addEventListener('click', (event) => { if (event.detail === 0) toggleBrakes(view); });
  view.element.append(button);
}
addEventListener('pointerdown', (event) => { if (event.pointerType === 'touch') showBrakes(); }, true);
