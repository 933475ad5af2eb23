// Settings are in the browser's local storage. If it is blocked or full, they last for this visit only.
const visitSettings = new Map();
const settingName = (section, key) => `kelvora/${section}/${key}`;

function readSetting(section, key) {
  const name = settingName(section, key);
  if (visitSettings.has(name)) return visitSettings.get(name);
  try {
    return localStorage.getItem(name);
  } catch {
    return null;  // no store
  }
}

function writeSetting(section, key, value) {
  const name = settingName(section, key);
  try {
    localStorage.setItem(name, value);
    visitSettings.delete(name);
  } catch {
    visitSettings.set(name, value);
  }
}
