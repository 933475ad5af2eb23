// Settings are in the browser's local storage. If it is blocked or full, they last for this visit only.
const visitSettings = new Map();
const settingName = (section, key) => `kelvora/${section}/${key}`;

function readSetting(section, key) {
  const name = settingName(section, key);
  try {
    const stored = localStorage.getItem(name);
    if (stored !== null) return stored;
  } catch {
    // No store.
  }
  return visitSettings.has(name) ? visitSettings.get(name) : null;
}

function writeSetting(section, key, value) {
  const name = settingName(section, key);
  visitSettings.set(name, value);
  try {
    localStorage.setItem(name, value);
  } catch {
    // No store, or no room in it.
  }
}
