// Records the game for its menu, which offers the recording as a file. The game is recorded from its beginning, so the
// menu first loads the page anew.
const recordMenu = -1;  // an id that no object of the program has
const pieceSize = 256 << 10;  // bytes that are compressed at a time
const recordingLimit = 256 << 20;  // bytes before compression
let recording = null;

const wantsRecording = () => {
  const isWanted = Boolean(history.state && history.state.record);
  history.replaceState(null, '');
  return isWanted;
};

function beginRecording(head) {
  recording = {file: [head], piece: [], pieceLength: 0, length: 0, packing: Promise.resolve()};
  const save = document.getElementById('save');
  save.hidden = false;
  save.addEventListener('click', saveRecording);
  controls.get(recordMenu)?.words.replaceChildren('Save recording');
}

// False once the recording is too large.
function record(bytes) {
  if (recording.length + bytes.length > recordingLimit) return false;
  recording.length += bytes.length;
  recording.piece.push(bytes);
  recording.pieceLength += bytes.length;
  if (recording.pieceLength >= pieceSize) packPiece();
  return true;
}

// Adds the pending bytes to the file, as a zlib stream of their own.
function packPiece() {
  const stream = new Blob(recording.piece).stream().pipeThrough(new CompressionStream('deflate'));
  const packed = new Response(stream).blob();
  Object.assign(recording, {piece: [], pieceLength: 0});
  recording.packing = recording.packing.then(() => packed).then((blob) => { recording.file.push(blob); });
}

async function saveRecording() {
  packPiece();
  await recording.packing;
  const link = document.createElement('a');
  link.href = URL.createObjectURL(new Blob(recording.file, {type: 'application/octet-stream'}));
  link.download = `kelvora-${new Date().toISOString().slice(0, 19).replace(/:/g, '')}.recording`;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}

function addRecordMenu(form) {
  if (controls.has(recordMenu) || !window.CompressionStream) return;
  createMenu(recordMenu, form.id, false);
  const {words} = controls.get(recordMenu);
  words.textContent = recording ? 'Save recording' : 'Record';
  words.title = recording ? 'Saves the game since the page was loaded' : 'Loads the page again and records the game';
  words.addEventListener('click', () => recording ? saveRecording() : loadToRecord());
}

function loadToRecord() {
  if (sockets.size > 0) return showBox(recordMenu, 'Recordings begin with a fresh page. Disconnect first.');
  history.replaceState({record: true}, '');
  location.reload();
}
