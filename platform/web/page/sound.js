// Effects and music. A browser lets nothing sound before the first key, click or tap.
let speaker = null;
const sounds = new Map();
const music = new Audio();
let musicState = 10;

music.preload = 'none';
music.onended = () => { musicState = 1; };
music.onerror = () => { musicState = 1; };

function startSpeaker() {
  if (!speaker && window.AudioContext) {
    speaker = new AudioContext();
    for (const sound of sounds.values()) loadSound(sound);
  }
  // The device may be taken, as by a phone call. Then the next press tries again.
  if (speaker && speaker.state !== 'running') speaker.resume().catch(() => {});
  if (musicState === 3 && music.paused && !music.ended) startMusic();  // play() would restart a track that has ended
}
// A finger lets sound begin only when it leaves the screen.
for (const act of ['pointerdown', 'touchend', 'click', 'keydown']) addEventListener(act, startSpeaker, true);

function loadSound(sound) {
  if (sound.isLoading || !sound.file || !speaker) return;
  sound.isLoading = true;
  fetch(sound.file)
    .then((answer) => answer.ok ? answer.arrayBuffer() : Promise.reject(answer.status))
    .then((bytes) => speaker.decodeAudioData(bytes))
    .then((buffer) => { sound.buffer = buffer; })
    .catch(() => { sound.isLoading = false; });
}

function soundOf(id) {
  if (!sounds.has(id)) sounds.set(id, {isSilent: false, source: null});
  return sounds.get(id);
}

function openSound(id, file) {
  const sound = soundOf(id);
  sound.file = file;
  loadSound(sound);
}

function silenceSound(id, isSilent) {
  soundOf(id).isSilent = isSilent;
  if (isSilent) stopSound(id);
}

function playSound(id) {
  const sound = soundOf(id);
  if (!speaker || sound.isSilent) return;
  if (!sound.buffer) return loadSound(sound);  // it may have failed before
  stopSound(id);
  sound.source = speaker.createBufferSource();
  sound.source.buffer = sound.buffer;
  sound.source.connect(speaker.destination);
  sound.source.start();
}

function stopSound(id) {
  const sound = soundOf(id);
  if (sound.source) sound.source.stop();
  sound.source = null;
}

function closeSound(id) {
  stopSound(id);
  sounds.delete(id);
}

function startMusic() {
  music.play().catch(() => {});
}

function playMusic(file) {
  musicState = 3;
  music.src = file;
  if (speaker) startMusic();
}

function stopMusic() {
  musicState = 1;
  music.pause();
  music.removeAttribute('src');
}
