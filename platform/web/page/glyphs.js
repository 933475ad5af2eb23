// The shapes of letters, in shades of grey, from the page's fonts.
const glyphCanvas = document.createElement('canvas');
const glyphContext = glyphCanvas.getContext('2d', {willReadFrequently: true});

// Left, top, width, height and advance, then the coverage of each pixel.
function drawGlyph(font, byte) {
  const letter = byte < 32 ? ' ' : toText(Uint8Array.of(byte));
  glyphContext.font = font;
  const size = glyphContext.measureText(letter);
  const ascent = Math.round(size.fontBoundingBoxAscent);
  const advance = Math.round(size.width);
  const left = Math.floor(-size.actualBoundingBoxLeft) - 1;
  const right = Math.ceil(size.actualBoundingBoxRight) + 1;
  const top = Math.floor(-size.actualBoundingBoxAscent) - 1;
  const bottom = Math.ceil(size.actualBoundingBoxDescent) + 1;
  if (letter.trim() === '' || right - left <= 2) return {left: 0, top: 0, width: 0, height: 0, advance, coverage: nothing};
  const width = right - left;
  const height = bottom - top;
  glyphCanvas.width = width;
  glyphCanvas.height = height;
  glyphContext.font = font;
  glyphContext.fillStyle = 'white';
  glyphContext.fillText(letter, -left, -top);
  const pixels = glyphContext.getImageData(0, 0, width, height).data;
  const coverage = new Uint8Array(width * height);
  for (let i = 0; i < coverage.length; ++i) coverage[i] = pixels[i * 4 + 3];
  return {left, top: ascent + top, width, height, advance, coverage};
}

function fontLineHeight(font) {
  glyphContext.font = font;
  const size = glyphContext.measureText('x');
  return Math.round(size.fontBoundingBoxAscent) + Math.round(size.fontBoundingBoxDescent);
}
