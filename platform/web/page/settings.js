// Settings in the browser's store, or for this visit alone where it has none.
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
