"""Layers are painted several times too large in linear light and reduced by averaging."""

import numpy as np
from PIL import Image

SCALE = 8

# A matte's grey levels each keep leading bits of the image and drop the others. Any other grey would keep low bits
# without the high ones and cause speckles.
BLACK, GREYS, WHITE = 0x00, (0x80, 0xC0, 0xF0), 0xFF


def linear(colour):
    """Converts display values 0 to 1 to linear light."""
    return np.power(np.asarray(colour, dtype=float), 2.2)


def display(light):
    return np.power(np.clip(light, 0, 1), 1 / 2.2)


def smooth(low, high, value):
    t = np.clip((value - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


class Layer:
    """A picture under construction. Coordinates are pixels of the finished picture from its top left corner."""

    def __init__(self, width, height, scale=SCALE):
        self.width, self.height, self.scale = width, height, scale
        y, x = np.mgrid[0 : height * scale, 0 : width * scale]
        self.x = (x + 0.5) / scale
        self.y = (y + 0.5) / scale
        self.light = np.zeros((height * scale, width * scale, 3))
        self.shape = np.zeros((height * scale, width * scale), dtype=bool)
        self.glass = np.zeros((height * scale, width * scale), dtype=bool)

    def centred(self, cx, cy):
        return self.x - cx, self.y - cy

    def fill(self, distance, colour, opacity=1.0, soft=0.0):
        """Covers the inside with a colour (display values, one or one per point), with `soft` pixels of soft edge."""
        if soft > 0:
            cover = 1 - smooth(-soft / 2, soft / 2, distance)
        else:
            cover = (distance < 0).astype(float)
        cover = (cover * opacity)[..., None]
        self.light = self.light * (1 - cover) + linear(colour) * cover

    def add(self, strength, colour):
        """Adds light."""
        self.light = self.light + np.asarray(strength)[..., None] * linear(colour)

    def within(self, distance):
        """Adds to the sprite's shape."""
        self.shape |= distance < 0

    def picture(self):
        """The finished picture: display values 0 to 255 per pixel."""
        return np.rint(display(self.reduced(np.clip(self.light, 0, 1))) * 255).astype(np.uint8)

    def clear(self, distance):
        """Declares glass: the matte is grey there, so the background shines through, and ghosts are visible."""
        self.glass |= distance < 0

    def matte(self):
        """The matte: white outside the shape, black inside, and grey where there is glass. The shape includes every
        pixel that it covers by at least 42%."""
        through = self.reduced(self.glass.astype(float))
        inside = np.array((BLACK, *GREYS), dtype=np.uint8)[np.digitize(through, (0.2, 0.5, 0.8))]
        return np.where(self.reduced(self.shape.astype(float)) >= 0.42, inside, np.uint8(WHITE))

    def reduced(self, values):
        s = self.scale
        return values.reshape((self.height, s, self.width, s) + values.shape[2:]).mean(axis=(1, 3))


def cut(picture, matte):
    """The picture, black outside the matte's shape."""
    return np.where(matte[..., None] < WHITE, picture, 0).astype(np.uint8)


def matte_picture(matte):
    return np.repeat(matte[..., None], 3, axis=2)


def blank(width, height, value=0):
    return np.full((height, width, 3), value, dtype=np.uint8)


def paste(sheet, picture, x, y=0):
    """Copies a cell into a sheet, clipped at the right and lower edges."""
    height, width = picture.shape[:2]
    target = sheet[y : y + height, x : x + width]
    target[...] = picture[: target.shape[0], : target.shape[1]]


def save(path, picture):
    Image.fromarray(picture, "RGB").save(path, optimize=True)


def noise(x, y, seed, octaves=3):
    """Smooth noise of about -1 to 1, the same in every run."""
    random = np.random.RandomState(seed)
    result = np.zeros(np.shape(x))
    weight = 1.0
    for _ in range(octaves):
        grid = random.uniform(-1, 1, (64, 64))
        xi, yi = np.floor(x).astype(int), np.floor(y).astype(int)
        u, v = x - xi, y - yi
        u, v = u * u * (3 - 2 * u), v * v * (3 - 2 * v)
        a = grid[yi % 64, xi % 64] * (1 - u) + grid[yi % 64, (xi + 1) % 64] * u
        b = grid[(yi + 1) % 64, xi % 64] * (1 - u) + grid[(yi + 1) % 64, (xi + 1) % 64] * u
        result += weight * (a * (1 - v) + b * v)
        weight *= 0.5
        x, y = x * 2.03 + 7.1, y * 2.03 + 3.7
    return result
