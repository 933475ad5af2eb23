function chooseCell(control, row, column) {
  post('cellChosen', control.id, [0, 0, column, row]);
}

// A table of texts. Clicks and arrow keys choose a row, a double-click takes it.
function makeGrid(control) {
  control.table = document.createElement('table');
  control.table.setAttribute('role', 'grid');
  control.element.append(control.table);
  control.face = control.table;
  control.table.addEventListener('pointerdown', (event) => {
    const cell = event.target.closest('td');
    if (cell) chooseCell(control, Number(cell.dataset.row), Number(cell.dataset.column));
  });
  control.table.addEventListener('keydown', (event) => {
    const steps = {ArrowUp: -1, ArrowDown: 1};
    if (!steps[event.key]) return;
    event.preventDefault();
    const row = control.row + steps[event.key];
    if (control.table.querySelector(`td[data-row="${row}"]`)) chooseCell(control, row, control.column);
  });
}

const gridProperties = {
  // JSON: the rows with their cells' texts, the numbers of fixed rows and columns, the columns' widths and alignments,
  // and the current cell, which isn't marked before the user or the game chooses.
  Cells: (control, value) => {
    const {rows, fixedRows, fixedColumns, widths, alignments, row, column} = JSON.parse(value);
    Object.assign(control, {row, column});
    control.table.replaceChildren(...rows.map((texts, y) => {
      const line = document.createElement('tr');
      line.append(...texts.map((text, x) => {
        const cell = document.createElement(y < fixedRows || x < fixedColumns ? 'th' : 'td');
        cell.textContent = text;
        cell.dataset.row = y;
        cell.dataset.column = x;
        // The last column takes the remaining room, or more if its texts are longer.
        if (x + 1 < widths.length) cell.style.width = cell.style.minWidth = widths[x] + 'px';
        cell.style.textAlign = alignments[x];
        return cell;
      }));
      return line;
    }));
  },
  Row: (control, value) => { control.row = value; showChosen(control); },
  Col: (control, value) => { control.column = value; showChosen(control); },
};

function showChosen(control) {
  for (const cell of control.table.querySelectorAll('td')) {
    const isChosen = Number(cell.dataset.row) === control.row;
    cell.setAttribute('aria-selected', isChosen);
    if (!isChosen || Number(cell.dataset.column) !== control.column) continue;
    cell.scrollIntoView({block: 'nearest'});
    cell.id = `cell${control.id}-${control.row}-${control.column}`;
    control.table.setAttribute('aria-activedescendant', cell.id);
  }
}
