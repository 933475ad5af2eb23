// The program's strings are bytes of code page 1252.
const codePage = new TextDecoder('windows-1252');
const codePageBytes = new Map();
for (let byte = 0; byte < 256; ++byte) codePageBytes.set(codePage.decode(Uint8Array.of(byte)), byte);

// Separate accents are first combined with their letters. Letters without a byte are dropped, and so are control
// characters.
function toBytes(text) {
  const bytes = [];
  for (const letter of text.normalize('NFC')) {
    const byte = codePageBytes.get(letter);
    if (byte !== undefined && byte >= 32) bytes.push(byte);
  }
  return Uint8Array.from(bytes);
}

// As a text box takes a text: tabs become one blank, or nothing at the ends.
const lineBytes = (text) => toBytes(text.replace(/^\t+|\t+$/g, '').replace(/\t+/g, ' '));

const toText = (bytes) => codePage.decode(bytes);

// Copies as much of a text into the program's memory as there is room for. Returns the length of the whole text.
function copyText(text, buffer, size) {
  const bytes = toBytes(text);
  HEAPU8.set(bytes.subarray(0, size), buffer);
  return bytes.length;
}

// A part of a link, as it stands if its escapes are malformed.
function decodedLink(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}
