// The parts of pictures that the page doesn't show yet, by control: the program's copy of the picture, and the edges of
// the part. The program paints more often than most displays show, so each canvas is filled at most once per frame of the
// display. The page only runs while the program waits, and then the copy is finished.
const stalePictures = new Map();

// Shows a part of a picture before the next frame: `pixels` is where the program keeps it.
function showPixels(id, pixels, width, height, left, top, partWidth, partHeight) {
  if (stalePictures.size === 0) requestAnimationFrame(showStalePictures);
  const stale = stalePictures.get(id);
  const part = {left, top, right: left + partWidth, bottom: top + partHeight};
  if (stale && stale.width === width && stale.height === height) {
    Object.assign(part, {left: Math.min(left, stale.left), top: Math.min(top, stale.top),
      right: Math.max(part.right, stale.right), bottom: Math.max(part.bottom, stale.bottom)});
  }
  stalePictures.set(id, {pixels, width, height, ...part});
}

function showStalePictures() {
  for (const [id, {pixels, width, height, left, top, right, bottom}] of stalePictures) {
    showPicture(id, pixels, width, height, left, top, right - left, bottom - top);
  }
  stalePictures.clear();
}

// Shows a picture, or the part that the numbers behind its size tell, at once.
function showPicture(id, pixels, width, height, ...part) {
  const {face} = controls.get(id);
  if (face.width !== width || face.height !== height) Object.assign(face, {width, height});
  const picture = new ImageData(new Uint8ClampedArray(HEAPU8.buffer, pixels, width * height * 4), width, height);
  face.getContext('2d', {alpha: false}).putImageData(picture, 0, 0, ...part);
}
